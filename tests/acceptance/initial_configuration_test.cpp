// Until the user's first configuration is complete, launches run with "-config initial".
#include "checks.h"
#include "tests/acceptance/paths.h"

namespace acceptance {

namespace {

class InitialConfiguration : public testing::Test {
  protected:
    InitialConfiguration() {
        velmo_.set("config.initial.1", "-application").set("config.initial.2", "com.ovr.initial");
        velmo_.set("config.initial.3", "-initialCompleteFlag");
        velmo_.set("config.initial.4", "initial.done");
        velmo_.set("config.initial.restartExe.macosx", "/not/numbered");
    }

    Installation velmo_;
};

TEST_F(InitialConfiguration, ReplacesTheLaunchUntilItIsComplete) {
    const Report first = velmo_.start({"-mine", "-application", "com.ovr.client"});
    EXPECT_EQ(first.after("-application"), "com.ovr.initial");
    EXPECT_EQ(first.count("-application"), 1);
    EXPECT_TRUE(first.has("-initialCompleteFlag"));
    EXPECT_FALSE(first.has("-mine"));
    EXPECT_FALSE(first.has("-config"));
    EXPECT_FALSE(first.has("/not/numbered"));
    EXPECT_EQ(velmo_.start().after("-application"), "com.ovr.initial") << "still not complete";
    const std::string userFile = velmo_.configuration() + "/rcpinstall.properties";
    velmo_.write(userFile, readFile(userFile) + "initial.done=true\n");
    const Report client = velmo_.start({"-mine", "-application", "com.ovr.client"});
    EXPECT_EQ(client.after("-application"), "com.ovr.client");
    EXPECT_TRUE(client.has("-mine"));
    EXPECT_FALSE(client.has("-initialCompleteFlag"));
}

TEST_F(InitialConfiguration, RunsTheSameJvmAsEveryLaterLaunch) {
    EXPECT_EQ(velmo_.start().after("-vm"), kDefaultJvm);
    const std::string jvm = velmo_.useOwnJvm();
    EXPECT_EQ(velmo_.start().after("-vm"), jvm);
    const std::string other = velmo_.place(ACCEPTANCE_STANDIN_PROGRAM, velmo_.path("jre/bin/java"));
    EXPECT_EQ(velmo_.start({"-vm", other}).after("-vm"), other);
}

TEST_F(InitialConfiguration, KeepsWorkspaceConsoleAndDebuggingInTheirOrder) {
    velmo_.workspace = velmo_.path("workspace");
    const Report platform = velmo_.start(
        {"-noExit", "-drop", "-data", velmo_.workspace, "-console", "-vmargs", "-Dx=y"});
    EXPECT_EQ(platform.after("-data"), velmo_.workspace);
    EXPECT_EQ(platform.count("-data"), 1);
    EXPECT_GT(platform.indexOf("-noExit"), 0);
    EXPECT_GT(platform.indexOf("-console"), platform.indexOf("-noExit"));
    EXPECT_GT(platform.indexOf("-application"), platform.indexOf("-console"))
        << "the extension's arguments follow";
    EXPECT_FALSE(platform.has("-drop"));
    EXPECT_FALSE(platform.has("-Dx=y"));
}

TEST_F(InitialConfiguration, DaemonsRunWithItToo) {
    StayingLaunch first = velmo_.startStaying();
    first.waitUntilRecorded();
    const Report daemon = velmo_.start();
    EXPECT_EQ(daemon.after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(daemon.after("-application"), "com.ovr.initial");
    EXPECT_EQ(first.finish().status, 0);
}

TEST_F(InitialConfiguration, WorksInProcessToo) {
    velmo_.set("invoke.eclipse.dylib", "1");
    EXPECT_EQ(velmo_.start().after("-application"), "com.ovr.initial");
}

TEST_F(InitialConfiguration, ProvisioningRunsFirst) {
    velmo_.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
    velmo_.set("provisioning.manifest.version", "1");
    velmo_.addInstallLine("provisioning.manifest.version=1");
    EXPECT_EQ(velmo_.start().after("-application"), "com.ovr.provision");
    EXPECT_EQ(velmo_.start().after("-application"), "com.ovr.initial");
}

TEST_F(InitialConfiguration, GapInTheNumbersIsFatal) {
    velmo_.unset("config.initial.2");
    expectLateFatal(velmo_.launch(),
                    "ZYPRA0114E: Invalid config.initial arguments. config.initial.2 not found");
}

TEST_F(InitialConfiguration, MissingFlagIsFatal) {
    velmo_.set("config.initial.3", "-other");
    expectLateFatal(velmo_.launch(),
                    "ZYPRA0115E: Invalid config.initial arguments. -initialCompleteFlag not found");
}

TEST_F(InitialConfiguration, IsOnlyForUsersOwnConfigurations) {
    for (const char* name : {"lockdown", "serial.multiuser"}) {
        velmo_.set("install.configuration", name);
        EXPECT_FALSE(velmo_.start().has("com.ovr.initial")) << name;
    }
    for (const char* name : {"user", "userpb", "multiuser"}) {
        velmo_.set("install.configuration", name);
        EXPECT_TRUE(velmo_.start().has("com.ovr.initial")) << name;
    }
}

}  // namespace

}  // namespace acceptance
