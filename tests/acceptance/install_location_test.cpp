// The installation is found from the executable alone; the bundle's metadata follow the command
// line.
#include "checks.h"
#include "tests/acceptance/paths.h"

#include <sys/stat.h>

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

// Another place for the launcher: its properties come with it, all else stays where it is.
void moveTo(Installation& velmo, const std::string& folder, const std::string& home) {
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, folder + "/rcplauncher");
    velmo.write(home + "/rcp/rcplauncher.properties",
                "rcp.install.id=" + velmo.installId + "\nrcp.base.location=" + velmo.base +
                    "\nplugincustomization=" + velmo.base + "/plugin_customization.ini\n");
    velmo.write(velmo.base + "/config/user/rcpinstall.properties", "\n");
}

std::string argumentOf(const Installation& velmo, const std::string& key) {
    for (const std::string& line :
         splitLines(readFile(velmo.configuration() + "/args.properties"))) {
        if (line.starts_with(key + "=")) {
            return line.substr(key.size() + 1);
        }
    }
    return "(none)";
}

std::string plist(const std::string& key, const std::string& value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD "
           "PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
           "version=\"1.0\">\n<dict>\n\t<key>" +
           key + "</key>\n\t<string>" + value + "</string>\n</dict>\n</plist>\n";
}

TEST(InstallLocation, FolderNamedRcpMeansItsParent) {
    Installation velmo;
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Drcp.home=" + velmo.home));
    EXPECT_TRUE(platform.has("-Drcp.osgi.install.area=" + velmo.home + "/rcp/eclipse"));
}

TEST(InstallLocation, FolderOfAnotherNameIsTheInstallationItself) {
    Installation velmo;
    moveTo(velmo, "app", "app");
    EXPECT_TRUE(velmo.start().has("-Drcp.home=" + velmo.path("app")));
}

TEST(InstallLocation, SiblingFolderEclipseIsTheInstallationWrittenOutInFull) {
    Installation velmo;
    moveTo(velmo, "bundle/MacOS", "bundle/Eclipse");
    EXPECT_TRUE(velmo.start().has("-Drcp.home=" + velmo.path("bundle/MacOS/../Eclipse")));
}

TEST(InstallLocation, ExecutableStartedThroughALinkIsFoundAtItsTarget) {
    Installation velmo;
    velmo.program = velmo.path("bin/rcplauncher");
    files::create_directory(velmo.path("bin"));
    files::create_symlink(velmo.rcp + "/rcplauncher", velmo.program);
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Drcp.home=" + velmo.home));
    EXPECT_EQ(platform.kind, "exec");
}

TEST(InstallLocation, NameOfTheLinkDecidesTheHandOff) {
    Installation velmo;
    velmo.program = velmo.path("bin/velmo");
    files::create_directory(velmo.path("bin"));
    files::create_symlink(velmo.rcp + "/rcplauncher", velmo.program);
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Drcp.home=" + velmo.home));
    EXPECT_EQ(platform.kind, "library");
}

TEST(InstallLocation, ExecutableStartedByARelativePathIsFound) {
    Installation velmo;
    velmo.folder = velmo.rcp;
    for (const char* program : {"./rcplauncher", "rcplauncher", "../rcp/rcplauncher"}) {
        velmo.program = program;
        EXPECT_TRUE(velmo.start().has("-Drcp.home=" + velmo.home)) << program;
    }
}

TEST(InstallLocation, BlanksAndNonAsciiLettersInThePathAreKept) {
    Installation velmo;
    moveTo(velmo, "Meine Größe %20 #1 %n%s", "Meine Größe %20 #1 %n%s");
    EXPECT_TRUE(velmo.start().has("-Drcp.home=" + velmo.path("Meine Größe %20 #1 %n%s")));
}

TEST(InstallLocation, PathLongerThanAnyFixedBufferIsFound) {
    Installation velmo;
    std::string folder = "deep";
    while (folder.size() < 1500) {
        folder += "/" + std::string(200, 'd');
    }
    moveTo(velmo, folder + "/rcp", folder);
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Drcp.home=" + velmo.path(folder)));
    EXPECT_EQ(platform.kind, "exec");
}

TEST(InstallLocation, LauncherAloneInAnEmptyFolderSaysWhatItMissed) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, "empty/rcplauncher");
    const Launch launch = velmo.launch();
    expectEarlyFatal(launch, "ZYPRA0096E: Unable to load " +
                                 velmo.path("empty/rcp/rcplauncher.properties") + " file!");
    EXPECT_EQ(splitLines(launch.temporaryLog).size(), 2U) << launch.temporaryLog;
    EXPECT_EQ(std::distance(files::directory_iterator(velmo.path("empty")), {}), 1);
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST(InstallLocation, RestartArgumentsNameTheExecutableItself) {
    Installation velmo;
    velmo.start();
    EXPECT_EQ(argumentOf(velmo, "arg0"), velmo.program);
}

TEST(InstallLocation, RestartArgumentsNameTheConfiguredLauncher) {
    Installation velmo;
    const std::string other = velmo.write("other/launcher", "", 0755);
    velmo.write(velmo.rcp + "/rcplauncher.plist", plist("mlauncher.path", other));
    velmo.start();
    EXPECT_EQ(argumentOf(velmo, "arg0"), other);
}

TEST(InstallLocation, ConfiguredLauncherIsLookedForBesideThePathAsStarted) {
    Installation velmo;
    const std::string other = velmo.write("other/launcher", "", 0755);
    velmo.write("bin/rcplauncher.plist", plist("mlauncher.path", other));
    velmo.program = velmo.path("bin/rcplauncher");
    files::create_symlink(velmo.rcp + "/rcplauncher", velmo.program);
    velmo.start();
    EXPECT_EQ(argumentOf(velmo, "arg0"), other);
}

TEST(InstallLocation, ConfiguredLauncherThatIsNotExecutableIsIgnored) {
    Installation velmo;
    const std::string other = velmo.write("other/launcher", "", 0611);
    velmo.write(velmo.rcp + "/rcplauncher.plist", plist("mlauncher.path", other));
    velmo.start();
    EXPECT_EQ(argumentOf(velmo, "arg0"), velmo.program);
}

TEST(InstallLocation, DamagedLauncherConfigurationIsIgnored) {
    for (const std::string& text :
         {std::string(), std::string("<plist"), plist("other.key", "/bin/sh"),
          std::string("<plist version=\"1.0\"><string>x</string></plist>")}) {
        Installation velmo;
        velmo.write(velmo.rcp + "/rcplauncher.plist", text);
        velmo.start();
        EXPECT_EQ(argumentOf(velmo, "arg0"), velmo.program) << text;
    }
}

class BundleMetadata : public testing::Test {
  protected:
    std::string place(const std::string& text) {
        return velmo.write(velmo.base + "/macosx/x86/Info.plist", text, 0640);
    }

    Installation velmo;
};

TEST_F(BundleMetadata, IdentifierFromTheCommandLineIsWritten) {
    const std::string info = place(plist("CFBundleIdentifier", "com.ovr.old"));
    velmo.start({"-bundleIdentifier", "com.ovr.new"});
    const std::string text = readFile(info);
    EXPECT_NE(text.find("<string>com.ovr.new</string>"), std::string::npos) << text;
    EXPECT_EQ(text.find("com.ovr.old"), std::string::npos) << text;
    struct stat status = {};
    ASSERT_EQ(stat(info.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(std::distance(files::directory_iterator(velmo.base + "/macosx/x86"), {}), 3);
}

TEST_F(BundleMetadata, MissingIdentifierIsAddedAndTheRestIsKept) {
    const std::string info = place(plist("CFBundleName", "Velmo &amp; Co"));
    velmo.start({"-bundleIdentifier", "com.ovr.new"});
    const std::string text = readFile(info);
    EXPECT_NE(text.find("CFBundleIdentifier"), std::string::npos) << text;
    EXPECT_NE(text.find("<string>Velmo &amp; Co</string>"), std::string::npos) << text;
}

TEST_F(BundleMetadata, SameIdentifierInOtherLetterCaseChangesNoByte) {
    const std::string text = plist("CFBundleIdentifier", "COM.ovr.VELMÖ") + "\n\n";
    const std::string info = place(text);
    velmo.start({"-bundleIdentifier", "com.OVR.velmö"});
    EXPECT_EQ(readFile(info), text);
}

TEST_F(BundleMetadata, WithoutTheOptionNothingIsTouched) {
    const std::string text = plist("CFBundleIdentifier", "com.ovr.old");
    const std::string info = place(text);
    velmo.start();
    EXPECT_EQ(readFile(info), text);
}

TEST_F(BundleMetadata, OptionWithoutAValueIsIgnored) {
    const std::string text = plist("CFBundleIdentifier", "com.ovr.old");
    const std::string info = place(text);
    EXPECT_TRUE(velmo.start({"-restart", "-bundleIdentifier"}).has("-bundleIdentifier"));
    EXPECT_EQ(readFile(info), text);
}

TEST_F(BundleMetadata, MissingOrDamagedFileIsNoError) {
    velmo.start({"-bundleIdentifier", "com.ovr.new"});
    EXPECT_FALSE(fileExists(velmo.base + "/macosx/x86/Info.plist"));
    const std::string info = place("no property list");
    velmo.start({"-bundleIdentifier", "com.ovr.new"});
    EXPECT_EQ(readFile(info), "no property list");
}

}  // namespace

}  // namespace acceptance
