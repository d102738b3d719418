#include "launcher/uncalled.h"

#include "platform/bundle_metadata.h"
#include "platform/text.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

#include <errno.h>
#include <stdio.h>
#include <unistd.h>

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

TEST(UncalledTexts, LineIsKeyEqualsValue) {
    EXPECT_EQ(convWcharTo8859_1(L"a b", L" c=d"), L"a\\ b= c\\=d");
    EXPECT_EQ(convWcharTo8859_1(L"", L""), L"=");
}

TEST(UncalledTexts, InitMemStringAppendsAndReturnsItsDestination) {
    const WideBuffer buffer = newString(10);
    EXPECT_EQ(initMemString(buffer.get(), L"abc"), buffer.get());
    EXPECT_STREQ(initMemString(buffer.get(), L"def"), L"abcdef");
}

TEST(UncalledTexts, EverySlashBecomesABackslash) {
    std::wstring path = L"//a\\b/";
    convertS2BS(path);
    EXPECT_EQ(path, L"\\\\a\\b\\");
}

TEST(UncalledQuestions, AdministratorIsTheRealUserRootWhateverTheArgument) {
    EXPECT_EQ(userIsAdmin(L""), getuid() == 0);
    EXPECT_EQ(userIsAdmin(L"somebody"), getuid() == 0);
    if (getuid() == 0) {
        EXPECT_EXIT(
            {
                const bool isRoot = userIsAdmin(L"root") && setuid(12345) == 0;
                _exit(isRoot && !userIsAdmin(L"root") ? 3 : 4);
            },
            testing::ExitedWithCode(3), "");
    }
}

using UncalledFiles = test::LauncherTest;

TEST_F(UncalledFiles, WideNameOpensAStreamAsTheNarrowOneDoes) {
    folder_.write("file", "new");
    const Stream stream = open_wfile(folder_.wide("file"), L"r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(fgetc(stream.get()), 'n');
    EXPECT_EQ(open_wfile(folder_.wide("none"), L"r"), nullptr);
}

TEST_F(UncalledFiles, FilesWithThePatternAreRemoved) {
    folder_.write("tree/a.log", "");
    folder_.write("tree/b.txt", "");
    EXPECT_TRUE(removeFileWithPatternFromDirectory(folder_.wide("tree"), L".log").isComplete);
    EXPECT_FALSE(folder_.has("tree/a.log"));
    EXPECT_TRUE(folder_.has("tree/b.txt"));
    EXPECT_FALSE(removeFileWithPatternFromDirectory(folder_.wide("none"), L".log").isComplete);
}

TEST_F(UncalledFiles, PropertyListIsWrittenAsXmlOrNotAtAll) {
    folder_.write("Info.plist",
                  "<plist><dict><key>CFBundleIdentifier</key><string>a</string></dict></plist>");
    const auto list = createPropertiesListFromFile(folder_.wide("Info.plist"));
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(writePropertyListToFile(*list, folder_.wide("copy")));
    EXPECT_TRUE(folder_.read("copy").starts_with("<?xml"));
    const auto copy = createPropertiesListFromFile(folder_.wide("copy"));
    ASSERT_TRUE(copy.has_value());
    EXPECT_EQ(copy->stringForKey("CFBundleIdentifier"), "a");
    EXPECT_FALSE(writePropertyListToFile(*list, folder_.wide("missing/Info.plist")));
}

TEST_F(UncalledFiles, TraceRecordsGetNoSystemErrorText) {
    const test::Records records(folder_);
    const FormatArgument values[] = {std::string_view("a"), 1L};
    Output("off", {});
    SvcDebugLastError(L"off");
    const ForcedTracing tracing;
    errno = ENOENT;
    SvcDebugLastError(L"message %s.");
    SvcDebugLastError(L"message %s", L"x");
    Output("%s %d", values);
    EXPECT_EQ(records.text(), "message .\nmessage x\na 1\n");
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
