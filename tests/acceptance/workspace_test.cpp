// Where the workspace and the configuration area are.
#include "checks.h"

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

// "-data", "-configuration" and the system property all name the places that were prepared.
void expectWorkspace(Installation& velmo, const std::string& workspace,
                     const Texts& arguments = {}) {
    velmo.workspace = workspace;
    const Report platform = velmo.start(arguments);
    EXPECT_EQ(platform.after("-data"), workspace);
    EXPECT_EQ(platform.after("-configuration"), workspace + "/.config");
    EXPECT_TRUE(platform.has("-Drcp.data=" + workspace)) << workspace;
    EXPECT_TRUE(fileExists(workspace + "/.config/config.ini"));
}

TEST(Workspace, DefaultLiesInTheHomeDirectoryByInstallIdAndUser) {
    Installation velmo;
    velmo.environment["USER"] = "bob";
    velmo.environment["HOME"] = velmo.path("Users/bob b");
    velmo.set("rcp.install.id", "x.1");
    expectWorkspace(velmo, velmo.path("Users/bob b/OVR/RCP/x.1/bob"));
}

TEST(Workspace, CommandLineWinsOverTheProperty) {
    Installation velmo;
    velmo.set("rcp.data", velmo.path("property"));
    expectWorkspace(velmo, velmo.path("property"));
    expectWorkspace(velmo, velmo.path("given"), {"-data", velmo.path("given")});
}

TEST(Workspace, OneTrailingSeparatorOfTheGivenOneIsDropped) {
    Installation velmo;
    const std::string ws = velmo.path("ws");
    expectWorkspace(velmo, ws, {"-data", ws + "/"});
    expectWorkspace(velmo, ws, {"-data", ws + "\\"});
    velmo.workspace = ws + "/";
    EXPECT_EQ(velmo.start({"-data", ws + "//"}).after("-data"), ws + "/");
}

TEST(Workspace, HomePlaceholderOfTheGivenOneIsReplaced) {
    Installation velmo;
    expectWorkspace(velmo, velmo.home + "/ws", {"-data", "${rcp.home}/ws"});
}

TEST(Workspace, OnlyTheFirstHomePlaceholderOfTheGivenOneIsReplaced) {
    Installation velmo;
    expectWorkspace(velmo, velmo.home + "/${rcp.home}/ws",
                    {"-restart", "-data", "${rcp.home}/${rcp.home}/ws"});
}

TEST(Workspace, UserPlaceholdersOfTheGivenOneAreReplaced) {
    Installation velmo;
    velmo.set("area", "some/area");
    expectWorkspace(velmo, velmo.userHome + "/some/area", {"-data", "${env.HOME}/${prop.area}"});
}

TEST(Workspace, PlaceholderThatStaysInTheGivenOneIsRefusedWhenArgumentsAreRecorded) {
    Installation velmo;
    velmo.workspace = velmo.path("a${env.NOPE}");
    expectLateFatal(velmo.launch({"-data", velmo.workspace}),
                    "ZYPRA0088E: property substitution is invalid (" + velmo.workspace +
                        ") (-data, argument 2)");
}

TEST(Workspace, PlaceholderAtTheStartOfTheGivenOneIsRefusedAtOnce) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    expectEarlyFatal(velmo.launch({"-data", "${env.NOPE}/ws"}),
                     "ZYPRA0301E: Starts with placeholder. This should be translated");
}

TEST(Workspace, RelativeGivenOneLiesInTheWorkingDirectory) {
    Installation velmo;
    expectWorkspace(velmo, velmo.folder + "/ws", {"-data", "ws"});
    expectWorkspace(velmo, velmo.folder + "/b c#%20?", {"-data", "./b c#%20?/"});
    expectWorkspace(velmo, velmo.root + "/x", {"-data", "../x"});
    expectWorkspace(velmo, velmo.folder + "/b", {"-data", "a/../b"});
}

TEST(Workspace, RelativePropertyIsPassedOnAsItStands) {
    Installation velmo;
    velmo.set("rcp.data", "relative.workspace.of.a.test");
    const std::string ws = velmo.folder + "/relative.workspace.of.a.test";
    // All folders are there already: those of a relative path would be made below "/".
    for (const char* name : {"logs", ".config/org.eclipse.update", "applications/eclipse/features",
                             "applications/eclipse/plugins"}) {
        files::create_directories(ws + "/" + name);
    }
    velmo.workspace = ws;
    const Report platform = velmo.start();
    EXPECT_EQ(platform.after("-data"), "relative.workspace.of.a.test");
    EXPECT_EQ(platform.after("-configuration"), "relative.workspace.of.a.test/.config");
    EXPECT_TRUE(platform.has("-Drcp.data=relative.workspace.of.a.test"));
}

TEST(Workspace, PropertyReplacesPlaceholdersAndOneTrailingSeparator) {
    Installation velmo;
    velmo.set("rcp.data", "${rcp.home}/${env.USER}/");
    expectWorkspace(velmo, velmo.home + "/ann");
}

TEST(Workspace, PropertyWithAPlaceholderThatStaysIsFatal) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.set("rcp.data", velmo.root + "/${env.USER}/${env.NOPE}");
    expectEarlyFatal(velmo.launch(), "ZYPRA0099E: rcp.data property is invalid (" + velmo.root +
                                         "/ann/${env.NOPE})");
}

TEST(Workspace, EmptyPropertyIsFatal) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.set("rcp.data", "");
    expectEarlyFatal(velmo.launch(), "ZYPRA0099E: rcp.data property is invalid ()");
}

TEST(Workspace, UserNameIsNeededForTheDefaultOnly) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.environment.erase("USER");
    expectEarlyFatal(velmo.launch(), "ZYPRA0037E: Couldn't find the user name!");
    expectWorkspace(velmo, velmo.path("ws"), {"-data", velmo.path("ws")});
}

TEST(Workspace, ServiceConfigurationUsesTheInstallationAndNothingElse) {
    Installation velmo;
    velmo.useServiceConfiguration();
    velmo.set("rcp.data", velmo.path("property"));
    velmo.environment.erase("USER");
    const Report platform = velmo.start({"-data", velmo.path("given")});
    EXPECT_EQ(platform.after("-data"), velmo.home + "/eclipse/.workspace");
    EXPECT_EQ(platform.after("-configuration"), velmo.home + "/eclipse/.config");
    EXPECT_FALSE(fileExists(velmo.path("given")));
    EXPECT_TRUE(fileExists(velmo.home + "/eclipse/.config/config.ini"));
}

TEST(Workspace, DataOptionWithoutAValueDoesNotCount) {
    Installation velmo;
    EXPECT_EQ(velmo.start({"-restart", "-data"}).after("-data"), velmo.workspace);
    EXPECT_EQ(velmo.start({"-data"}).after("-data"), velmo.workspace);
}

TEST(Workspace, FirstOfTwoDataOptionsCountsAndBothAreDropped) {
    Installation velmo;
    velmo.workspace = velmo.path("one");
    const Report platform =
        velmo.start({"-data", velmo.path("one"), "-x", "-data", velmo.path("two")});
    EXPECT_EQ(platform.after("-data"), velmo.path("one"));
    EXPECT_EQ(platform.count("-data"), 1);
    EXPECT_FALSE(platform.has(velmo.path("two")));
}

TEST(Workspace, ConfigurationOptionIsNeverHeard) {
    Installation velmo;
    const Report platform = velmo.start({"-configuration", velmo.path("other")});
    EXPECT_EQ(platform.count("-configuration"), 1);
    EXPECT_EQ(platform.after("-configuration"), velmo.configuration());
    EXPECT_FALSE(fileExists(velmo.path("other")));
}

// The folder of the earlier product generation: 11 characters that stand for the home directory, 29
// of folders in it, 14 of the product's folder.
class LegacyDataFolder : public testing::Test {
  protected:
    void makeFolder(const std::string& name) {
        files::create_directories(velmo.userHome + "/Library/Application Support/" + name);
    }

    void expectFolder(const std::string& name, const std::string& rest) {
        velmo.set("rcp.data", "${env.HOME}/Library/Application Support/ZUN Velmo Data" + rest);
        expectWorkspace(velmo, velmo.userHome + "/Library/Application Support/" + name + rest);
    }

    Installation velmo;
};

TEST_F(LegacyDataFolder, IsUsedWhileTheNewOneIsMissing) {
    makeFolder("OVR Velmo Data");
    expectFolder("OVR Velmo Data", "/ws");
}

TEST_F(LegacyDataFolder, IsUsedForOneCharacterBehindTheName) {
    makeFolder("OVR Velmo Data");
    expectFolder("OVR Velmo Data", "x");
}

TEST_F(LegacyDataFolder, IsLeftAloneWhenTheNewOneExists) {
    makeFolder("OVR Velmo Data");
    makeFolder("ZUN Velmo Data");
    expectFolder("ZUN Velmo Data", "/ws");
}

TEST_F(LegacyDataFolder, NewUserGetsTheNewOne) {
    expectFolder("ZUN Velmo Data", "/ws");
}

TEST_F(LegacyDataFolder, ValueOfFiftyFourCharactersIsNeverRepaired) {
    makeFolder("OVR Velmo Data");
    expectFolder("ZUN Velmo Data", "");
}

}  // namespace

}  // namespace acceptance
