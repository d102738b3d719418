// The user's area as a first launch makes it, and what later launches leave alone.
#include "checks.h"
#include "snapshot.h"

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

class UserArea : public testing::Test {
  protected:
    std::string argsFile() { return readFile(velmo.configuration() + "/args.properties"); }

    Installation velmo;
};

TEST_F(UserArea, FirstLaunchMakesAllOfItAndNothingElse) {
    velmo.write(velmo.home + "/shared/eclipse/.eclipseextension", "id=x\n");
    velmo.start();
    Texts names;
    for (const auto& [path, entry] : takeSnapshot(velmo.workspace)) {
        names.push_back(path + (entry.content == "(directory)" ? "/" : ""));
    }
    expectList(
        {".config/", ".config/args.properties", ".config/config.ini", ".config/org.eclipse.update/",
         ".config/org.eclipse.update/platform.xml", ".config/rcpinstall.properties", ".rcp.lock",
         ".rcp.main", "applications/", "applications/eclipse/",
         "applications/eclipse/.eclipseextension", "applications/eclipse/features/",
         "applications/eclipse/plugins/", "logs/", "logs/rcplauncher.log"},
        names);
}

TEST_F(UserArea, SecondLaunchChangesNothingButTheLogAndTheRecordedArguments) {
    velmo.start();
    const auto isRecord = [](const std::string& path) {
        return path.ends_with("/logs/rcplauncher.log") || path.ends_with("/args.properties") ||
               // whose platform it is
               path.ends_with("/.rcp.lock") || path.ends_with("/.rcp.main");
    };
    const Snapshot area = without(takeSnapshot(velmo.userHome), isRecord);
    const Snapshot installation = takeSnapshot(velmo.home);
    const std::string arguments = argsFile();
    velmo.start();
    EXPECT_EQ(differences(area, without(takeSnapshot(velmo.userHome), isRecord)), "");
    EXPECT_EQ(differences(installation, takeSnapshot(velmo.home)), "");
    EXPECT_EQ(argsFile(), arguments);
}

TEST_F(UserArea, FirstLaunchNeverResets) {
    velmo.start({"-resetconfig"});
    EXPECT_FALSE(fileExists(velmo.configuration() + "bak"));
}

TEST_F(UserArea, MissingBaseLocationIsFatalBeforeAnythingIsMade) {
    NEEDS_PRIVATE_TMP();
    velmo.unset("rcp.base.location");
    expectEarlyFatal(velmo.launch(), "ZYPRA0050E: rcp.base.location property is missing from " +
                                         velmo.rcp + "/rcplauncher.properties");
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST_F(UserArea, MissingInstallIdIsFatalBeforeAnythingIsMade) {
    NEEDS_PRIVATE_TMP();
    velmo.unset("rcp.install.id");
    expectEarlyFatal(velmo.launch(),
                     "ZYPRA0016E: rcp.install.id is required for this configuration!");
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST_F(UserArea, DirectoryThatCannotBeMadeIsFatalUnderItsStepsNumber) {
    NEEDS_PRIVATE_TMP();
    const auto message = [](const std::string& number, const std::string& directory) {
        return "ZYPRA" + number + ": Unable to create " + directory + " directory.";
    };
    velmo.write(velmo.userHome + "/OVR", "in the way");
    expectEarlyFatal(velmo.launch(), message("0083E", velmo.workspace));
    files::remove(velmo.userHome + "/OVR");
    velmo.write(velmo.workspace + "/logs", "in the way");
    expectEarlyFatal(velmo.launch(), message("0084E", velmo.workspace + "/logs"));
    files::remove(velmo.workspace + "/logs");
    velmo.write(velmo.configuration(), "in the way");
    expectLateFatal(velmo.launch(), message("0093E", velmo.configuration()));
    files::remove(velmo.configuration());
    const std::string applications = velmo.workspace + "/applications/eclipse";
    for (const auto& [number, name] : {std::pair{"0094E", "/features"}, {"0095E", "/plugins"}}) {
        velmo.write(applications + name, "in the way");
        expectLateFatal(velmo.launch(), message(number, applications + name));
        files::remove(applications + name);
    }
}

TEST_F(UserArea, LogThatCannotBeOpenedIsFatalAndSaysSoInTmp) {
    NEEDS_PRIVATE_TMP();
    velmo.write(velmo.workspace + "/logs/rcplauncher.log/in the way", "");
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 255);
    EXPECT_TRUE(hasLineStart(launch.temporaryLog, "ZYPRA0019E: Could not open " + velmo.workspace +
                                                      "/logs/rcplauncher.log for writing!"));
}

TEST_F(UserArea, WorkspaceIsAPropertyOfBothLists) {
    velmo.set("vmarg.Dx", "-Dx=${prop.velmo.workspace.loc}");
    velmo.addInstallLine("vmarg.Dy=-Dy=${prop.velmo.workspace.loc}");
    const Report report = velmo.start();
    EXPECT_TRUE(report.has("-Dx=" + velmo.workspace));
    EXPECT_TRUE(report.has("-Dy=" + velmo.workspace));
}

TEST_F(UserArea, WorkspaceIsTracedWithTwoBlanks) {
    velmo.start({"-debug"});
    ASSERT_EQ(velmo.logNames().size(), 1U);
    EXPECT_TRUE(hasLine(readFile(velmo.workspace + "/logs/" + velmo.logNames().front()),
                        "ZYPRA0077I: Velmo workspaceLocation is -  \"" + velmo.workspace + "\""));
}

// --- The link to the installation's own extensions ---

TEST_F(UserArea, SharedExtensionLinkWinsAtEveryLaunch) {
    const std::string own = velmo.workspace + "/applications/eclipse/.eclipseextension";
    velmo.start();
    EXPECT_FALSE(fileExists(own));
    velmo.write(own, "the user's\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "the user's\n");
    velmo.write(velmo.home + "/shared/eclipse/.eclipseextension", "shared\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "shared\n");
    velmo.write(own, "the user's\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "shared\n");
}

// --- The bundle ---

class Bundle : public UserArea {
  protected:
    const std::string path = velmo.base + "/macosx/x86/Info.plist";
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        "<key>CFBundleIdentifier</key>\n<string>com.old</string>\n</dict>\n</plist>\n";
    void SetUp() override { velmo.write(path, text); }
};

TEST_F(Bundle, GetsTheIdentifierOfTheArguments) {
    velmo.start({"-bundleIdentifier", "com.new"});
    EXPECT_NE(readFile(path).find("<string>com.new</string>"), std::string::npos);
    EXPECT_FALSE(fileExists(path + ".tmp"));
}

TEST_F(Bundle, StaysWithoutOneOrWithItsOwnInAnyCase) {
    const Snapshot before = takeSnapshot(velmo.base + "/macosx");
    velmo.start();
    velmo.start({"-bundleIdentifier", "COM.old"});
    velmo.start({"-restart", "-bundleIdentifier"});  // a restart appends no JVM behind it
    EXPECT_EQ(differences(before, takeSnapshot(velmo.base + "/macosx")), "");
}

TEST_F(Bundle, MayBeMissing) {
    files::remove(path);
    velmo.start({"-bundleIdentifier", "com.new"});
    EXPECT_FALSE(fileExists(path));
}

TEST_F(UserArea, WhatAKilledLaunchLeftGoesWithTheNoteOfIt) {
    velmo.start();
    const std::string half = velmo.write(velmo.configuration() + "/config.ini.tmp", "half");
    const std::string note = velmo.write(velmo.workspace + "/.rcp.unfinished", "");
    velmo.start();
    EXPECT_FALSE(fileExists(half));
    EXPECT_FALSE(fileExists(note));
}

// --- The recorded arguments ---

TEST_F(UserArea, ArgumentsAreRecordedAsGivenForARestart) {
    velmo.set("config.office", "-perspective,office")
        .set("config.office.restartExe.macosx", "${rcp.home}/office");
    velmo.workspace = velmo.path("folder/ws é");
    velmo.start({"-config", "office", "-data", "ws é", "-resetconfig", "-product", "a b"});
    const Texts lines = splitLines(argsFile());
    ASSERT_GT(lines.size(), 6U) << argsFile();
    EXPECT_EQ(lines.front(), "arg0=" + velmo.home + "/office");
    EXPECT_TRUE(hasLine(argsFile(), "arg1=-config")) << argsFile();
    EXPECT_TRUE(hasLine(argsFile(), "arg2=office")) << argsFile();
    EXPECT_TRUE(hasLine(argsFile(), "arg3=-data")) << argsFile();
    EXPECT_TRUE(hasLine(argsFile(), "arg4=" + velmo.path("folder/ws \\u00e9"))) << argsFile();
    EXPECT_TRUE(hasLine(argsFile(), "arg5=-product")) << argsFile();
    EXPECT_TRUE(hasLine(argsFile(), "arg6=a b")) << argsFile();
    EXPECT_EQ(argsFile().find("-resetconfig"), std::string::npos);
    EXPECT_EQ(lines.back(), "com.ovr.rcp.core.internal.librarypath=");
}

TEST_F(UserArea, WithoutRestartProgramTheLauncherIsRecorded) {
    velmo.start();
    EXPECT_TRUE(hasLine(argsFile(), "arg0=" + velmo.program)) << argsFile();
}

TEST_F(UserArea, WorkspaceThatCannotBeResolvedIsFatal) {
    const std::string data = velmo.path("folder/${env.NO_SUCH_VARIABLE}");
    velmo.workspace = data;
    expectLateFatal(velmo.launch({"-data", data}),
                    "ZYPRA0088E: property substitution is invalid (" + data + ")");
    EXPECT_EQ(temporaryNames(takeSnapshot(velmo.folder)), Texts());
}

TEST_F(UserArea, RestartKeepsTheRecordedArgumentsAndNeverTraces) {
    velmo.start({"-product", "first"});
    const std::string recorded = argsFile();
    velmo.start({"-restart", "-debug", "-product", "second"});
    EXPECT_EQ(argsFile(), recorded);
    expectList({"rcplauncher.log"}, velmo.logNames());
}

}  // namespace

}  // namespace acceptance
