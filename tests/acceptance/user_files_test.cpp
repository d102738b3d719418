// The files that a first launch puts into the user's configuration area, as far as they are seen by
// everyone who looks into it.
#include "checks.h"

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

class UserFiles : public testing::Test {
  protected:
    void writeCore(const std::string& name, const std::string& text) {
        velmo.write(velmo.base + "/config/user/" + name, text);
    }

    std::string own(const std::string& name) {
        return readFile(velmo.configuration() + "/" + name);
    }

    Installation velmo;
};

TEST_F(UserFiles, ConfigurationIsCopiedOnceAndThenLeftAlone) {
    const std::string text = std::string(2500, 'x') + "ä\n\n\nlast line without an end";
    writeCore("config.ini", text);
    velmo.start();
    EXPECT_EQ(own("config.ini"), text);
    writeCore("config.ini", "changed");
    velmo.start();
    EXPECT_EQ(own("config.ini"), text);
}

TEST_F(UserFiles, MasterCopyOfTheInstallationsKindIsPreferred) {
    writeCore("config.ini", "user\n");
    velmo.write(velmo.base + "/config.ini", "base\n");
    velmo.start();
    EXPECT_EQ(own("config.ini"), "user\n");
    files::remove_all(velmo.configuration());
    files::remove(velmo.base + "/config/user/config.ini");
    velmo.start();
    EXPECT_EQ(own("config.ini"), "base\n");
}

TEST_F(UserFiles, MissingMasterCopyIsFatal) {
    files::remove(velmo.base + "/config/user/config.ini");
    files::remove(velmo.base + "/config.ini");
    expectLateFatal(velmo.launch(), "ZYPRA0190E: Unable to open source file " + velmo.base +
                                        "/config.ini to be copied");
    EXPECT_FALSE(fileExists(velmo.configuration() + "/config.ini"));
}

TEST_F(UserFiles, MasterCopyThatIsNoTextIsCopiedAsItIs) {
    writeCore("config.ini", "a\xff\xfe\n");
    velmo.start();
    EXPECT_EQ(own("config.ini"), "a\xff\xfe\n");
}

TEST_F(UserFiles, InstallPropertiesAreThoseOfTheInstallationAndTheLaunchersOwn) {
    velmo.set("jvm.location", "/opt/my jre:x").set("com.ovr.rcp.core.locale", "de");
    velmo.set("install.configuration", "user");
    velmo.addInstallLine("# kept").addInstallLine("a.macosx=1").addInstallLine("b.win32=1\\");
    velmo.addInstallLine("dropped\\").addInstallLine("dropped too").addInstallLine("c=1\\");
    velmo.addInstallLine("  continued").addInstallLine("rcp.install.id=core");
    velmo.start();
    expectList({"# values of this installation", "# kept", "a=1", "c=1\\", "continued",
                "rcp.install.id=core", "rcp.install.id=abc123", "vm=/opt/my jre\\:x",
                "rcp.base.location=" + velmo.base, "install.configuration=user",
                "com.ovr.rcp.core.locale=de"},
               splitLines(own("rcpinstall.properties")));
}

TEST_F(UserFiles, MissingInstallConfigurationIsWrittenAsUser) {
    velmo.start();
    EXPECT_TRUE(hasLine(own("rcpinstall.properties"), "install.configuration=user"));
}

TEST_F(UserFiles, PlatformDescriptionIsFilledIn) {
    velmo.write("jre/jvm.properties",
                "jvm.feature.id=com.jvm\njvm.feature.version=8.0\n"
                "jvm.parent.feature.id=com.parent\n");
    writeCore("platform.xml",
              "\n<a ${jvm.feature.id} ${jvm.feature.id} ${jvm.feature.version}>\n"
              "<b ${jvm.feature.version}>\n<c ${jvm.parent.feature.id}>\n");
    const Launch launch = velmo.launch({"-vm", velmo.path("jre/bin/java")});
    ASSERT_TRUE(launch.platform.has_value()) << launch.log;
    const std::string text = own("org.eclipse.update/platform.xml");
    EXPECT_TRUE(hasLine(text, "<a com.jvm com.jvm 8.0>")) << text;
    EXPECT_TRUE(hasLine(text, "<b ${jvm.feature.version}>")) << text;
    EXPECT_TRUE(hasLine(text, "<c ${jvm.parent.feature.id}>")) << text;
    EXPECT_TRUE(hasLineStart(launch.log,
                             "ZYPRA0102E: Error while copying platform.xml to user "
                             "specific platform.xml file."));
}

TEST_F(UserFiles, PlatformDescriptionLosesItsFeaturesWithoutAJvmOfItsOwn) {
    writeCore("platform.xml", "<x>\n <feature id=\"${jvm.feature.id}\">\n</x>\n");
    velmo.start();
    EXPECT_EQ(own("org.eclipse.update/platform.xml"), "<x>\n<feature>\n</x>\n");
}

TEST_F(UserFiles, PlatformDescriptionIsTheLaunchersOnlyWhenTheUpdatePolicyIsManaged) {
    velmo.set("update.policy.managed", "false");
    velmo.start();
    EXPECT_FALSE(fileExists(velmo.configuration() + "/org.eclipse.update/platform.xml"));
    velmo.set("update.policy.managed", "False");
    velmo.start();
    EXPECT_TRUE(fileExists(velmo.configuration() + "/org.eclipse.update/platform.xml"));
}

TEST_F(UserFiles, OtherInstallIdReusesTheWorkspace) {
    velmo.start();
    velmo.write(velmo.configuration() + "/org.eclipse.update/registry", "r");
    velmo.set("rcp.data", velmo.workspace).set("rcp.install.id", "new");
    velmo.start();
    EXPECT_TRUE(fileExists(velmo.configuration() + "bak/config.ini"));
    EXPECT_TRUE(fileExists(velmo.workspace + "/platform.xml.old"));
    EXPECT_EQ(own("org.eclipse.update/registry"), "r");
    EXPECT_TRUE(hasLine(own("rcpinstall.properties"), "rcp.install.id=new"));
}

TEST_F(UserFiles, PersonalBuilderWithoutAnInstallIdGetsOneAndKeepsIt) {
    velmo.unset("rcp.install.id").set("install.configuration", "userpb");
    velmo.workspace = velmo.path("ws");
    const Texts arguments = {"-data", velmo.workspace};
    const Report platform = velmo.start(arguments);
    const std::string properties = readFile(velmo.rcp + "/rcplauncher.properties");
    const Texts lines = splitLines(properties);
    ASSERT_TRUE(lines.back().starts_with("rcp.install.id=")) << properties;
    EXPECT_TRUE(platform.has("-Dcom.ovr." + lines.back()));
    EXPECT_TRUE(velmo.start(arguments).has("-Dcom.ovr." + lines.back()));
    EXPECT_EQ(readFile(velmo.rcp + "/rcplauncher.properties"), properties);
    EXPECT_FALSE(fileExists(velmo.configuration() + "/org.eclipse.update/platform.xml"));
}

TEST_F(UserFiles, BackslashesOfAWorkspaceAreTurnedBeforeItIsMade) {
    velmo.workspace = velmo.path("turned/ws");
    velmo.start({"-data", velmo.root + "\\turned\\ws"});
    EXPECT_NE(own("config.ini"), "");
}

}  // namespace

}  // namespace acceptance
