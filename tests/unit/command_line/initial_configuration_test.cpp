#include "launcher/command_line/initial_configuration.h"

#include "launcher/inputs/install_configuration.h"
#include "tests/unit/fixture.h"

#include <utility>
#include <vector>

namespace rcp {
namespace {

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

PropertyList listOf(const Pairs& pairs) {
    PropertyList list;
    for (const auto& [key, value] : pairs) {
        list.append({key, value, {}});
    }
    return list;
}

std::wstring key(int number) {
    return L"config.initial." + std::to_wstring(number);
}

constexpr wchar_t kFlag[] = L"-initialCompleteFlag";

class InitialRequired : public test::LauncherTest {
  protected:
    InitialRequired() { inputs_.traits.eConfig = InstallConfiguration::kUser; }

    bool isRequired(const Pairs& properties, const Pairs& userProperties = {}) {
        inputs_.properties = listOf(properties);
        inputs_.userProperties = listOf(userProperties);
        return isInitialRequired(inputs_);
    }

    LaunchInputs inputs_;
};

const Pairs kComplete = {{L"config.initial.1", kFlag}, {L"config.initial.2", L"initial.done"}};

TEST_F(InitialRequired, UntilTheCompletionPropertyIsTrue) {
    EXPECT_TRUE(isRequired(kComplete));
    EXPECT_TRUE(isRequired(kComplete, {{L"initial.done", L"false"}}));
    EXPECT_TRUE(isRequired(kComplete, {{L"initial.done", L"tru"}}));
    EXPECT_TRUE(isRequired(kComplete, {{L"initial.done", L"True"}}));
    EXPECT_TRUE(isRequired(kComplete, {{L"initial.done", L""}}));
    EXPECT_FALSE(isRequired(kComplete, {{L"initial.done", L"true"}}));
    EXPECT_FALSE(isRequired(kComplete, {{L"initial.done", L"true since today"}}));
}

TEST_F(InitialRequired, CompletionInTheLaunchersOwnListDoesNotCount) {
    Pairs properties = kComplete;
    properties.emplace_back(L"initial.done", L"true");
    EXPECT_TRUE(isRequired(properties));
}

TEST_F(InitialRequired, OnlyInTheConfigurationsOfUsers) {
    using enum InstallConfiguration;
    for (const InstallConfiguration code : {kUser, kUserpb, kMultiuser}) {
        inputs_.traits.eConfig = code;
        EXPECT_TRUE(isRequired(kComplete)) << static_cast<int>(code);
    }
    for (const InstallConfiguration code :
         {kService, kMultiuserServiceInit, kSerialMultiuser, kLockdown, kUnknown}) {
        inputs_.traits.eConfig = code;
        EXPECT_FALSE(isRequired(kComplete)) << static_cast<int>(code);
        EXPECT_FALSE(isRequired({{key(2), L"gap"}})) << "nothing is looked at";
    }
}

TEST_F(InitialRequired, NotWithoutSuchProperties) {
    EXPECT_FALSE(isRequired({}));
    EXPECT_FALSE(isRequired({{L"config.initials.1", kFlag}, {L"config.other.1", L"x"}}));
}

TEST_F(InitialRequired, OnlyNumberedKeysCount) {
    const Pairs others = {{L"config.initial.restartExe.macosx", L"/x"}, {L"config.initial.", L"y"}};
    EXPECT_FALSE(isRequired(others));
    Pairs both = others;
    both.insert(both.end(), kComplete.begin(), kComplete.end());
    EXPECT_TRUE(isRequired(both));
    EXPECT_FALSE(isRequired(both, {{L"initial.done", L"true"}}));
}

TEST_F(InitialRequired, OrderIsThatOfTheNumbers) {
    const Pairs properties = {{key(3), L"initial.done"}, {key(1), L"-data"}, {key(2), kFlag}};
    EXPECT_TRUE(isRequired(properties));
    EXPECT_FALSE(isRequired(properties, {{L"initial.done", L"true"}}));
}

TEST_F(InitialRequired, NumberThatIsMissingIsFatalAndNamed) {
    EXPECT_FATAL(isRequired({{key(1), kFlag}, {key(3), L"initial.done"}}),
                 "ZYPRA0114E: Invalid config.initial arguments. config.initial.2 not found");
    EXPECT_FATAL(isRequired({{key(2), kFlag}, {key(3), L"initial.done"}}),
                 "ZYPRA0114E: Invalid config.initial arguments. config.initial.1 not found");
    EXPECT_FATAL(isRequired({{key(0), kFlag}, {key(1), L"initial.done"}}),
                 "ZYPRA0114E: Invalid config.initial arguments. config.initial.2 not found");
}

TEST_F(InitialRequired, FlagThatIsMissingOrLastIsFatal) {
    const std::string record =
        "ZYPRA0115E: Invalid config.initial arguments. -initialCompleteFlag not found";
    EXPECT_FATAL(isRequired({{key(1), L"-data"}, {key(2), L"/ws"}}), record);
    EXPECT_FATAL(isRequired({{key(1), L"-data"}, {key(2), kFlag}}), record);
    EXPECT_FATAL(isRequired({{key(1), kFlag}}), record) << "one property is no two";
    EXPECT_FATAL(isRequired({{key(1), L"x"}}), record);
}

TEST_F(InitialRequired, FlagIsRecognisedByItsBeginningAndTheFirstOneCounts) {
    const Pairs properties = {{key(1), std::wstring(kFlag) + L"=x"},
                              {key(2), L"first"},
                              {key(3), kFlag},
                              {key(4), L"second"}};
    EXPECT_FALSE(isRequired(properties, {{L"first", L"true"}}));
    EXPECT_TRUE(isRequired(properties, {{L"second", L"true"}}));
}

TEST_F(InitialRequired, FlagAsAKeyIsNoValue) {
    EXPECT_FATAL(isRequired({{key(1) + kFlag, L"x"}, {key(2), L"y"}}), "ZYPRA0115E");
}

// "config.initial.10" begins with "config.initial.1": in front of it, it is taken for number 1.
TEST_F(InitialRequired, KeyIsMatchedByItsBeginning) {
    Pairs properties = {{key(10), kFlag}};
    for (int number = 1; number <= 9; ++number) {
        properties.emplace_back(key(number), L"value" + std::to_wstring(number));
    }
    // Numbers 1 and 10 are both the first entry; the value behind number 1 is number 2's.
    EXPECT_FALSE(isRequired(properties, {{L"value2", L"true"}}));
    EXPECT_TRUE(isRequired(properties, {{L"value1", L"true"}}));
}

TEST_F(InitialRequired, TenPropertiesInOrderAreThemselves) {
    Pairs properties;
    for (int number = 1; number <= 12; ++number) {
        properties.emplace_back(key(number),
                                number == 11 ? kFlag : L"value" + std::to_wstring(number));
    }
    EXPECT_FALSE(isRequired(properties, {{L"value12", L"true"}}));
    EXPECT_TRUE(isRequired(properties, {{L"value2", L"true"}}));
}

// Entries are keys and values alike: a value that looks like a key is one.
TEST_F(InitialRequired, ValueThatBeginsWithAKeyIsTakenForIt) {
    const Pairs properties = {
        {key(1), L"config.initial.2"}, {key(3), kFlag}, {key(2), L"x"}, {key(4), L"initial.done"}};
    // Number 2 is the value of number 1 with the key behind it; then the flag, then number 4.
    EXPECT_FALSE(isRequired(properties, {{L"initial.done", L"true"}}));
}

TEST_F(InitialRequired, RepeatedKeyCountsOnceMoreAndTheFirstWins) {
    EXPECT_FATAL(isRequired({{key(1), kFlag}, {key(2), L"initial.done"}, {key(2), L"other"}}),
                 "config.initial.3 not found");
}

// Thousands of numbers must not take a search of the whole list each.
TEST_F(InitialRequired, ManyPropertiesAreFast) {
    constexpr int kCount = 50000;
    Pairs properties;
    for (int number = 1; number < kCount; ++number) {
        properties.emplace_back(key(number), L"value");
    }
    properties[0].second = kFlag;
    properties[1].second = L"initial.done";
    properties.emplace_back(key(kCount), L"last");
    EXPECT_FALSE(isRequired(properties, {{L"initial.done", L"true"}}));
}

TEST(InitialArguments, AreTheInitialConfigurationAlone) {
    EXPECT_EQ(initialArguments({L"/opt/rcplauncher"}),
              (Arguments{L"/opt/rcplauncher", L"-config", L"initial"}));
    EXPECT_EQ(initialArguments({L"p", L"-config", L"other", L"-application", L"a", L"-restart"}),
              (Arguments{L"p", L"-config", L"initial"}));
}

TEST(InitialArguments, KeepWhereAndHowThePlatformRunsInOriginalOrder) {
    EXPECT_EQ(initialArguments({L"p", L"-noExit", L"-x", L"-console", L"-data", L"/ws", L"-debug"}),
              (Arguments{L"p", L"-config", L"initial", L"-noExit", L"-console", L"-data", L"/ws",
                         L"-debug"}));
}

TEST(InitialArguments, OptionsAreRecognisedByTheirBeginningAndTheFirstOfEachIsKept) {
    EXPECT_EQ(initialArguments({L"p", L"-debugFile", L"-debug", L"-database", L"one", L"-data",
                                L"two", L"-console8", L"-console", L"-noExitX", L"-noExit"}),
              (Arguments{L"p", L"-config", L"initial", L"-debugFile", L"-database", L"one",
                         L"-console8", L"-noExitX"}));
    EXPECT_EQ(initialArguments({L"p", L"-Data", L"one", L"-noexit", L"x-debug"}),
              (Arguments{L"p", L"-config", L"initial"}));
}

TEST(InitialArguments, ValueOfDataIsTakenWhateverItIs) {
    EXPECT_EQ(initialArguments({L"p", L"-data", L"-debug", L"-console"}),
              (Arguments{L"p", L"-config", L"initial", L"-data", L"-debug", L"-console"}));
}

TEST(InitialArguments, DataWithoutAValueIsDropped) {
    EXPECT_EQ(initialArguments({L"p", L"-data"}), (Arguments{L"p", L"-config", L"initial"}));
    EXPECT_EQ(initialArguments({L"p", L"-data", L"-vmargs", L"-Xmx1g"}),
              (Arguments{L"p", L"-config", L"initial"}));
}

TEST(InitialArguments, NothingBehindVmargsIsKept) {
    EXPECT_EQ(initialArguments({L"p", L"-console", L"-vmargs", L"-debug", L"-data", L"/ws"}),
              (Arguments{L"p", L"-config", L"initial", L"-console"}));
}

TEST(InitialArguments, JvmComesLast) {
    EXPECT_EQ(initialArguments({L"p", L"-vm", L"/jre", L"-debug"}),
              (Arguments{L"p", L"-config", L"initial", L"-debug", L"-vm", L"/jre"}));
    EXPECT_EQ(initialArguments({L"p", L"-vmargs", L"-Xmx1g", L"-vm", L"/jre"}),
              (Arguments{L"p", L"-config", L"initial", L"-vm", L"/jre"}))
        << "process entry puts the pair at the very end";
    EXPECT_EQ(initialArguments({L"p", L"-vm"}), (Arguments{L"p", L"-config", L"initial"}));
}

TEST(InitialArguments, ProgramPathIsNeverAnOption) {
    EXPECT_EQ(initialArguments({L"-debug", L"-debug"}),
              (Arguments{L"-debug", L"-config", L"initial", L"-debug"}));
}

}  // namespace
}  // namespace rcp
