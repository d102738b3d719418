// The provisioning application, which runs before the user's client does.
#include "hostile.h"
#include "tests/acceptance/paths.h"

#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <thread>

namespace acceptance {

namespace {

namespace files = std::filesystem;

class Provisioning : public testing::Test {
  protected:
    Provisioning() {
        velmo_.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
        setLevel("2");
        velmo_.addInstallLine("provisioning.manifest.version=2");
    }
    void setLevel(const std::string& level) { velmo_.set("provisioning.manifest.version", level); }
    [[nodiscard]] bool provisions(const Texts& arguments = {}) const {
        return velmo_.start(arguments).has("com.ovr.provision");
    }

    Installation velmo_;
};

TEST_F(Provisioning, FirstLaunchProvisionsAndTheNextIsTheUsersClient) {
    const Launch first = velmo_.launch({"-mine"});
    EXPECT_EQ(first.status, 0);
    ASSERT_TRUE(first.platform.has_value()) << first.log;
    EXPECT_EQ(first.platform->pid, first.pid) << "the launcher's process becomes the application";
    EXPECT_EQ(first.platform->after("-application"), "com.ovr.provision");
    EXPECT_TRUE(first.platform->has("-userProvLaunch"));
    EXPECT_TRUE(first.platform->has("-mine"));
    EXPECT_FALSE(first.platform->has("-useDaemon"));
    EXPECT_FALSE(first.platform->has("-XstartOnFirstThread")) << "that is the client's";
    expectList(first.platform->arguments, provisioningParameters(first.log));
    expectList({"(not in the log)"}, launchParameters(first.log));
    EXPECT_FALSE(provisions());
}

TEST_F(Provisioning, ApplicationIsExecutedAlsoWhenTheClientRunsInProcess) {
    velmo_.set("invoke.eclipse.dylib", "1");
    EXPECT_EQ(velmo_.start().kind, "exec");
    EXPECT_EQ(velmo_.start().kind, "library");
}

TEST_F(Provisioning, BothFilesHoldTheForkedProcessesId) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
        velmo.set("invoke.eclipse.dylib", inProcess);
        const Launch launch = velmo.launch();
        const std::string lock = readFile(velmo.workspace + "/.rcp.lock");
        const std::string id = lock.substr(0, lock.find(' '));
        EXPECT_GT(std::atol(id.c_str()), 0);
        EXPECT_NE(id, std::to_string(launch.pid));
        EXPECT_EQ(lock, id + "          ");
        EXPECT_EQ(readFile(velmo.workspace + "/.rcp.main"), id + "    ");
    }
}

TEST_F(Provisioning, SecondClickWaitsForItsEndAndThenReadsEverythingAfresh) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
        velmo.set("invoke.eclipse.dylib", inProcess).set("provisioning.manifest.version", "2");
        velmo.addInstallLine("provisioning.manifest.version=2");
        StayingLaunch first = velmo.startStaying();
        EXPECT_TRUE(first.platform().has("com.ovr.provision"));
        const std::string file = velmo.workspace + "/.rcp.provisioning";
        EXPECT_TRUE(readFile(file).starts_with(std::to_string(first.pid()) + " "));
        const std::string marker = *inProcess == '1' ? velmo.hold() : "";
        StayingLaunch second = velmo.startStaying();
        StayingLaunch third = velmo.startStaying();
        if (marker.empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        } else {
            EXPECT_TRUE(isReached(marker));
        }
        EXPECT_FALSE(second.reported().has_value());
        EXPECT_FALSE(third.reported().has_value());
        const std::string properties = velmo.rcp + "/rcplauncher.properties";
        velmo.write(properties, readFile(properties) + "product=com.ovr.new\n");
        EXPECT_EQ(first.finish().status, 0);
        files::remove(marker);
        const Report platforms[] = {second.platform(), third.platform()};
        const Report& main = platforms[platforms[0].has("-useDaemon") ? 1 : 0];
        const Report& daemon = platforms[platforms[0].has("-useDaemon") ? 0 : 1];
        EXPECT_FALSE(main.has("com.ovr.provision"));
        EXPECT_EQ(main.after("-product"), "com.ovr.new");
        EXPECT_EQ(daemon.after("-useDaemon"), std::to_string(main.pid));
        EXPECT_EQ(second.finish().status, 0);
        const Launch launch = third.finish();
        EXPECT_EQ(launch.status, 0);
        EXPECT_FALSE(fileExists(file));
        EXPECT_TRUE(hasLine(launch.log, "ZYPRA0307I: process " + std::to_string(first.pid()) +
                                            " provisions this workspace; waiting for its end"))
            << launch.log;
    }
}

TEST_F(Provisioning, FileOfOneThatWasKilledKeepsNobodyOut) {
    StayingLaunch first = velmo_.startStaying();
    EXPECT_TRUE(first.platform().has("com.ovr.provision"));
    first.kill();
    EXPECT_EQ(first.finish().signal, SIGKILL);
    EXPECT_TRUE(fileExists(velmo_.workspace + "/.rcp.provisioning"));
    EXPECT_FALSE(provisions());
    EXPECT_FALSE(fileExists(velmo_.workspace + "/.rcp.provisioning"));
}

TEST_F(Provisioning, ApplicationHoldsNoDescriptorOfTheLauncher) {
    const Report application = velmo_.start();
    ASSERT_FALSE(application.descriptors.empty());
    for (const auto& [descriptor, target] : application.descriptors) {
        EXPECT_LE(descriptor, 2) << target;
    }
}

TEST_F(Provisioning, NewLevelProvisionsUntilTheUsersFileHasIt) {
    EXPECT_TRUE(provisions());
    setLevel("3");
    EXPECT_TRUE(provisions());
    EXPECT_TRUE(provisions());
    setLevel("2");
    EXPECT_FALSE(provisions());
}

TEST_F(Provisioning, InstallerProvisionsWithoutTheUsersMark) {
    EXPECT_TRUE(provisions());
    EXPECT_FALSE(provisions({"-provManifest", "m"}));
    EXPECT_FALSE(provisions({"-rcpLauncherWait"}));
    const Report application = velmo_.start({"-rcpLauncherWait", "-provManifest", "m"});
    EXPECT_EQ(application.after("-application"), "com.ovr.provision");
    EXPECT_FALSE(application.has("-userProvLaunch"));
}

TEST_F(Provisioning, OnlyTheExactValueSwitchesItOn) {
    for (const char* value : {"True", "yes", "", "1"}) {
        Installation velmo;
        velmo.set("provisioning", value).set("provisioning.application", "com.ovr.provision");
        EXPECT_FALSE(velmo.start().has("com.ovr.provision")) << value;
    }
}

TEST_F(Provisioning, ServiceConfigurationNeverProvisions) {
    velmo_.useServiceConfiguration();
    EXPECT_FALSE(provisions());
}

TEST_F(Provisioning, MissingApplicationIsFatalBeforeAnythingIsRecorded) {
    velmo_.unset("provisioning.application");
    expectLateFatal(velmo_.launch(),
                    "Error: checkForProvisioning: provisioning is due, but the "
                    "provisioning.application property is missing.");
    EXPECT_EQ(readFile(velmo_.workspace + "/.rcp.lock"), "");
    EXPECT_FALSE(fileExists(velmo_.workspace + "/.rcp.main"));
}

TEST_F(Provisioning, SharedClassesOptionIsSwitchedOffWhileProvisioning) {
    velmo_.set("vmarg.Dshare", "-Xshareclasses:name=velmo");
    const Report application = velmo_.start();
    EXPECT_TRUE(application.has("-Xshareclasses=none"));
    EXPECT_FALSE(application.has("-Xshareclasses:name=velmo"));
    EXPECT_TRUE(velmo_.start().has("-Xshareclasses:name=velmo"));
}

TEST_F(Provisioning, SharedClassesOptionThatIsNotThereIsNotAdded) {
    const Texts arguments = velmo_.start().arguments;
    EXPECT_TRUE(std::none_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return argument.starts_with("-Xshareclasses");
    }));
}

TEST_F(Provisioning, SharedClassesDirectoryIsEmptiedAtANewLevelOnly) {
    const std::string shared = velmo_.path("shared");
    velmo_.addInstallLine("jvm.shareclasses.fullpath=" + shared);
    velmo_.write(shared + "/deep/cache", "classes");
    EXPECT_TRUE(provisions());
    EXPECT_TRUE(fileExists(shared + "/deep/cache")) << "the first launch is at the same level";
    setLevel("3");
    EXPECT_TRUE(provisions());
    EXPECT_TRUE(fileExists(shared));
    EXPECT_TRUE(files::is_empty(shared));
}

TEST_F(Provisioning, LinkToSharedClassesIsLeftAloneHoweverItsNameEnds) {
    const std::string kept = velmo_.write(velmo_.root + "/kept/f", "kept");
    files::create_directory_symlink(velmo_.root + "/kept", velmo_.path("link"));
    velmo_.addInstallLine("jvm.shareclasses.fullpath=" + velmo_.path("link") + "/");
    setLevel("3");
    const Launch launch = velmo_.launch();
    EXPECT_EQ(readFile(kept), "kept");
    expectBareRecord(launch.log, "Error: jvm.shareclasses.fullpath is not emptied: " +
                                     velmo_.path("link") + " is a symbolic link.");
}

TEST_F(Provisioning, SharedClassesThatCannotBeRemovedAreFatal) {
    NEEDS_ROOT();
    const std::string held = velmo_.write("shared/held/file", "x");
    velmo_.addInstallLine("jvm.shareclasses.fullpath=" + velmo_.path("shared"));
    setLevel("3");
    velmo_.giveTo(kUser);
    files::permissions(velmo_.path("shared/held"),
                       files::perms::owner_read | files::perms::owner_exec);
    const Launch launch = velmo_.launch();
    const std::string record =
        "ZYPRA0087I end: Unable to remove all files in the shared classes directory.";
    expectLateFatal(launch, record);
    expectBareRecord(launch.log, record);
    expectBareRecord(launch.log,
                     "ZYPRA0086I begin: Information collected while removing shared classes "
                     "directory");
    EXPECT_NE(launch.log.find(held + "  - "), std::string::npos) << launch.log;
}

TEST_F(Provisioning, DirectoryThatHoldsTheUsersAreaIsNeverEmptied) {
    const std::pair<std::string, std::string> cases[] = {{velmo_.userHome, "is the home directory"},
                                                         {velmo_.workspace, "is the workspace"},
                                                         {velmo_.home, "is the installation"},
                                                         {velmo_.root, "holds the home directory"}};
    for (const auto& [path, reason] : cases) {
        Installation other;
        const std::string directory = other.root + path.substr(velmo_.root.size());
        other.addInstallLine("jvm.shareclasses.fullpath=" + directory);
        other.write(other.userHome + "/letter.txt", "dear");
        const Launch launch = other.launch();
        EXPECT_TRUE(launch.platform.has_value()) << launch.log;
        EXPECT_TRUE(fileExists(other.userHome + "/letter.txt"));
        EXPECT_TRUE(fileExists(other.configuration() + "/config.ini"));
        expectBareRecord(launch.log, "Error: jvm.shareclasses.fullpath is not emptied: " +
                                         directory + " " + reason + ".");
    }
}

TEST_F(Provisioning, ApplicationThatCannotBeStartedFreesTheLock) {
    velmo_.write(velmo_.base + "/macosx/x86/eclipse", "\x7f nothing", 0755);
    const Launch first = velmo_.launch();
    EXPECT_EQ(first.status, 0);
    EXPECT_FALSE(first.platform.has_value());
    velmo_.place(ACCEPTANCE_STANDIN_PROGRAM, velmo_.base + "/macosx/x86/eclipse");
    EXPECT_FALSE(provisions()) << "the user's files are there by now";
}

}  // namespace

}  // namespace acceptance
