// What the next launch would do, and the launch itself right after.
#include "tests/inspect/status_fixture.h"

namespace rcp::inspect::test {
namespace {

class StatusOfTheNextLaunch : public StatusTest {
  protected:
    [[nodiscard]] Json next(const Words& arguments = {}) const {
        Json next = status(arguments)["nextLaunch"];
        expectAsRehearsed(next, arguments);
        return next;
    }
    [[nodiscard]] Json steps(const Words& arguments = {}) const { return next(arguments)["steps"]; }
    [[nodiscard]] std::string idOfEnd(const Words& arguments = {}) const {
        const Json end = next(arguments);
        return end["role"] == "none" ? end["record"]["messages"][0]["id"] : Json("");
    }

    // What "explain" tells of the same launch.
    void expectAsRehearsed(const Json& next, const Words& arguments) const {
        Words all = words(arguments, {"--format", "json"});
        all[1] = "explain";
        Program program(all, environment());
        const Json rehearsed = Json::parse(program.rest());
        const Json& outcome = rehearsed["outcome"];
        const auto has = [&](const char* step) {
            return std::find(next["steps"].begin(), next["steps"].end(), step) !=
                   next["steps"].end();
        };
        ASSERT_EQ(next["role"] == "none", outcome["kind"] == "fatal") << outcome.dump(2);
        if (next["role"] == "none") {
            const std::string record = next["record"]["text"];
            EXPECT_TRUE(outcome["record"].get<std::string>().starts_with(record))
                << outcome["record"] << " after all: " << record;
            return;
        }
        const Json& area = rehearsed["facts"]["area"];
        EXPECT_EQ(next["role"], outcome["role"]);
        EXPECT_EQ(has("provision"), outcome["kind"] == "provisioning");
        EXPECT_EQ(has("make-area"), area == "new");
        EXPECT_EQ(has("reuse-area"), area == "reused");
        EXPECT_EQ(has("reset-area"), area == "reset");
        EXPECT_EQ(has("leave-area-alone"), area == "in use");
    }
    static constexpr const char* kUserFile = "home/workspace/ann/.config/rcpinstall.properties";
};

TEST_F(StatusOfTheNextLaunch, AnAreaOfAnotherInstallationWillBeRenewed) {
    ASSERT_EQ(launch(), 0);
    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    const Json expected = {{"installation", "newer"}, {"area", "sample"}, {"isOld", true}};
    EXPECT_EQ(status()["installId"], expected);
    EXPECT_EQ(steps(), Json({"reuse-area", "start-platform"}));

    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(folder_.has(area(".configbak")));
    EXPECT_EQ(status()["installId"]["isOld"], false);
    EXPECT_EQ(steps(), Json({"start-platform"}));
}

TEST_F(StatusOfTheNextLaunch, UnderARunningPlatformAnOldAreaIsLeftAlone) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    EXPECT_EQ(steps(), Json({"leave-area-alone", "pass-arguments-on"}));

    EXPECT_EQ(launch({"-again"}), 0);
    EXPECT_FALSE(folder_.has(area(".configbak")));
}

TEST_F(StatusOfTheNextLaunch, TheUserMayAskForAReset) {
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(steps({"-resetconfig"}), Json({"reset-area", "start-platform"}));
    EXPECT_EQ(launch({"-resetconfig"}), 0);
    EXPECT_TRUE(folder_.has(area(".configbak")));
}

TEST_F(StatusOfTheNextLaunch, ProvisioningComesBeforeTheFirstPlatform) {
    makeInstallation({"--provisioning", "2"});
    const Json state = status();
    EXPECT_EQ(state["provisioning"]["isEnabled"], true);
    EXPECT_EQ(state["provisioning"]["installation"], "2");
    EXPECT_EQ(state["provisioning"]["user"], Json());
    EXPECT_EQ(state["provisioning"]["isNew"], true);
    EXPECT_EQ(steps(), Json({"make-area", "provision"}));

    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(hasStarted("sample.provisioning"));
    EXPECT_EQ(status()["lastLaunch"]["outcome"], "provisioned");
}

TEST_F(StatusOfTheNextLaunch, ANewProvisioningLevelIsProvisionedOnce) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    append(kUserFile, "provisioning.manifest.version=1\n");
    EXPECT_EQ(status()["provisioning"]["user"], "1");
    EXPECT_EQ(steps(), Json({"provision"}));

    replaceIn(kUserFile, "manifest.version=1", "manifest.version=2");
    EXPECT_EQ(status()["provisioning"]["isNew"], false);
    EXPECT_EQ(steps(), Json({"start-platform"}));
    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(hasStarted("sample.report"));
}

TEST_F(StatusOfTheNextLaunch, ALevelThatIsAPlaceholderIsComparedAsItStandsInTheUsersFile) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    append(kUserFile, "provisioning.manifest.version=${prop.level}\nlevel=2\n");
    EXPECT_EQ(status()["provisioning"]["user"], "${prop.level}");
    EXPECT_EQ(status()["provisioning"]["isNew"], true);
    EXPECT_EQ(steps(), Json({"provision"}));

    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(hasStarted("sample.provisioning"));
}

TEST_F(StatusOfTheNextLaunch, TheLevelIsComparedThoughTheLaunchEndsBeforeItAsks) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    append(kUserFile, "provisioning.manifest.version=2\n");
    std::filesystem::remove_all(folder_.path() / area("applications/eclipse/features"));
    folder_.write(area("applications/eclipse/features"), "");
    EXPECT_EQ(idOfEnd(), "ZYPRA0094E");
    EXPECT_EQ(status()["provisioning"]["isNew"], false);
}

TEST_F(StatusOfTheNextLaunch, ADaemonKnowsTheProvisioningLevelsAndProvisionsNothing) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    append(kUserFile, "provisioning.manifest.version=2\n");
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    replaceIn(kProperties, "manifest.version=2", "manifest.version=3");
    const Json expected = {
        {"isEnabled", true}, {"installation", "3"}, {"user", "2"}, {"isNew", true}};
    EXPECT_EQ(status()["provisioning"], expected);
    EXPECT_EQ(steps(), Json({"pass-arguments-on"}));
}

TEST_F(StatusOfTheNextLaunch, WithoutProvisioningItsLevelMeansNothing) {
    append(kProperties, "provisioning.manifest.version=2\n");
    EXPECT_EQ(status()["provisioning"]["isEnabled"], false);
    EXPECT_EQ(steps(), Json({"make-area", "start-platform"}));
}

TEST_F(StatusOfTheNextLaunch, AtANewLevelAnIncompleteAreaIsCompletedFirst) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    append(kUserFile, "provisioning.manifest.version=1\n");
    std::filesystem::remove_all(folder_.path() / area("applications"));
    EXPECT_EQ(steps(), Json({"make-area", "provision"}));
}

TEST_F(StatusOfTheNextLaunch, TheInitialConfigurationIsUsedUntilItIsComplete) {
    append(kProperties,
           "config.initial.1=-application\nconfig.initial.2=sample.initial\n"
           "config.initial.3=-initialCompleteFlag\nconfig.initial.4=initial.done\n");
    EXPECT_EQ(steps(), Json({"make-area", "initial-configuration", "start-platform"}));
    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(hasStarted("sample.initial"));

    append(kUserFile, "initial.done=true\n");
    EXPECT_EQ(steps(), Json({"start-platform"}));

    replaceIn(kUserFile, "initial.done=true", "initial.done=$${prop.done}\ndone=true");
    EXPECT_EQ(steps(), Json({"initial-configuration", "start-platform"}))
        << "the launch looks before placeholders are replaced";
}

TEST_F(StatusOfTheNextLaunch, ItWaitsWhileTheDebugMarkerIsThere) {
    folder_.write("client/rcp/rcplauncher.debug", "");
    EXPECT_EQ(steps(), Json({"wait-for-debug-marker", "make-area", "start-platform"}));
}

TEST_F(StatusOfTheNextLaunch, ARestartWaitsForTheOldPlatform) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    const Words restart = {"-restart", "-rcp_old_pid", std::to_string(platform->id())};
    const Json found = next(restart);
    EXPECT_EQ(found["role"], "main");
    EXPECT_EQ(found["steps"], Json({"wait-for-old-platform", "start-platform"}));
}

TEST_F(StatusOfTheNextLaunch, WhatWouldEndItIsToldWithItsRemedy) {
    replaceIn(kProperties, "rcp.install.id=sample", "");
    const Json state = status();
    EXPECT_EQ(state["workspace"], Json());
    EXPECT_EQ(state["provisioning"], Json());
    const Json end = next();
    EXPECT_EQ(end["role"], "none");
    const Json message = end["record"]["messages"][0];
    EXPECT_EQ(message["id"], "ZYPRA0016E");
    EXPECT_NE(message["remedy"].get<std::string>().find("rcp.install.id"), std::string::npos);
    EXPECT_NE(text().find("Set `rcp.install.id`"), std::string::npos);
}

TEST_F(StatusOfTheNextLaunch, EveryEarlyEndIsTheLaunchsOwn) {
    EXPECT_EQ(idOfEnd({"-name=\"x\""}), "ZYPRA0089E");
    EXPECT_EQ(idOfEnd({"-Djava.home=/x"}), "ZYPRA0192E");
    EXPECT_EQ(idOfEnd({"-maxargcnt", "1"}), "ZYPRA0069E");
    EXPECT_EQ(idOfEnd({"-data", ""}), "ZYPRA0302E");
    replaceIn(kProperties, "rcp.base.location", "#");
    EXPECT_EQ(idOfEnd(), "ZYPRA0050E");
    std::filesystem::remove(folder_.path() / kProperties);
    EXPECT_EQ(idOfEnd(), "ZYPRA0096E");
}

TEST_F(StatusOfTheNextLaunch, RefusedForItsArgumentsStillHasAWorkspaceAndItsPlatform) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    const Words refused = {"-name=\"x\""};
    EXPECT_EQ(idOfEnd(refused), "ZYPRA0089E");
    const Json state = status(refused);
    EXPECT_EQ(state["workspace"], folder_.narrow("home/workspace/ann"));
    EXPECT_EQ(state["lock"]["isPlatform"], true);
    EXPECT_EQ(state["lock"]["process"], platform->id());
}

TEST_F(StatusOfTheNextLaunch, AFileThatIsMissingLateEndsItToo) {
    const std::string program = "client/rcp/eclipse/plugins/com.ovr.rcp.base/macosx/x86/eclipse";
    std::filesystem::remove(folder_.path() / program);
    EXPECT_EQ(idOfEnd(), "ZYPRA0007E");
    EXPECT_EQ(steps(), Json({"make-area"}));
}

TEST_F(StatusOfTheNextLaunch, NoInstallerMayWorkUnderARunningPlatform) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    EXPECT_EQ(idOfEnd({"-provManifest", "x"}), "ZYPRA0122E");
}

TEST_F(StatusOfTheNextLaunch, AnInstallIdThatWouldBeMadeIsNotMade) {
    replaceIn(kProperties, "rcp.install.id=sample", "");
    replaceIn(kProperties, "install.configuration=user", "install.configuration=userpb");
    const std::string before = folder_.read(kProperties);
    append("client/rcp/eclipse/plugins/com.ovr.rcp.base/config/pbuilder/config.ini", "\n");
    append("client/rcp/eclipse/plugins/com.ovr.rcp.base/config/pbuilder/rcpinstall.properties",
           "\n");
    EXPECT_EQ(steps(), Json({"make-install-id", "make-area", "start-platform"}));
    EXPECT_EQ(folder_.read(kProperties), before);
}

}  // namespace
}  // namespace rcp::inspect::test
