// The plug-in directories that a reset clears, and everything that it must never touch.
#include "launcher/user_area/reset.h"
#include "tests/unit/user_area/user_area_fixture.h"

namespace rcp::test {
namespace {

class ResetDirectories : public UserAreaTest {
  protected:
    ResetDirectories() {
        addPlugin("org.a");
        addPlugin("org.b");
        addPlugin("org.kept");
    }

    void addPlugin(const std::string& name) const {
        folder_.write("ws/.metadata/.plugins/" + name + "/d/f", "f");
    }
    [[nodiscard]] bool hasPlugin(const std::string& name) const {
        return folder_.has("ws/.metadata/.plugins/" + name);
    }
    void resetWith(const std::string& properties) const {
        folder_.write("ws/.config/rcpinstall.properties", properties);
        resetMetaDataDirs(inputs_, base());
    }
    void expectRefused(const std::string& value, const std::string& shown) const {
        const Records records(folder_);
        resetWith("resetDir.1=" + value + "\nresetDir.2=org.a\n");
        EXPECT_EQ(records.text(), "Error: resetMetaDataDirs: '" + shown +
                                      "' does not name a directory of a plug-in.\n");
        EXPECT_FALSE(hasPlugin("org.a")) << "the next one is still cleared";
        EXPECT_TRUE(hasPlugin("org.kept/d/f"));
        addPlugin("org.a");
    }
};

TEST_F(ResetDirectories, AreTheValuesOfEveryPropertyOfThePrefix) {
    resetWith("resetDir.1=org.a\nresetDir.x=org.b\nresetdir.2=org.kept\nresetDir=org.kept\n");
    EXPECT_FALSE(hasPlugin("org.a"));
    EXPECT_FALSE(hasPlugin("org.b"));
    EXPECT_TRUE(hasPlugin("org.kept/d/f"));
}

TEST_F(ResetDirectories, MayLieDeeper) {
    resetWith("resetDir.1=org.kept/./d\n");
    EXPECT_TRUE(hasPlugin("org.kept"));
    EXPECT_FALSE(hasPlugin("org.kept/d"));
}

TEST_F(ResetDirectories, MayHaveANameOfOneCharacter) {
    addPlugin("x");
    resetWith("resetDir.1=x\n");
    EXPECT_FALSE(hasPlugin("x"));
}

TEST_F(ResetDirectories, ThatDoNotExistAreSkippedSilently) {
    const Records records(folder_);
    resetWith("resetDir.1=org.none\nresetDir.2=org.a\n");
    EXPECT_EQ(records.text(), "");
    EXPECT_FALSE(hasPlugin("org.a"));
    EXPECT_FALSE(hasPlugin("org.none"));
}

TEST_F(ResetDirectories, MayBeNamedByNobody) {
    resetWith("a=1\n");
    EXPECT_TRUE(hasPlugin("org.a/d/f"));
    std::filesystem::remove_all(folder_.path() / "ws/.metadata");
    resetWith("resetDir.1=org.a\n");
    EXPECT_FALSE(folder_.has("ws/.metadata"));
}

TEST_F(ResetDirectories, AreThoseOfTheMasterCopyWhenTheUserHasNoFile) {
    writeCore("rcpinstall.properties", "resetDir.1=org.a\n");
    resetMetaDataDirs(inputs_, base());
    EXPECT_FALSE(hasPlugin("org.a"));
}

TEST_F(ResetDirectories, OfTheMasterCopyDoNotMatterWhenTheUserHasAFile) {
    writeCore("rcpinstall.properties", "resetDir.1=org.a\n");
    resetWith("a=1\n");
    EXPECT_TRUE(hasPlugin("org.a"));
}

TEST_F(ResetDirectories, NeedOneOfTheTwoFiles) {
    EXPECT_FATAL(resetMetaDataDirs(inputs_, base()),
                 "ZYPRA0106E: Unable to locate .*/base/rcpinstall.properties file.");
}

TEST_F(ResetDirectories, OutsideThePluginsAreRefused) {
    folder_.write("ws/.metadata/other/f", "kept");
    folder_.write("outside/f", "kept");
    expectRefused("../other", "../other");
    expectRefused("../x", "../x");  // refused for its name, whether it is there or not
    expectRefused("org.a/../../other", "org.a/../../other");
    expectRefused("..", "..");
    expectRefused("\\\\..\\\\other", "\\..\\other");
    expectRefused(folder_.narrow("outside"), folder_.narrow("outside"));
    expectRefused("/", "/");
    EXPECT_TRUE(folder_.has("ws/.metadata/other/f"));
    EXPECT_TRUE(folder_.has("outside/f"));
}

TEST_F(ResetDirectories, ThatAreThePluginsFolderItselfAreRefused) {
    expectRefused("", "");
    expectRefused(".", ".");
    expectRefused("./", "./");
}

TEST_F(ResetDirectories, BehindALinkAreRefused) {
    folder_.write("outside/d/f", "kept");
    const auto link = folder_.path() / "ws/.metadata/.plugins/link";
    std::filesystem::create_directory_symlink(folder_.path() / "outside", link);
    expectRefused("link", "link");
    expectRefused("link/d", "link/d");
    EXPECT_TRUE(folder_.has("outside/d/f"));
}

TEST_F(ResetDirectories, AreNoLinksToOtherPlugins) {
    std::filesystem::create_directory_symlink("org.kept",
                                              folder_.path() / "ws/.metadata/.plugins/link");
    for (const char* value :
         {"link", "link/", "link//", "link/.", "./link/./", "link/d", "link/d/"}) {
        expectRefused(value, value);
    }
}

TEST_F(ResetDirectories, AreNeverLeftThroughALinkInThem) {
    folder_.write("outside/f", "kept");
    const auto plugin = folder_.path() / "ws/.metadata/.plugins/org.a";
    std::filesystem::create_directory_symlink(folder_.path() / "outside", plugin / "link");
    std::filesystem::create_symlink("nowhere", plugin / "dangling");
    resetWith("resetDir.1=org.a\n");
    EXPECT_FALSE(hasPlugin("org.a"));
    EXPECT_TRUE(folder_.has("outside/f"));
}

TEST_F(ResetDirectories, MayBeReachedThroughALinkInPlaceOfThePluginsFolder) {
    std::filesystem::rename(folder_.path() / "ws/.metadata", folder_.path() / "elsewhere");
    std::filesystem::create_directory_symlink(folder_.path() / "elsewhere",
                                              folder_.path() / "ws/.metadata");
    resetWith("resetDir.1=org.a\n");
    EXPECT_FALSE(folder_.has("elsewhere/.plugins/org.a"));
    EXPECT_TRUE(folder_.has("elsewhere/.plugins/org.kept"));
}

TEST_F(ResetDirectories, ThatCannotBeRemovedAreFatalWithAllTheirProblems) {
    folder_.write("ws/.metadata/.plugins/file", "no directory");
    EXPECT_FATAL(resetWith("resetDir.1=file\n"),
                 "\nZYPRA0107E begin: Error removing metadata plugin directory\n"
                 "Error in .*/\\.plugins/file  -  Failed with error [0-9]+: Not a directory\n"
                 "Can't delete dir .*/\\.plugins/file  -  Failed with error [0-9]+: Not a "
                 "directory\n\n"
                 "ZYPRA0108E end: Unable to remove all files in the metadata plugin directory. "
                 "Please correct the problems listed above");
}

}  // namespace
}  // namespace rcp::test
