#include "launcher/command_line/argument_checks.h"

#include "tests/unit/launch_pieces.h"

#include <errno.h>

#include <limits>

namespace rcp {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

using UrlHandler = test::LauncherTest;

constexpr char kBadCount[] =
    "ZYPRA0069E: rcplauncher invoked with an invalid URL handler action - bad argument count.\n";

TEST_F(UrlHandler, PassesWithoutTheOption) {
    validateIfUrlHandlerLaunch({L"-maxargcnt", L"7"});  // the program path is no option
    validateIfUrlHandlerLaunch({L"p", L"-maxArgCnt", L"9"});
}

TEST_F(UrlHandler, StatedCountMustBeTheWholeCommandLines) {
    validateIfUrlHandlerLaunch({L"p", L"-maxargcnt", L"5", L"-vm", L"/j"});
    for (const wchar_t* count : {L"4", L"6", L"3", L"0", L"x", L"", L"-5", L"4294967301"}) {
        EXPECT_FATAL(validateIfUrlHandlerLaunch({L"p", L"-maxargcnt", count, L"-vm", L"/j"}),
                     HasSubstr(kBadCount))
            << count;
    }
}

TEST_F(UrlHandler, CountIsReadAsADecimalNumber) {
    validateIfUrlHandlerLaunch({L"p", L"-maxargcnt",
                                L"005"
                                L"x",
                                L"-vm", L"/j"});
    validateIfUrlHandlerLaunch({L"p", L"-maxargcnt", L" +5", L"-vm", L"/j"});
    validateIfUrlHandlerLaunch(
        {L"p", L"-maxargcnt", L"10", L"4", L"5", L"6", L"7", L"8", L"-vm", L"/j"});
    EXPECT_FATAL(validateIfUrlHandlerLaunch({L"p", L"-maxargcnt", L"0x5", L"-vm", L"/j"}),
                 HasSubstr(kBadCount));
}

TEST_F(UrlHandler, OptionAtTheEndExpectsNothingAndFails) {
    EXPECT_FATAL(validateIfUrlHandlerLaunch({L"p", L"-maxargcnt"}), HasSubstr(kBadCount));
}

TEST_F(UrlHandler, RestartCountsOneLess) {
    validateIfUrlHandlerLaunch({L"p", L"-restart", L"-maxargcnt", L"3"});
    EXPECT_FATAL(validateIfUrlHandlerLaunch({L"p", L"-restart", L"-maxargcnt", L"4"}),
                 HasSubstr(kBadCount));
}

TEST_F(UrlHandler, FirstStatementCounts) {
    validateIfUrlHandlerLaunch({L"p", L"-maxargcnt", L"5", L"-maxargcnt", L"9"});
}

using DoubleQuotes = test::LauncherTest;

TEST_F(DoubleQuotes, AreRefusedAnywhereTheProgramPathIncluded) {
    validateThatDoubleQuotesNotUsed({L"p", L"'a'", L"\u201dtypographic\u201c", L""});
    const char* message =
        "ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument.\n";
    EXPECT_FATAL(validateThatDoubleQuotesNotUsed({L"p", L"a", L"b\"c"}), HasSubstr(message));
    EXPECT_FATAL(validateThatDoubleQuotesNotUsed({L"/opt/\"x\"/p", L"a"}), HasSubstr(message));
    EXPECT_FATAL(validateThatDoubleQuotesNotUsed({L"p", L"\""}), HasSubstr(message));
}

using SearchPaths = test::LauncherTest;

TEST_F(SearchPaths, AreRefusedAnywhereInAnArgument) {
    const std::pair<const wchar_t*, const char*> refused[] = {
        {L"-Djvm.library.path=/x",
         "ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not "
         "allowed.\n"},
        {L"vmarg.x=-Djava.library.path=/x",
         "ZYPRA0191E: rcplauncher invoked with arg containing \"java.library.path\" - not "
         "allowed.\n"},
        {L"-Dfoo=java.home.x",
         "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not allowed.\n"},
    };
    for (const auto& pair : refused) {
        const auto matcher = HasSubstr(pair.second);
        EXPECT_FATAL(validateNoJavaLibraryPath({L"p", L"a", pair.first}), matcher);
        EXPECT_FATAL(validateNoJavaLibraryPath({pair.first}), matcher);
    }
}

TEST_F(SearchPaths, JvmArgumentsAreThoseBehindTheSeparatorAlone) {
    const auto withSeparatorAt = [](std::size_t place) {
        Arguments arguments = {L"p", L"-a", L"-Djava.home=/x", L"-b"};
        arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(place), L"-vmargs");
        for (Argument& argument : arguments) {
            argument.origin.line = 1;
        }
        return arguments;
    };
    validateJvmArguments(withSeparatorAt(4), {});
    validateJvmArguments(withSeparatorAt(3), {});
    EXPECT_FATAL(validateJvmArguments(withSeparatorAt(2), {}), HasSubstr("ZYPRA0192E"));
    EXPECT_FATAL(validateJvmArguments(withSeparatorAt(1), {}), HasSubstr("ZYPRA0192E"));
}

TEST_F(SearchPaths, AreTestedArgumentByArgumentInOrder) {
    EXPECT_FATAL(validateNoJavaLibraryPath({L"p", L"java.home java.library.path"}),
                 HasSubstr("ZYPRA0191E"));
    EXPECT_FATAL(validateNoJavaLibraryPath({L"p", L"java.library.path jvm.library.path"}),
                 HasSubstr("ZYPRA0190E"));
    EXPECT_FATAL(validateNoJavaLibraryPath({L"p", L"java.home", L"jvm.library.path"}),
                 HasSubstr("ZYPRA0192E"));
}

TEST_F(SearchPaths, LetterCaseAndDotsCount) {
    validateNoJavaLibraryPath({L"p", L"-DJAVA.HOME=x", L"java-home", L"javahome", L"library.path",
                               L"java.hom", L"xvm.library.path", L"java,library.path"});
}

class InstallerState : public test::LauncherTest {
  protected:
    static void validate(const Arguments& arguments, std::optional<long> runningPlatform) {
        LaunchInputs inputs;
        inputs.arguments = arguments;
        inputs.runningPlatform = runningPlatform;
        validateInstallerState(inputs);
    }
};

TEST_F(InstallerState, ManifestPassesInTheMainLauncher) {
    validate({L"p", L"-provManifest"}, std::nullopt);
}

TEST_F(InstallerState, DaemonPassesWithoutAManifest) {
    validate({L"-provManifest", L"-provmanifest", L"x"}, 4711);
}

TEST_F(InstallerState, ManifestInADaemonIsFatalWithoutTheSystemsText) {
    errno = ENOENT;
    EXPECT_FATAL(validate({L"p", L"-provManifest", L"x"}, 4711),
                 ContainsRegex("ZYPRA0122E: Attempting to install while process 4711 is "
                               "running\\.\n"));
    EXPECT_FATAL(validate({L"p", L"-provManifest"}, std::numeric_limits<long>::max()),
                 HasSubstr("process 9223372036854775807 is"));
}

}  // namespace
}  // namespace rcp
