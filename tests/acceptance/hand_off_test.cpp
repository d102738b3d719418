// The last step of a launch: the launcher's process becomes the platform, through the launcher
// library or through execv.
#include "checks.h"
#include "tests/acceptance/paths.h"

namespace acceptance {

namespace {

TEST(HandOff, ExecReplacesTheLauncherAndKeepsItsProcessId) {
    Installation velmo;
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 0);
    ASSERT_TRUE(launch.platform.has_value()) << launch.log << launch.temporaryLog << launch.output;
    EXPECT_EQ(launch.platform->kind, "exec");
    EXPECT_EQ(launch.platform->pid, launch.pid);
    EXPECT_EQ(launch.platform->folder, velmo.folder);
    EXPECT_EQ(launch.platform->arguments.at(0), velmo.base + "/macosx/x86/eclipse");
    EXPECT_EQ(launch.output, "");
}

TEST(HandOff, InProcessRunsTheLibraryInTheLaunchersOwnProcess) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 0) << "what the library's run returns must not show";
    ASSERT_TRUE(launch.platform.has_value()) << launch.log << launch.temporaryLog << launch.output;
    const Report& platform = *launch.platform;
    EXPECT_EQ(platform.kind, "library");
    EXPECT_EQ(platform.pid, launch.pid);
    EXPECT_EQ(platform.library, velmo.base + "/macosx/x86/eclipse_1615.so");
    EXPECT_EQ(platform.argc, static_cast<long>(platform.arguments.size()));
    EXPECT_EQ(platform.arguments.at(0), velmo.base + "/macosx/x86/eclipse");
}

TEST(HandOff, InProcessRunReceivesOnlyTheArgumentsBeforeVmargs) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start({"-one", "-vmargs", "-Xmx1g"});
    const int separator = platform.indexOf("-vmargs");
    ASSERT_GT(separator, 0);
    const auto cut = platform.arguments.begin() + separator;
    expectList({platform.arguments.begin(), cut}, platform.runArguments);
    EXPECT_EQ(platform.runArgc, separator);
    ASSERT_TRUE(platform.vmArguments.has_value());
    expectList({cut + 1, platform.arguments.end()}, *platform.vmArguments);
    EXPECT_EQ(platform.vmArguments->at(0), "-Xmx1g");
    EXPECT_EQ(platform.vmArguments->back(), "-XstartOnFirstThread");
}

TEST(HandOff, InProcessCutsAtTheFirstVmargsWhateverItsLetterCase) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start({"-VmArgs", "-early"});
    expectList({velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
               platform.runArguments);
    ASSERT_TRUE(platform.vmArguments.has_value());
    EXPECT_EQ(platform.vmArguments->at(0), "-early");
    EXPECT_EQ(platform.vmArguments->at(1), "-data");
}

TEST(HandOff, AnyOtherValueOfTheInProcessPropertyMeansExec) {
    for (const char* value : {"true", "0", "", "11", "yes"}) {
        Installation velmo;
        velmo.set("invoke.eclipse.dylib", value);
        EXPECT_EQ(velmo.start().kind, "exec") << "value: " << value;
    }
}

TEST(HandOff, ExecutableUnderAnotherNameHandsOffInProcess) {
    Installation velmo;
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, velmo.rcp + "/velmo");
    EXPECT_EQ(velmo.start().kind, "library");
}

TEST(HandOff, ExecutableUnderAnotherNameDoesNotAskTheProperty) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "0");
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, velmo.rcp + "/rcplauncher2");
    EXPECT_EQ(velmo.start().kind, "library");
}

TEST(HandOff, TheNameIsTheExecutablesAndNotArgumentZero) {
    Installation velmo;
    velmo.programName = "velmo";
    EXPECT_EQ(velmo.start().kind, "exec");
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, velmo.rcp + "/velmo");
    velmo.programName = "rcplauncher";
    EXPECT_EQ(velmo.start().kind, "library");
}

TEST(HandOff, EmptyArgumentZeroIsSurvived) {
    Installation velmo;
    velmo.programName = "";
    EXPECT_EQ(velmo.start().kind, "exec");
}

TEST(HandOff, TheExecutablesNameIsTheOneThatEclipseNameGives) {
    Installation velmo;
    velmo.set("eclipse.name", "Velmo Client");
    velmo.place(ACCEPTANCE_STANDIN_PROGRAM, velmo.base + "/macosx/x86/Velmo Client");
    EXPECT_EQ(velmo.start().arguments.at(0), velmo.base + "/macosx/x86/Velmo Client");
}

TEST(HandOff, LastTwoArgumentsAreAlwaysTheEncodingAndTheFirstThread) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("invoke.eclipse.dylib", inProcess).set("cp", "/a.jar");
        const Texts arguments = velmo.start({"-vmargs", "-Dlast=1"}).arguments;
        ASSERT_GE(arguments.size(), 2U);
        EXPECT_EQ(arguments[arguments.size() - 2], "-Dfile.encoding=UTF-8");
        EXPECT_EQ(arguments.back(), "-XstartOnFirstThread");
    }
}

TEST(HandOff, ExecutedPlatformInheritsNoDescriptorOfTheLauncher) {
    Installation velmo;
    const Report platform = velmo.start();
    ASSERT_FALSE(platform.descriptors.empty());
    for (const auto& [descriptor, target] : platform.descriptors) {
        EXPECT_LE(descriptor, 2) << target;
    }
}

TEST(HandOff, PlatformInTheLaunchersProcessDoesNotHoldTheLockFile) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start();
    for (const auto& [descriptor, target] : platform.descriptors) {
        EXPECT_EQ(target.find(".rcp.lock"), std::string::npos) << descriptor << " " << target;
    }
}

TEST(HandOff, ChildRecordsThePlatformsProcessId) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("invoke.eclipse.dylib", inProcess);
        StayingLaunch launch = velmo.startStaying();
        launch.waitUntilRecorded();
        const std::string id = std::to_string(launch.platform().pid);
        EXPECT_EQ(launch.finish().status, 0);
        EXPECT_EQ(readFile(velmo.workspace + "/.rcp.lock"), id + "          ");
        EXPECT_EQ(readFile(velmo.workspace + "/.rcp.main"), id + "    ");
    }
}

TEST(HandOff, WaitOptionsAreNoRealWait) {
    Installation velmo;
    const Report platform = velmo.start({"-rcpLauncherWait"});
    EXPECT_TRUE(platform.has("-rcpLauncherWait"));
    EXPECT_TRUE(velmo.start({"-console"}).has("-console"));
}

TEST(HandOff, LaunchParametersAreLoggedOnePerLineInOrder) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("invoke.eclipse.dylib", inProcess);
        const Launch launch = velmo.launch({"-one", "two words", "100%s", "%n"});
        ASSERT_TRUE(launch.platform.has_value());
        expectList(launch.platform->arguments, launchParameters(launch.log));
    }
}

TEST(HandOff, FailedExecLeavesOneRecordAndStatusZero) {
    Installation velmo;
    const std::string program =
        velmo.write(velmo.base + "/macosx/x86/eclipse", "\x7f nothing", 0755);
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 0);
    EXPECT_FALSE(launch.platform.has_value());
    expectBareRecord(launch.log,
                     "Error: execv: " + program + " could not be started : Exec format error");
}

TEST(HandOff, PlainJavaThatIsNotThereLeavesOneRecordAndStatusZero) {
    Installation velmo;
    velmo.useServiceConfiguration();
    const Launch launch = velmo.launch({"-vm", "/not/there/java"});
    EXPECT_EQ(launch.status, 0);
    EXPECT_FALSE(launch.platform.has_value());
    expectBareRecord(launch.log,
                     "Error: execv: /not/there/java could not be started : No such "
                     "file or directory");
}

// The library cannot be used: path and the loader's reason are in the log.
void expectUnusable(const Installation& velmo, const std::string& library,
                    const std::string& reason) {
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 255);
    EXPECT_FALSE(launch.platform.has_value());
    EXPECT_EQ(launch.output, "");
    const std::string start = "Error: invokeEclipseDylib: " + library + " cannot be used: ";
    EXPECT_TRUE(hasLineStart(launch.log, start)) << launch.log;
    const size_t record = launch.log.find(start);
    ASSERT_NE(record, std::string::npos);
    EXPECT_NE(launch.log.find(reason, record + start.size()), std::string::npos) << launch.log;
}

TEST(HandOff, UnloadableLibraryIsFatalWithPathAndReason) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    expectUnusable(velmo, velmo.write(velmo.base + "/macosx/x86/eclipse_1615.so", "no library"),
                   "eclipse_1615.so");
}

TEST(HandOff, LibraryShortOfAnEntryPointIsFatalAndNothingOfItRuns) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const std::string library = velmo.base + "/macosx/x86/eclipse_1615.so";
    expectUnusable(velmo, velmo.place(ACCEPTANCE_STANDIN_WITHOUT_RUN, library), "run");
    expectUnusable(velmo, velmo.place(ACCEPTANCE_STANDIN_WITHOUT_SET_INITIAL_ARGS, library),
                   "setInitialArgs");
}

TEST(HandOff, ExecDoesNotLoadTheLibrary) {
    Installation velmo;
    velmo.write(velmo.base + "/macosx/x86/eclipse_1615.so", "no library");
    EXPECT_EQ(velmo.start().kind, "exec");
}

TEST(HandOff, PlainJavaCommandLineIsExecutedAlsoWhenInProcessIsAsked) {
    Installation velmo;
    const std::string java = velmo.useServiceConfiguration();
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start();
    EXPECT_EQ(platform.kind, "exec");
    EXPECT_EQ(platform.arguments.at(0), java);
}

}  // namespace

}  // namespace acceptance
