// A launcher that finds the workspace's platform running: it starts a daemon of it.
#include "checks.h"
#include "tests/acceptance/paths.h"

#include <filesystem>

namespace acceptance {

namespace {

class Daemon : public testing::TestWithParam<const char*> {
  protected:
    Daemon() { velmo_.set("invoke.eclipse.dylib", GetParam()); }

    Installation velmo_;
};

std::string nameOf(const testing::TestParamInfo<const char*>& info) {
    return *info.param == '1' ? "InProcess" : "Exec";
}

INSTANTIATE_TEST_SUITE_P(HandOff, Daemon, testing::Values("0", "1"), nameOf);

TEST_P(Daemon, IsToldTheRunningPlatformAndChangesNoneOfItsFiles) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    velmo_.write(velmo_.workspace + "/.sid", "7");
    const std::string recorded = readFile(velmo_.configuration() + "/args.properties");
    ASSERT_NE(recorded, "");
    const Launch second = velmo_.launch({"-unlike", "the first"});
    const std::string id = std::to_string(first.pid());
    ASSERT_TRUE(second.platform.has_value()) << second.log;
    EXPECT_EQ(second.platform->after("-useDaemon"), id);
    EXPECT_TRUE(hasLine(second.log, "ZYPRA0305I: We are daemon process"));
    EXPECT_FALSE(hasLine(second.log, "ZYPRA0304I: We are main process"));
    EXPECT_EQ(readFile(velmo_.workspace + "/.rcp.lock"), id + "          ");
    EXPECT_EQ(readFile(velmo_.workspace + "/.rcp.main"), id + "    ");
    EXPECT_EQ(readFile(velmo_.configuration() + "/args.properties"), recorded);
    EXPECT_TRUE(fileExists(velmo_.workspace + "/.sid"));
    EXPECT_EQ(first.finish().status, 0);
}

TEST_P(Daemon, BecomesMainOnceThePlatformHasEnded) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    EXPECT_TRUE(velmo_.start().has("-useDaemon"));
    EXPECT_EQ(first.finish().status, 0);
    velmo_.write(velmo_.workspace + "/.sid", "7");
    const Launch next = velmo_.launch();
    ASSERT_TRUE(next.platform.has_value());
    EXPECT_FALSE(next.platform->has("-useDaemon"));
    EXPECT_TRUE(hasLine(next.log, "ZYPRA0304I: We are main process"));
    EXPECT_FALSE(fileExists(velmo_.workspace + "/.sid"));
}

TEST_P(Daemon, BecomesMainOnceThePlatformWasKilled) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    first.kill();
    EXPECT_EQ(first.finish().signal, SIGKILL);
    EXPECT_FALSE(velmo_.start().has("-useDaemon"));
}

TEST_P(Daemon, IsNotSentIntoAnotherWorkspace) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    EXPECT_FALSE(velmo_.start({"-data", velmo_.path("elsewhere")}).has("-useDaemon"));
    EXPECT_EQ(first.finish().status, 0);
}

TEST_P(Daemon, TerminalAndListingVariablesHideNoPlatform) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    velmo_.environment["COLUMNS"] = "20";
    velmo_.environment["PS_FORMAT"] = "pid";
    EXPECT_EQ(velmo_.start().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
}

TEST_P(Daemon, RelativePathHidesNoPlatform) {
    velmo_.folder = velmo_.rcp;
    velmo_.programName = "./rcplauncher";
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    EXPECT_EQ(velmo_.start().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
}

TEST_P(Daemon, UpgradeHidesNoRunningPlatform) {
    velmo_.programName = "./rcplauncher";
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    velmo_.place(velmo_.program, velmo_.rcp + "/new");
    std::filesystem::remove(velmo_.program);
    std::filesystem::copy_file(velmo_.rcp + "/new", velmo_.program);
    velmo_.place(ACCEPTANCE_STANDIN_PROGRAM, velmo_.base + "/macosx/x86/eclipse");
    EXPECT_EQ(velmo_.start().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
}

TEST_P(Daemon, RefusesToInstall) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    expectLateFatal(velmo_.launch({"-provManifest", "m"}),
                    "ZYPRA0122E: Attempting to install while process " +
                        std::to_string(first.pid()) + " is running.");
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_TRUE(velmo_.launch({"-provManifest", "m"}).platform.has_value());
}

TEST_P(Daemon, NeverProvisions) {
    velmo_.addInstallLine("provisioning.manifest.version=1");
    velmo_.set("provisioning.manifest.version", "1");
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    velmo_.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
    velmo_.set("provisioning.manifest.version", "2");
    const Report second = velmo_.start();
    EXPECT_TRUE(second.has("-useDaemon"));
    EXPECT_FALSE(second.has("com.ovr.provision"));
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_TRUE(velmo_.start().has("com.ovr.provision"));
}

TEST(DaemonOfService, IsASecondPlatformAndSaysSo) {
    Installation velmo;
    velmo.useServiceConfiguration();
    const auto record = [](pid_t id) {
        return "Error: startup: process " + std::to_string(id) +
               " is this workspace's platform; another one starts beside it.";
    };
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    const Launch second = velmo.launch();
    ASSERT_TRUE(second.platform.has_value()) << second.log;
    EXPECT_FALSE(second.platform->has("-useDaemon"));
    expectBareRecord(second.log, record(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_FALSE(hasLineStart(velmo.launch().log, "Error: startup:"));
}

// What runs there is the JVM, whose listing need not show the client's name.
TEST(DaemonOfService, IsToldByTheJvmWithoutAListing) {
    Installation velmo;
    velmo.useServiceConfiguration();
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    velmo.environment["PATH"] = velmo.path("empty");
    const Launch second = velmo.launch();
    expectBareRecord(second.log,
                     "Error: startup: process " + std::to_string(first.pid()) +
                         " is this workspace's platform; another one starts beside it.");
    EXPECT_EQ(first.finish().status, 0);
}

// The executable's name comes from a property file and is text, whatever it looks like.
TEST(DaemonOfExecutable, IsFoundWhateverTheExecutablesNameLooksLike) {
    for (const char* name : {"-v", "Velmo Client", "a;touch x", "$(touch x)"}) {
        Installation velmo;
        velmo.set("eclipse.name", name);
        velmo.place(ACCEPTANCE_STANDIN_PROGRAM, velmo.base + "/macosx/x86/" + name);
        StayingLaunch first = velmo.startStaying();
        first.waitUntilRecorded();
        EXPECT_EQ(velmo.start().after("-useDaemon"), std::to_string(first.pid())) << name;
        EXPECT_EQ(first.finish().status, 0);
        EXPECT_FALSE(fileExists(velmo.folder + "/x"));
    }
}

TEST(DaemonOfExecutable, IsFoundWithoutAListing) {
    Installation velmo;
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    velmo.environment["PATH"] = velmo.path("empty");
    EXPECT_EQ(velmo.start().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
}

}  // namespace

}  // namespace acceptance
