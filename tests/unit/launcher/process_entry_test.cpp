// What main does around the start-up sequence.
#include "launcher/process_entry.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "platform/platform.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/probe.h"

#include <errno.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <string_view>

namespace rcp {
namespace {

namespace fs = std::filesystem;

using test::propertyList;
using testing::HasSubstr;
using testing::Not;

constexpr wchar_t kDefaultExtension[] =
    L"-Djava.ext.dirs=/x:/Applications/ZUN Velmo.app/jre/Contents/Home/lib/ext";

Arguments rewritten(Arguments arguments, const test::Pairs& properties = {}) {
    rewriteExtensionDirectories(arguments, propertyList(properties));
    return arguments;
}

Arguments withVm(const test::Pairs& properties = {}) {
    Arguments arguments = {L"p"};
    appendVm(arguments, propertyList(properties));
    return arguments;
}

// --- The extension directories and the VM -------------------------------------------------------

TEST(ExtensionDirectories, JvmAndExtensionFolderAreAppended) {
    EXPECT_EQ(rewritten({L"p", L"-Djava.ext.dirs=/x", L"y"}),
              (Arguments{L"p", kDefaultExtension, L"y"}));
    EXPECT_EQ(rewritten({L"p", L"-Djava.ext.dirs=/x"},
                        {{L"jvm.location", L"/jre"}, {L"jvm.extpath", L"/ext"}}),
              (Arguments{L"p", L"-Djava.ext.dirs=/x:/jre/ext"}));
}

TEST(ExtensionDirectories, EmptyPropertiesAreLikeMissingOnes) {
    EXPECT_EQ(rewritten({L"-Djava.ext.dirs=/x"}, {{L"jvm.location", L""}, {L"jvm.extpath", L""}}),
              Arguments{kDefaultExtension});
}

TEST(ExtensionDirectories, EveryArgumentThatBeginsSoMatches) {
    const test::Pairs properties = {{L"jvm.location", L"/j"}, {L"jvm.extpath", L"/e"}};
    EXPECT_EQ(rewritten({L"-Djava.ext.dirs"}, properties), Arguments{L"-Djava.ext.dirs:/j/e"});
    EXPECT_EQ(rewritten({L"-Djava.ext.dirsX"}, properties), Arguments{L"-Djava.ext.dirsX:/j/e"});
    const Arguments others = {L"-djava.ext.dirs=/x", L"-Djava.ext.dir", L" -Djava.ext.dirs=/x",
                              L""};
    EXPECT_EQ(rewritten(others, properties), others);
}

TEST(ExtensionDirectories, SeveralMatchesAllBecomeTheTextOfTheLast) {
    EXPECT_EQ(rewritten({L"-Djava.ext.dirs=/a", L"x", L"-Djava.ext.dirs=/b"},
                        {{L"jvm.location", L"/j"}, {L"jvm.extpath", L"/e"}}),
              (Arguments{L"-Djava.ext.dirs=/b:/j/e", L"x", L"-Djava.ext.dirs=/b:/j/e"}));
}

TEST(ExtensionDirectories, TextMayHaveAnyLength) {
    const std::wstring longArgument = L"-Djava.ext.dirs=" + std::wstring(10'000, L'x');
    EXPECT_EQ(rewritten({longArgument}, {{L"jvm.location", L"/j"}, {L"jvm.extpath", L"/e"}}),
              Arguments{longArgument + L":/j/e"});
}

TEST(Vm, PairIsAppended) {
    EXPECT_EQ(withVm(), (Arguments{L"p", L"-vm",
                                   L"/Applications/ZUN Velmo.app/jre/Contents/Home/lib/jli/"
                                   L"libjli.dylib"}));
    EXPECT_EQ(withVm({{L"jvm.location", L""}, {L"jvm.libpath", L""}}), withVm());
    EXPECT_EQ(withVm({{L"jvm.location", L"/jre"}}),
              (Arguments{L"p", L"-vm", L"/jre/Contents/Home/lib/jli/libjli.dylib"}));
    EXPECT_EQ(withVm({{L"jvm.location", L"/jre"}, {L"jvm.libpath", L"/lib.so"}}),
              (Arguments{L"p", L"-vm", L"/jre/lib.so"}));
}

// --- Small steps --------------------------------------------------------------------------------

class Main : public test::LauncherTest {};

TEST_F(Main, VersionAloneIsAFatalRecord) {
    EXPECT_FATAL((errno = ENOENT, doVersionCheck({L"p", L"-version"})),
                 "ZYPRA0031I:   version = \"20211117.0921\"\n");
}

TEST_F(Main, VersionBesideOtherArgumentsMeansNothing) {
    doVersionCheck({L"p", L"-version", L"-vm", L"/jvm"});
    doVersionCheck({L"-version", L"p"});
    doVersionCheck({L"-version"});
    doVersionCheck({L"p", L"-Version"});
    doVersionCheck({});
}

TEST_F(Main, JavaIsPartOfTheInstallation) {
    EXPECT_TRUE(isJREPluginInstalled());
    EXPECT_EQ(GetJavaHome(), "/Applications/ZUN Velmo.app/jre/Contents/Home");
    EXPECT_EXIT(quitWithNoJavaWarning(), testing::ExitedWithCode(1), "");
}

/// The name of the character-type locale that a launch in this environment has.
void printLocale(const char* variable) {
    setlocale(LC_ALL, "C");
    unsetenv("LC_CTYPE");
    unsetenv("LANG");
    setenv("LC_ALL", variable, 1);
    setCharacterLocale();
    fprintf(stderr, "%s %s", setlocale(LC_CTYPE, nullptr), setlocale(LC_NUMERIC, nullptr));
    exit(0);
}

TEST_F(Main, CharacterSetIsUtf8WhereTheEnvironmentAsksForNone) {
    const std::string fallback = std::string("^") + platform::kUtf8LocaleName + " C$";
    for (const char* name : {"C", "POSIX", ""}) {
        EXPECT_EXIT(printLocale(name), testing::ExitedWithCode(0), fallback) << name;
    }
}

TEST_F(Main, CharacterSetIsTheEnvironmentsOtherwiseAndNothingElseIs) {
    EXPECT_EXIT(printLocale(platform::kUtf8LocaleName), testing::ExitedWithCode(0),
                std::string("^") + platform::kUtf8LocaleName + " C$");
}

TEST_F(Main, UnknownLocaleEndsTheLaunch) {
    const auto fail = [] {
        const std::string record =
            test::endOfLaunch([] { printLocale("nonsense.nowhere"); }).record;
        std::cerr << record;
        _exit(3);
    };
    EXPECT_EXIT(fail(), testing::ExitedWithCode(3), "ZYPRA0182E: Set locale error! : ");
}

// --- A launch up to the point where its installation is found to be incomplete
// --------------------

const test::Probe kLaunch("whole launch", [](const std::vector<std::string>& arguments) {
    std::vector<std::string> texts = arguments;
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    return runLauncher(static_cast<int>(texts.size()), argv.data());
});

class WholeLaunch : public Main {
  protected:
    void SetUp() override {
        if (!test::hasPrivateTmp()) {
            GTEST_SKIP() << "the system gives this process no /tmp of its own";
        }
        fs::remove(kLog);
        program_ = fs::canonical(folder_.path()).string() + "/rcp/rcplauncher";
        test::linkProgram(program_);
        folder_.write("rcp/rcplauncher.properties",
                      "jvm.location=/jre\njvm.libpath=/lib.so\njvm.extpath=/ext\n");
    }
    void TearDown() override {
        if (test::hasPrivateTmp()) {
            fs::remove(kLog);
        }
    }
    /// The records of a launch with these arguments, which has nothing but its first property file.
    [[nodiscard]] std::string launch(const std::vector<std::string>& arguments) const {
        EXPECT_EQ(test::runProbe("whole launch", arguments, program_).status, 255);
        std::ifstream log(kLog);
        return {std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
    }
    static constexpr char kLog[] = "/tmp/rcplauncher.log";
    std::string program_;
};

// What fails before a launch begins ends like one.
const test::Probe kNoNullDevice("no null device", [](const std::vector<std::string>&) {
    SystemCalls failing = systemCalls;
    failing.open = [](const char* path, int flags, mode_t mode) {
        if (std::string_view(path) != "/dev/null") {
            return kSystemsOwnCalls.open(path, flags, mode);
        }
        errno = ENXIO;
        return -1;
    };
    const InstalledCalls installed(failing);
    close(STDIN_FILENO);
    std::string name = "rcplauncher";
    char* arguments[] = {name.data(), nullptr};
    return runLauncher(1, arguments);
});

TEST_F(WholeLaunch, MissingNullDeviceIsARecordAndAStatus) {
    EXPECT_EQ(test::runProbe("no null device").status, 255);
    std::ifstream log(kLog);
    const std::string text{std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
    EXPECT_THAT(text,
                HasSubstr("Error: openMissingStandardStreams: /dev/null cannot be opened : "));
}

TEST_F(WholeLaunch, ArgumentsAreDumpedWithTheVmPairWithoutTracing) {
    const std::string log = launch({"Velmo", "-data", "B\u00FCro", "-Djava.ext.dirs=/x"});
    EXPECT_THAT(log, testing::StartsWith("ZYPRA0030I: rcplauncher main arguments=\"Velmo, -data, "
                                         "B\u00FCro, -Djava.ext.dirs=/x:/jre/ext, -vm, "
                                         "/jre/lib.so, \"\n\n"));
    EXPECT_THAT(log, HasSubstr("ZYPRA0016E: "));
}

TEST_F(WholeLaunch, RestartLeavesTheArgumentsAsTheyAre) {
    EXPECT_THAT(launch({"Velmo", "-restart", "-Djava.ext.dirs=/x"}),
                testing::StartsWith("ZYPRA0030I: rcplauncher main arguments=\"Velmo, -restart, "
                                    "-Djava.ext.dirs=/x, \"\n\n"));
}

TEST_F(WholeLaunch, RestartIsRecognisedInTheProgramsPlaceToo) {
    EXPECT_THAT(launch({"-restart", "x"}),
                testing::StartsWith("ZYPRA0030I: rcplauncher main arguments=\"-restart, x, \"\n"));
}

TEST_F(WholeLaunch, VersionOfAPlainLaunchDoesNotMatchBecauseOfTheVmPair) {
    EXPECT_THAT(launch({"Velmo", "-version"}), Not(HasSubstr("ZYPRA0031I")));
}

TEST_F(WholeLaunch, LaunchWithoutEvenANameUsesItsPath) {
    EXPECT_THAT(launch({}), testing::StartsWith("ZYPRA0030I: rcplauncher main arguments=\"" +
                                                program_ + ", -vm, /jre/lib.so, \"\n"));
}

TEST_F(WholeLaunch, ProgramInAnEmptyFolderSaysWhatIsMissing) {
    fs::remove(folder_.path() / "rcp/rcplauncher.properties");
    const std::string folder = fs::canonical(folder_.path()).string();
    EXPECT_EQ(launch({"Velmo"}), "ZYPRA0096E: Unable to load " + folder +
                                     "/rcp/rcplauncher.properties file! : No such file or "
                                     "directory\n\n");
}

}  // namespace
}  // namespace rcp
