// The hand-off, and the choice between its two kinds.
#include "launcher/hand_off.h"

#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/hand_off_tools.h"
#include "platform/text.h"
#include "tests/support/sandbox.h"
#include "tests/unit/instance/lock_fixture.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/paths.h"
#include "tests/unit/probe.h"
#include "tests/unit/records.h"

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
        Vector vector({"p", "-data", option, "-Xa", "-Xb"});
        char** const rest = parseArgs(vector.argc, vector.argv);
        EXPECT_EQ(vector.argc, 2);
        EXPECT_STREQ(vector.argv[1], "-data");
        EXPECT_EQ(vector.argv[2], nullptr);
        ASSERT_EQ(rest, &vector.argv[3]);
        EXPECT_STREQ(rest[0], "-Xa");
        EXPECT_STREQ(rest[1], "-Xb");
        EXPECT_EQ(rest[2], nullptr);
    }
}

TEST_F(HandOff, FirstVmargsCounts) {
    Vector vector({"p", "-vmargs", "a", "-vmargs", "b"});
    char** const rest = parseArgs(vector.argc, vector.argv);
    EXPECT_EQ(vector.argc, 1);
    EXPECT_STREQ(rest[1], "-vmargs");
}

TEST_F(HandOff, VmargsAsTheLastArgumentGivesNoVmArguments) {
    Vector vector({"p", "-vmargs"});
    char** const rest = parseArgs(vector.argc, vector.argv);
    EXPECT_EQ(vector.argc, 1);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(rest[0], nullptr);
}

TEST_F(HandOff, WithoutVmargsOnlyTheEndIsSet) {
    Vector vector({"p", "-vmargsx", "vmargs", "rest"});
    vector.argc = 3;
    EXPECT_EQ(parseArgs(vector.argc, vector.argv), nullptr);
    EXPECT_EQ(vector.argc, 3);
    EXPECT_STREQ(vector.argv[2], "vmargs");
    EXPECT_EQ(vector.argv[3], nullptr);
}

TEST_F(HandOff, LaunchOptionIsAnyWholeArgumentTheFirstToo) {
    EXPECT_TRUE(haveLaunchOption(options::kConsole, {"-console"}));
    EXPECT_TRUE(haveLaunchOption(options::kConsole, {"p", "x", "-console"}));
    EXPECT_FALSE(haveLaunchOption(options::kConsole, {"p", "-Console", "-consoleLog", "-cons"}));
    EXPECT_FALSE(haveLaunchOption(options::kConsole, {}));
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
    Launch launch;
    launch.arguments = {L"rcplauncher"};
    launch.inputs.traits.invokeDylib = arguments.at(1) == "inside";
    launch.lock = PlatformLock::take(toWide(arguments.at(0)), {}, std::nullopt);
    enableLogging(toWide(arguments.at(0)));
    CommandLine& line = launch.plan.emplace().line;
    line.setLibrary(toWide(arguments.at(2)));
    for (std::size_t i = 3; i < arguments.size(); ++i) {
        line.add(toWide(arguments[i]));
    }
    const pid_t self = getpid();
    launchEclipse(launch);
    // Two processes come here; only the one that was started is the test's.
    return getpid() == self ? 3 : 0;
});

class HandedOff : public HandOff {
  protected:
    ProbeResult launch(const std::string& kind, const std::string& library,
                       const std::vector<std::string>& launchArguments) const {
        std::vector<std::string> arguments = {folder_.narrow(), kind, library};
        arguments.insert(arguments.end(), launchArguments.begin(), launchArguments.end());
        return runProbe("launch", arguments);
    }
    [[nodiscard]] std::string log() const { return folder_.read("rcplauncher.log"); }
};

TEST_F(HandedOff, LaunchParametersAreLoggedOneALineWhetherTracingOrNot) {
    launch("execute", "", {seen(STANDIN_PLATFORM), "-data", "100%s", ""});
    const std::string records = log();
    EXPECT_TRUE(records.starts_with("ZYPRA0303I: lock file captured @ ")) << records;
    EXPECT_EQ(records.substr(records.find('\n') + 1),
              "ZYPRA0090E: Existing platform lock file found - checking validity.\n"
              "ZYPRA0091E: No data in the platform lock file.\n"
              "ZYPRA0304I: We are main process\n\n"
              "ZYPRA0132I: ===== Begin Launch Parameters =====\n" +
                  seen(STANDIN_PLATFORM) +
                  "\n-data\n100%s\n\nZYPRA0133I: ===== End Launch Parameters =====\n");
}

TEST_F(HandedOff, ExecutedPlatformGetsEveryArgument) {
    const ProbeResult result = launch("execute", seen(STANDIN_LIBRARY),
                                      {seen(STANDIN_PLATFORM), "-data", "two words", "-vmargs"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("\"kind\": \"exec\",\n  \"argc\": 4,\n  \"argv\": [\n"
                                         "    \"" +
                                         seen(STANDIN_PLATFORM) +
                                         "\",\n    \"-data\",\n"
                                         "    \"two words\",\n    \"-vmargs\"]"));
}

TEST_F(HandedOff, InProcessPlatformRunsThroughTheLibrary) {
    const ProbeResult result =
        launch("inside", seen(STANDIN_LIBRARY), {"/not/there", "-data", "x", "-vmargs", "-Xa"});
    EXPECT_EQ(result.status, 3) << "it came back from the platform";
    EXPECT_THAT(result.output, HasSubstr("\"kind\": \"library\""));
    EXPECT_THAT(result.output, HasSubstr("\"runArgc\": 3"));
}

TEST_F(HandedOff, WithoutALibraryThePlatformIsExecutedEvenInProcess) {
    EXPECT_THAT(launch("inside", "", {seen(STANDIN_PLATFORM)}).output,
                HasSubstr("\"kind\": \"exec\""));
}

TEST_F(HandedOff, FailedExecIsOneRecordAndTheStatusStays) {
    const ProbeResult result = launch("execute", "", {folder_.narrow("missing"), "-data"});
    EXPECT_EQ(result.status, 3) << "launchEclipse returned";
    EXPECT_TRUE(log().ends_with("Error: execv: " + folder_.narrow("missing") +
                                " could not be started : No such file or directory\n"))
        << log();
}

TEST_F(HandedOff, PlatformKeepsTheLaunchersProcessId) {
    const ProbeResult result = launch("execute", "", {"/bin/sh", "-c", "echo $PPID"});
    EXPECT_EQ(result.output, std::to_string(getpid()) + "\n") << "our own child became it";
}

// --- Provisioning -------------------------------------------------------------------------------

class ProvisioningProgram : public test::LockTest {
  protected:
    /// Status of the process that carries the plan out; 99 when that comes back.
    int start(const std::wstring& script) {
        test::ChildProcess launcher([&] {
            Launch launch;
            launch.inputs.workspace = folder_.wide();
            launch.lock = PlatformLock::take(folder_.wide(), kMarker, std::nullopt);
            Plan& plan = launch.plan.emplace();
            plan.kind = LaunchKind::kUserProvisioning;
            plan.line.setProgram(script.empty() ? folder_.wide("missing") : L"/bin/sh",
                                 whys::kPlatformProgram);
            plan.line.add(L"-c");
            plan.line.add(script);
            const std::size_t before = logQueue().size();
            try {
                handOff(launch);
            } catch (const LaunchEnded& end) {
                // In the forked child, which comes back, and in a launcher that started nothing.
                folder_.write("records.new", logQueue().substr(before));
                std::filesystem::rename(folder_.path() / "records.new", folder_.path() / "records");
                return end.status;
            }
            return 99;
        });
        return launcher.wait();
    }
    void awaitChild() const {
        for (int round = 0; (!folder_.has("records") || isLocked()) && round < 5000; ++round) {
            usleep(1000);
        }
    }
};

TEST_F(ProvisioningProgram, IsLoggedAndReplacesTheProcess) {
    EXPECT_EQ(start(L"exit 9"), 9);
    awaitChild();
    const std::string records = folder_.read("records");
    EXPECT_EQ(records.substr(records.find("ZYPRA0129I")),
              ("ZYPRA0129I: ===== Begin Provisioning Parameters =====\n/bin/sh\n-c\n"
               "exit 9\nZYPRA0130I: ===== End Provisioning Parameters =====\n"));
    EXPECT_FALSE(isLocked());
}

TEST_F(ProvisioningProgram, BothFilesHoldTheForkedChildsId) {
    ASSERT_EQ(start(L"exit 7"), 7);
    const std::string id = lockFile().substr(0, lockFile().find(' '));
    EXPECT_GT(std::stol(id), 0);
    EXPECT_EQ(lockFile(), id + "          ");
    EXPECT_EQ(folder_.read(".rcp.main"), id + "    ");
}

TEST_F(ProvisioningProgram, ThatCannotBeStartedEndsWithStatusZeroAndAFreeLock) {
    EXPECT_EQ(start(L""), 0);
    awaitChild();
    EXPECT_FALSE(isLocked());
}

}  // namespace
}  // namespace rcp
