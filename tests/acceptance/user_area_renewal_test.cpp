// Reuse after another installation, the reset the user asks for, and installations that make an id
// of their own.
#include "checks.h"
#include "snapshot.h"

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

class Renewal : public testing::Test {
  protected:
    Renewal() {
        velmo.set("rcp.data", velmo.workspace);
        velmo.start();
        velmo.write(update + "registry", "r");
        velmo.write(update + "bookmarks.xml", "b");
        velmo.write(velmo.configuration() + "/mine", "set aside");
    }

    void expectRenewed(bool isRenewed) {
        EXPECT_EQ(fileExists(velmo.configuration() + "/mine"), !isRenewed);
        EXPECT_EQ(fileExists(velmo.configuration() + "bak/mine"), isRenewed);
        EXPECT_EQ(readFile(update + "registry"), "r");
        EXPECT_EQ(readFile(update + "bookmarks.xml"), "b");
        EXPECT_FALSE(fileExists(velmo.workspace + "/registry.old"));
        EXPECT_FALSE(fileExists(velmo.workspace + "/bookmarks.xml.old"));
        for (const char* name : {"config.ini", "rcpinstall.properties", "args.properties",
                                 "org.eclipse.update/platform.xml"}) {
            EXPECT_TRUE(fileExists(velmo.configuration() + "/" + name)) << name;
        }
    }
    [[nodiscard]] bool hasSavedDescription() const {
        return fileExists(velmo.workspace + "/platform.xml.old");
    }

    Installation velmo;
    const std::string update = velmo.configuration() + "/org.eclipse.update/";
};

TEST_F(Renewal, ResetLeavesTheFormerConfigurationAsideAndAPlatformThatStarts) {
    velmo.start({"-resetconfig"});
    expectRenewed(true);
    EXPECT_FALSE(hasSavedDescription());
}

TEST_F(Renewal, SecondResetReplacesWhatTheFirstSetAside) {
    velmo.start({"-resetconfig"});
    velmo.write(velmo.configuration() + "/mine", "set aside later");
    velmo.start({"-resetconfig"});
    expectRenewed(true);
    EXPECT_EQ(readFile(velmo.configuration() + "bak/mine"), "set aside later");
    EXPECT_FALSE(fileExists(velmo.configuration() + "bakdeleteme0001"));
}

TEST_F(Renewal, OtherInstallIdReusesTheArea) {
    velmo.set("rcp.install.id", "other");
    velmo.start();
    expectRenewed(true);
    EXPECT_TRUE(hasSavedDescription());
    velmo.write(velmo.configuration() + "/mine", "of the new area");
    velmo.start();
    EXPECT_TRUE(fileExists(velmo.configuration() + "/mine")) << "the id is the new one by now";
}

TEST_F(Renewal, KeptFileOfAnotherCharacterSetIsNoReasonToEnd) {
    velmo.write(update + "bookmarks.xml", "<f\xfcr/>\n");
    velmo.set("rcp.install.id", "other");
    velmo.start();
    EXPECT_EQ(readFile(update + "bookmarks.xml"), "<f\xfcr/>\n");
    EXPECT_TRUE(hasSavedDescription());
}

TEST_F(Renewal, OtherInstallIdGoesBeforeTheReset) {
    velmo.set("rcp.install.id", "other");
    velmo.start({"-resetconfig"});
    expectRenewed(true);
    EXPECT_TRUE(hasSavedDescription());
}

TEST_F(Renewal, MissingExtensionFoldersAloneDoNotPreventIt) {
    files::remove_all(velmo.workspace + "/applications");
    velmo.start({"-resetconfig"});
    expectRenewed(true);
    EXPECT_TRUE(fileExists(velmo.workspace + "/applications/eclipse/plugins"));
}

TEST_F(Renewal, FolderThatHadToBeMadeMeansAFirstLaunchWithoutReset) {
    const std::string record =
        "Error: startup: -resetconfig is not carried out, because directories of the user's area "
        "had to be made (workspace " +
        velmo.workspace + ").";
    files::remove_all(velmo.workspace + "/logs");
    EXPECT_FALSE(hasLine(velmo.launch().log, record));
    files::remove_all(velmo.workspace + "/logs");
    const Launch launch = velmo.launch({"-resetconfig"});
    EXPECT_TRUE(launch.platform.has_value());
    expectBareRecord(launch.log, record);
    expectRenewed(false);
}

TEST_F(Renewal, DaemonLeavesTheAreaOfTheRunningPlatformAlone) {
    StayingLaunch platform = velmo.startStaying({"-product", "main"});
    platform.waitUntilRecorded();
    const std::string recorded = readFile(velmo.configuration() + "/args.properties");
    const std::string record = "Error: startup: " + velmo.configuration() +
                               " is in use by the running platform and is not renewed.";
    const Launch reset = velmo.launch({"-resetconfig"});
    EXPECT_TRUE(hasLine(reset.log, record)) << reset.log;
    velmo.set("rcp.install.id", "other");
    const Launch reuse = velmo.launch();
    EXPECT_TRUE(hasLine(reuse.log, record)) << reuse.log;
    const Launch plain = velmo.set("rcp.install.id", velmo.installId).launch();
    EXPECT_FALSE(hasLine(plain.log, record)) << plain.log;
    expectRenewed(false);
    EXPECT_EQ(readFile(velmo.configuration() + "/args.properties"), recorded);
    platform.finish();
}

TEST_F(Renewal, ResetClearsThePluginFoldersItIsTold) {
    for (const char* name : {"org.a", "org.kept"}) {
        velmo.write(velmo.workspace + "/.metadata/.plugins/" + name + "/f", "f");
    }
    velmo.write(velmo.configuration() + "/rcpinstall.properties",
                "rcp.install.id=" + velmo.installId + "\nresetDir.1=org.a\nresetDir.2=none\n");
    velmo.start({"-resetconfig"});
    EXPECT_FALSE(fileExists(velmo.workspace + "/.metadata/.plugins/org.a"));
    EXPECT_TRUE(fileExists(velmo.workspace + "/.metadata/.plugins/org.kept/f"));
}

TEST_F(Renewal, ResetNeverRemovesAnythingElse) {
    const std::string outside = velmo.write(velmo.userHome + "/mine/f", "kept");
    const std::string metadata = velmo.write(velmo.workspace + "/.metadata/f", "kept");
    const std::string plugin = velmo.write(velmo.workspace + "/.metadata/.plugins/org.a/f", "kept");
    velmo.write(velmo.configuration() + "/rcpinstall.properties",
                "rcp.install.id=" + velmo.installId +
                    "\nresetDir.1=\nresetDir.2=" + velmo.userHome +
                    "/mine\nresetDir.3=../\nresetDir.4=org.a/../../../mine\n" + "resetDir.5=.\n");
    const Launch launch = velmo.launch({"-resetconfig"});
    EXPECT_TRUE(launch.platform.has_value()) << launch.log;
    for (const std::string& value : {std::string(), velmo.userHome + "/mine", std::string("../"),
                                     std::string("org.a/../../../mine"), std::string(".")}) {
        EXPECT_TRUE(hasLine(launch.log, "Error: resetMetaDataDirs: '" + value +
                                            "' does not name a directory of a plug-in."))
            << launch.log;
    }
    for (const std::string& file : {outside, metadata, plugin}) {
        EXPECT_EQ(readFile(file), "kept") << file;
    }
    expectRenewed(true);
}

// --- Installations that make an id of their own ---

class OwnInstallId : public testing::Test {
  protected:
    OwnInstallId() { velmo.set("install.configuration", "userpb").unset("rcp.install.id"); }

    Texts idLines() {
        Texts lines;
        for (const std::string& line :
             splitLines(readFile(velmo.rcp + "/rcplauncher.properties"))) {
            if (line.starts_with("rcp.install.id=")) {
                lines.push_back(line.substr(15));
            }
        }
        return lines;
    }

    Installation velmo;
};

TEST_F(OwnInstallId, IsMadeOnceAndNamesTheWorkspace) {
    const Report first = velmo.start();
    ASSERT_EQ(idLines().size(), 1U);
    EXPECT_EQ(first.after("-data"), velmo.userHome + "/OVR/RCP/" + idLines()[0] + "/ann");
    const Report second = velmo.start();
    EXPECT_EQ(second.after("-data"), first.after("-data"));
    EXPECT_EQ(idLines().size(), 1U);
    EXPECT_FALSE(fileExists(first.after("-configuration") + "/org.eclipse.update"));
}

TEST_F(OwnInstallId, IsOneForLaunchesThatStartAtOnce) {
    velmo.addLine("last=1");
    std::vector<StayingLaunch> launches;
    for (const char* name : {"one", "two", "three", "four"}) {
        launches.push_back(velmo.startStaying({"-data", velmo.path(std::string("ws/") + name)}));
    }
    Texts ids;
    for (StayingLaunch& launch : launches) {
        const Report report = launch.platform();
        for (const std::string& argument : report.arguments) {
            if (argument.starts_with("-Dcom.ovr.rcp.install.id=")) {
                ids.push_back(argument.substr(25));
            }
        }
        launch.finish();
    }
    ASSERT_EQ(idLines().size(), 1U);
    expectList(Texts(4, idLines()[0]), ids);
}

}  // namespace

}  // namespace acceptance
