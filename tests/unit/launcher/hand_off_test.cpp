// The hand-off, and the choice between its two kinds.
#include "launcher/hand_off.h"

#include "diagnostics/svc_debug.h"
#include "launcher/core/hand_off_tools.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "platform/text.h"
#include "tests/support/sandbox.h"
#include "tests/unit/core/launch_pieces.h"
#include "tests/unit/core/records.h"
#include "tests/unit/paths.h"
#include "tests/unit/probe.h"

#include <stdio.h>
#include <unistd.h>

namespace rcp {
namespace {

using test::Probe;
using test::ProbeResult;
using test::propertyList;
using test::runProbe;
using test::seen;
using testing::HasSubstr;
using testing::Not;

class HandOff : public test::LauncherTest {};

// --- parseArgs and haveLaunchOption -------------------------------------------------------------

/// A writable, null-terminated argument vector.
class Vector {
  public:
    explicit Vector(std::vector<std::string> texts) : texts_(std::move(texts)) {
        for (std::string& text : texts_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
        argc = static_cast<int>(texts_.size());
        argv = pointers_.data();
    }
    int argc = 0;
    char** argv = nullptr;

  private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

TEST_F(HandOff, ArgumentsAreCutAtVmargsInAnyLetterCase) {
    for (const char* option : {"-vmargs", "-VMARGS", "-vmArgs"}) {
        userVMarg = nullptr;
        Vector vector({"p", "-data", option, "-Xa", "-Xb"});
        parseArgs(vector.argc, vector.argv, 1);
        EXPECT_EQ(vector.argc, 2);
        EXPECT_STREQ(vector.argv[1], "-data");
        EXPECT_EQ(vector.argv[2], nullptr);
        ASSERT_EQ(userVMarg, &vector.argv[3]);
        EXPECT_STREQ(userVMarg[0], "-Xa");
        EXPECT_STREQ(userVMarg[1], "-Xb");
        EXPECT_EQ(userVMarg[2], nullptr);
    }
}

TEST_F(HandOff, FirstVmargsCounts) {
    Vector vector({"p", "-vmargs", "a", "-vmargs", "b"});
    parseArgs(vector.argc, vector.argv, 1);
    EXPECT_EQ(vector.argc, 1);
    EXPECT_STREQ(userVMarg[1], "-vmargs");
}

TEST_F(HandOff, VmargsAsTheLastArgumentGivesNoVmArguments) {
    Vector vector({"p", "-vmargs"});
    parseArgs(vector.argc, vector.argv, 1);
    EXPECT_EQ(vector.argc, 1);
    ASSERT_NE(userVMarg, nullptr);
    EXPECT_EQ(userVMarg[0], nullptr);
}

TEST_F(HandOff, WithoutVmargsOnlyTheEndIsSet) {
    Vector vector({"p", "-vmargsx", "vmargs", "rest"});
    vector.argc = 3;
    parseArgs(vector.argc, vector.argv, 1);
    EXPECT_EQ(vector.argc, 3);
    EXPECT_STREQ(vector.argv[2], "vmargs");
    EXPECT_EQ(vector.argv[3], nullptr);
    EXPECT_EQ(userVMarg, nullptr);
}

TEST_F(HandOff, OtherModesCutWithoutKeepingTheVmArguments) {
    Vector vector({"p", "-vmargs", "-Xa"});
    parseArgs(vector.argc, vector.argv, 0);
    EXPECT_EQ(vector.argc, 1);
    EXPECT_EQ(vector.argv[1], nullptr);
    EXPECT_EQ(userVMarg, nullptr);
}

TEST_F(HandOff, LaunchOptionIsAnyWholeArgumentTheFirstToo) {
    EXPECT_TRUE(haveLaunchOption("-console", {"-console"}));
    EXPECT_TRUE(haveLaunchOption("-console", {"p", "x", "-console"}));
    EXPECT_FALSE(haveLaunchOption("-console", {"p", "-Console", "-consoleLog", "-cons"}));
    EXPECT_FALSE(haveLaunchOption("-console", {}));
}

// --- The choice ---------------------------------------------------------------------------------

TEST(InProcessVersion, Only1015HandsOffInProcess) {
    for (const char* version : {"10.15", "10.15.7", "10.15.", "10.15beta"}) {
        EXPECT_TRUE(isInProcessVersion(version)) << version;
    }
    for (const char* version :
         {"10.14.6", "11.2", "10.16", "10.150", "11.15", "1.15", "10", "10.", "10-15", "10..15",
          "garbage", "", ".15", "99999999999999999999.15", "10.99999999999999999999"}) {
        EXPECT_FALSE(isInProcessVersion(version)) << version;
    }
}

TEST_F(HandOff, AnyOtherExecutableNameHandsOffInProcess) {
    initInvokeDylib(propertyList({{L"invoke.eclipse.dylib", L"0"}}));
    EXPECT_TRUE(invokeDylib) << "these tests are not called rcplauncher";
}

const Probe kChoice("hand-off choice", [](const std::vector<std::string>& arguments) {
    PropertyList properties;
    if (!arguments.empty()) {
        properties = propertyList({{L"invoke.eclipse.dylib", toWide(arguments.front())}});
    }
    initInvokeDylib(properties);
    return invokeDylib ? 3 : 4;
});

TEST_F(HandOff, PropertyDecidesForTheLaunchersOwnNameAndOneAloneMeansInProcess) {
    const std::string program = folder_.narrow("rcplauncher");
    test::linkProgram(program);
    EXPECT_EQ(runProbe("hand-off choice", {"1"}, program).status, 3);
    for (const char* value : {"true", "0", "", "11", "01"}) {
        EXPECT_EQ(runProbe("hand-off choice", {value}, program).status, 4) << value;
    }
}

#ifdef __linux__
TEST_F(HandOff, WithoutTheKeyASystemWithoutAProductVersionExecutes) {
    const std::string program = folder_.narrow("rcplauncher");
    test::linkProgram(program);
    EXPECT_EQ(runProbe("hand-off choice", {}, program).status, 4);
}
#endif

TEST_F(HandOff, NameIsThatUnderWhichTheProgramWasStarted) {
    test::linkProgram(folder_.narrow("rcplauncher"));
    for (const char* name : {"client", "rcplauncher2", "RCPLauncher"}) {
        const std::string link = folder_.narrow(std::string("links/") + name);
        std::filesystem::create_directories(folder_.path() / "links");
        std::filesystem::create_symlink(folder_.path() / "rcplauncher", link);
        EXPECT_EQ(runProbe("hand-off choice", {"0"}, link).status, 3) << name;
    }
}

// --- The library --------------------------------------------------------------------------------

void handOffTo(const std::string& library) {
    NarrowArguments arguments(Arguments{L"/opt/Velmo", L"-data", L"B\u00FCro", L"-VMARGS", L"-Xa"});
    Gate gate;
    invokeEclipseDylib(toWide(library), arguments, gate);
}

const Probe kLibrary("library", [](const std::vector<std::string>& arguments) {
    handOffTo(arguments.at(0));
    return 3;
});

TEST_F(HandOff, LibraryGetsAllArgumentsFirstAndThoseInFrontOfVmargsThen) {
    const ProbeResult result = runProbe("library", {seen(STANDIN_LIBRARY)});
    EXPECT_EQ(result.status, 3) << "the result of run is ignored";
    EXPECT_THAT(result.output, HasSubstr("\"argc\": 5,\n  \"argv\": [\n    \"/opt/Velmo\",\n"
                                         "    \"-data\",\n    \"B\u00FCro\",\n    \"-VMARGS\",\n"
                                         "    \"-Xa\"],\n  \"library\": \"" +
                                         seen(STANDIN_LIBRARY) + "\""));
    EXPECT_THAT(result.output, HasSubstr("\"runArgc\": 3,\n  \"runArgv\": [\n    \"/opt/Velmo\",\n"
                                         "    \"-data\",\n    \"B\u00FCro\"],\n"
                                         "  \"vmArgs\": [\n    \"-Xa\"]"));
}

TEST_F(HandOff, LibraryThatIsMissingEndsTheLaunchWithPathAndReason) {
    const std::string path = folder_.narrow("missing.so");
    EXPECT_FATAL(handOffTo(path), "Error: invokeEclipseDylib: " + path + " cannot be used: .+\n");
}

TEST_F(HandOff, LibraryThatIsNoneEndsTheLaunch) {
    folder_.write("text.so", "no library");
    EXPECT_FATAL(handOffTo(folder_.narrow("text.so")), "text.so cannot be used: .+\n");
}

TEST_F(HandOff, LibraryWithoutAnEntryPointEndsTheLaunch) {
    EXPECT_FATAL(handOffTo(seen(STANDIN_WITHOUT_RUN)),
                 "standin_without_run.so cannot be used: .*run");
    EXPECT_FATAL(handOffTo(seen(STANDIN_WITHOUT_SET_INITIAL_ARGS)),
                 "standin_without_set_initial_args.so cannot be used: .*setInitialArgs");
}

// --- launchEclipse ------------------------------------------------------------------------------

/// Arguments: the folder of the log, "inside" or "execute", the library, the launch arguments.
const Probe kLaunch("launch", [](const std::vector<std::string>& arguments) {
    enableLogging(toWide(arguments.at(0)));
    invokeDylib = arguments.at(1) == "inside";
    CommandLine line;
    line.setLibrary(toWide(arguments.at(2)));
    for (std::size_t i = 3; i < arguments.size(); ++i) {
        line.add(toWide(arguments[i]));
    }
    const pid_t self = getpid();
    launchEclipse({L"rcplauncher"}, line);
    // Two processes come here; only the one that was started is the test's.
    return getpid() == self ? 3 : 0;
});

class Launch : public HandOff {
  protected:
    ProbeResult launch(const std::string& kind, const std::string& library,
                       const std::vector<std::string>& launchArguments) const {
        std::vector<std::string> arguments = {folder_.narrow(), kind, library};
        arguments.insert(arguments.end(), launchArguments.begin(), launchArguments.end());
        return runProbe("launch", arguments);
    }
    [[nodiscard]] std::string log() const { return folder_.read("rcplauncher.log"); }
};

TEST_F(Launch, LaunchParametersAreLoggedOneALineWhetherTracingOrNot) {
    launch("execute", "", {seen(STANDIN_PLATFORM), "-data", "100%s", ""});
    EXPECT_EQ(log(), "\nZYPRA0132I: ===== Begin Launch Parameters =====\n" +
                         seen(STANDIN_PLATFORM) +
                         "\n-data\n100%s\n\nZYPRA0133I: ===== End Launch Parameters =====\n");
}

TEST_F(Launch, ExecutedPlatformGetsEveryArgument) {
    const ProbeResult result = launch("execute", seen(STANDIN_LIBRARY),
                                      {seen(STANDIN_PLATFORM), "-data", "two words", "-vmargs"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("\"kind\": \"exec\",\n  \"argc\": 4,\n  \"argv\": [\n"
                                         "    \"" +
                                         seen(STANDIN_PLATFORM) +
                                         "\",\n    \"-data\",\n"
                                         "    \"two words\",\n    \"-vmargs\"]"));
}

TEST_F(Launch, InProcessPlatformRunsThroughTheLibrary) {
    const ProbeResult result =
        launch("inside", seen(STANDIN_LIBRARY), {"/not/there", "-data", "x", "-vmargs", "-Xa"});
    EXPECT_EQ(result.status, 3) << "it came back from the platform";
    EXPECT_THAT(result.output, HasSubstr("\"kind\": \"library\""));
    EXPECT_THAT(result.output, HasSubstr("\"runArgc\": 3"));
}

TEST_F(Launch, WithoutALibraryThePlatformIsExecutedEvenInProcess) {
    EXPECT_THAT(launch("inside", "", {seen(STANDIN_PLATFORM)}).output,
                HasSubstr("\"kind\": \"exec\""));
}

TEST_F(Launch, FailedExecIsOneRecordAndTheStatusStays) {
    const ProbeResult result = launch("execute", "", {folder_.narrow("missing"), "-data"});
    EXPECT_EQ(result.status, 3) << "launchEclipse returned";
    EXPECT_TRUE(log().ends_with("Error: execv: " + folder_.narrow("missing") +
                                " could not be started : No such file or directory\n"))
        << log();
}

TEST_F(Launch, PlatformKeepsTheLaunchersProcessId) {
    const ProbeResult result = launch("execute", "", {"/bin/sh", "-c", "echo $PPID"});
    EXPECT_EQ(result.output, std::to_string(getpid()) + "\n") << "our own child became it";
}

}  // namespace
}  // namespace rcp
