#include "launcher/uncalled.h"

#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

using testing::HasSubstr;

TEST(UncalledQuestions, AreAnsweredByTheirOption) {
    EXPECT_TRUE(isInitMUService({L"p", L"-initMUService"}));
    EXPECT_TRUE(isDCommandOnly({L"p", L"-dcommand_only"}));
    EXPECT_FALSE(isInitMUService({L"p", L"-initmuservice"}));
    EXPECT_FALSE(isDCommandOnly({L"p", L"-dcommand"}));
    EXPECT_FALSE(isPipeDaemonCommand());
    EXPECT_FALSE(isDirtyShutdown());
}

TEST(ServiceInitialisation, CountsWhateverThePropertySays) {
    for (const wchar_t* name : {L"user", L"service", L"lockdown", L"nonsense"}) {
        const PropertyList properties = test::propertyList({{L"install.configuration", name}});
        const InstallKind forced = SetInstallConfiguration(properties, ServiceInit::kYes);
        EXPECT_EQ(forced.eConfig, InstallConfiguration::kMultiuserServiceInit);
        EXPECT_EQ(isLockdownConfig(forced), name == std::wstring(L"lockdown"));
        const InstallKind named = SetInstallConfiguration(properties, ServiceInit::kNo);
        EXPECT_EQ(named.eConfig, installConfigurationOf(properties));
        EXPECT_EQ(isLockdownConfig(named), name == std::wstring(L"lockdown"));
    }
}

using JavaExecutable = test::LauncherTest;

TEST_F(JavaExecutable, EndingIsTestedAndReplaced) {
    folder_.write("javaw", "");
    EXPECT_TRUE(isJavaw(folder_.wide("javaw"), L"javaw"));
    EXPECT_FALSE(isJavaw(folder_.wide("javaw"), L"java"));
    EXPECT_FATAL(
        isJavaw(folder_.wide("none"), L"none"),
        HasSubstr("ZYPRA0003E: Specified vm (" + folder_.narrow("none") + ") does not exist!"));
    const std::wstring jvm = folder_.wide("javaw");
    EXPECT_EQ(replaceJavaExecutableName(jvm, L"javaw", L"java"), folder_.wide("java"));
    EXPECT_EQ(replaceJavaExecutableName(jvm, L"java", L"x"), jvm);
}

class PipeName : public test::LauncherTest {
  protected:
    [[nodiscard]] std::wstring read() const {
        return getPipeName(folder_.wide()).value_or(L"(none)");
    }
};

TEST_F(PipeName, NoFileGivesNone) {
    EXPECT_EQ(read(), L"(none)");
}

TEST_F(PipeName, IsTheFirstLineWithoutLeadingBlanks) {
    folder_.write(".pipe", "  /tmp/pipe of ann  \nsecond\n");
    EXPECT_EQ(read(), L"/tmp/pipe of ann  ");
    folder_.write(".pipe", "\n\n\tB\u00FCro");
    EXPECT_EQ(read(), L"B\u00FCro");
}

TEST_F(PipeName, FileWithoutANameGivesNone) {
    for (const char* content : {"", "\n", "  \n \t\n"}) {
        folder_.write(".pipe", content);
        EXPECT_EQ(read(), L"(none)") << content;
    }
}

TEST_F(PipeName, IsCutAtItsLongest) {
    folder_.write(".pipe", std::string(2024, 'p') + "more\n");
    EXPECT_EQ(read(), std::wstring(2024, L'p'));
}

}  // namespace
}  // namespace rcp
