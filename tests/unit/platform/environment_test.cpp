#include "platform/environment.h"

#include "diagnostics/svc_debug.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

#include <unistd.h>

namespace rcp {
namespace {

using test::ScopedVariable;

constexpr char kName[] = "RCP_UNIT_\u00C4";
constexpr VariableName kWideName{L"RCP_UNIT_\u00C4"};

class SystemEnvironment : public test::LauncherTest {
  protected:
    SystemEnvironment() : records_(folder_) { setDebug(true); }
    ~SystemEnvironment() override { setDebug(false); }
    ScopedVariable none_{kName};
    test::Records records_;
};

TEST_F(SystemEnvironment, VariableIsReadAndNothingIsRecorded) {
    const ScopedVariable variable(kName, "v\u00E4lue");
    EXPECT_EQ(getEnv(kWideName), L"v\u00E4lue");
    EXPECT_EQ(records_.text(), "");
}

TEST_F(SystemEnvironment, EmptyVariableIsSet) {
    const ScopedVariable variable(kName, "");
    EXPECT_EQ(getEnv(kWideName), L"");
    EXPECT_EQ(records_.text(), "");
}

TEST_F(SystemEnvironment, MissingVariableIsNoneAndOneTraceRecord) {
    EXPECT_EQ(getEnv(kWideName), std::nullopt);
    EXPECT_EQ(records_.text(),
              "ZYPRA0081I:  Environmental variable 'RCP_UNIT_\u00C4' is not set\n\n");
}

TEST_F(SystemEnvironment, MissingVariableIsNotRecordedWithoutTracing) {
    setDebug(false);
    EXPECT_EQ(getEnv(kWideName), std::nullopt);
    EXPECT_EQ(records_.text(), "");
}

TEST_F(SystemEnvironment, SetAnswersFalseWhenItSucceeded) {
    EXPECT_FALSE(setEnv(kWideName, L"\u00E9", Overwrite::kNo));
    EXPECT_EQ(test::variable(kName), "\u00E9");
    EXPECT_FALSE(setEnv(kWideName, L"second", Overwrite::kYes));
    EXPECT_EQ(test::variable(kName), "second");
}

TEST_F(SystemEnvironment, SetWithoutOverwriteLeavesAnExistingValueAndAnswersFalse) {
    const ScopedVariable variable(kName, "first");
    EXPECT_FALSE(setEnv(kWideName, L"second", Overwrite::kNo));
    EXPECT_EQ(test::variable(kName), "first");
}

TEST_F(SystemEnvironment, SetAnswersTrueWhenItFailed) {
    EXPECT_TRUE(setEnv(VariableName(L""), L"x", Overwrite::kYes));
    EXPECT_TRUE(setEnv(VariableName(L"A=B"), L"x", Overwrite::kYes));
}

TEST_F(SystemEnvironment, UnsetAlwaysAnswersTrue) {
    const ScopedVariable variable(kName, "first");
    EXPECT_TRUE(unsetEnv(kWideName));
    EXPECT_EQ(test::variable(kName), std::nullopt);
    EXPECT_TRUE(unsetEnv(kWideName));
    EXPECT_TRUE(unsetEnv(VariableName(L"A=B")));
}

TEST_F(SystemEnvironment, HomeIsThatOfTheVariable) {
    const ScopedVariable home("HOME", "/Users/ann");
    EXPECT_EQ(getUserHome(), L"/Users/ann");
}

TEST_F(SystemEnvironment, MissingHomeIsEmptyAndTraced) {
    const ScopedVariable home("HOME");
    EXPECT_EQ(getUserHome(), L"");
    EXPECT_EQ(records_.text(), "ZYPRA0081I:  Environmental variable 'HOME' is not set\n\n");
}

TEST_F(SystemEnvironment, SystemIsMacosxOnEveryBuild) {
    EXPECT_STREQ(getOS(), L"macosx");
}

TEST_F(SystemEnvironment, TickIsTheTimeOfDay) {
    timeval before{};
    gettimeofday(&before, nullptr);
    const timeval tick = getTick();
    EXPECT_GE(tick.tv_sec, before.tv_sec);
    EXPECT_GE(tick.tv_usec, 0);
    EXPECT_LT(tick.tv_usec, 1'000'000);
}

TEST_F(SystemEnvironment, SleepGivesWhatWasLeft) {
    EXPECT_EQ(sysSleep(0), 0U);
    const InstalledCalls clock(test::sleepingLike([](unsigned seconds) { return seconds - 1; }));
    EXPECT_EQ(sysSleep(5), 4U);
}

}  // namespace
}  // namespace rcp
