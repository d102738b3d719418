#include "platform/removal.h"

#include "platform/text.h"
#include "tests/unit/held_directory.h"

#include <sys/stat.h>
#include <unistd.h>

namespace rcp {
namespace {

namespace fs = std::filesystem;

constexpr char kMissing[] = "  -  Failed with error 2: No such file or directory\n";
constexpr char kNotADirectory[] = "  -  Failed with error 20: Not a directory\n";

std::string notEmpty() {
    return "  -  Failed with error " + std::to_string(ENOTEMPTY) + ": Directory not empty\n";
}

class Removal : public test::LauncherTest {
  protected:
    [[nodiscard]] std::string at(const std::string& name) const { return folder_.narrow(name); }
    bool removeContents(const std::string& name = "tree") {
        return tell(removeDirectoryContents(folder_.wide(name)));
    }
    bool removePattern(const wchar_t* pattern) {
        return tell(removeDirectoryContents(folder_.wide("tree"), pattern));
    }
    bool removeBelow(const char* folder, const wchar_t* directory) {
        return tell(removeDirectoryBelow(folder_.wide(folder), directory));
    }
    bool removeTree(const std::string& name) {
        return tell(removeDirectoryAndContents(folder_.wide() + L"/" + toWide(name)));
    }
    bool tell(const Removed& removed) {
        errors_ = toNarrow(removed.failures);
        return removed.isComplete;
    }
    std::string errors_;
};

TEST_F(Removal, ContentsGoAndTheDirectoryStays) {
    folder_.write("tree/a", "");
    folder_.write("tree/.hidden", "");
    folder_.write("tree/b/c/d\u00FC", "");
    fs::create_directories(folder_.path() / "tree/empty");
    EXPECT_TRUE(removeContents());
    EXPECT_EQ(errors_, "");
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tree"));
}

TEST_F(Removal, MissingDirectoryIsAFailureWithOneLine) {
    EXPECT_FALSE(removeContents("missing"));
    EXPECT_EQ(errors_, "Error in " + at("missing") + kMissing);
}

TEST_F(Removal, FileInTheDirectorysPlaceIsAFailure) {
    folder_.write("file", "x");
    EXPECT_FALSE(removeContents("file"));
    EXPECT_EQ(errors_, "Error in " + at("file") + kNotADirectory);
    EXPECT_TRUE(folder_.has("file"));
}

TEST_F(Removal, PatternDeletesMatchingFilesInEverySubdirectoryAndReportsTheOthers) {
    for (const char* name : {"x.log", "x.log.1", "x.txt", "sub/y.log", "sub/keep", "gone/z.log"}) {
        folder_.write(std::string("tree/") + name, "");
    }
    EXPECT_FALSE(removePattern(L".log"));
    EXPECT_EQ(errors_, "Can't delete dir " + at("tree/sub") + notEmpty());
    EXPECT_FALSE(folder_.has("tree/x.log"));
    EXPECT_FALSE(folder_.has("tree/x.log.1"));
    EXPECT_FALSE(folder_.has("tree/sub/y.log"));
    EXPECT_FALSE(folder_.has("tree/gone")) << "nothing was left in it";
    EXPECT_TRUE(folder_.has("tree/x.txt"));
    EXPECT_TRUE(folder_.has("tree/sub/keep"));
}

TEST_F(Removal, PatternIsASubstringWithoutWildcards) {
    folder_.write("tree/a.log", "");
    folder_.write("tree/b*c", "");
    EXPECT_TRUE(removePattern(L"*c"));
    EXPECT_TRUE(folder_.has("tree/a.log"));
    EXPECT_FALSE(folder_.has("tree/b*c"));
    EXPECT_TRUE(removePattern(L"*"));
    EXPECT_FALSE(folder_.has("tree/a.log")) << "but a star alone is every file";
}

TEST_F(Removal, EmptyDirectoriesGoWhateverThePattern) {
    fs::create_directories(folder_.path() / "tree/a/b");
    EXPECT_TRUE(removePattern(L".log"));
    EXPECT_FALSE(folder_.has("tree/a"));
}

TEST_F(Removal, DeeperFailureShowsThroughItsDirectoryWithGrowingIndentation) {
    folder_.write("tree/a/b/keep", "");
    EXPECT_FALSE(removePattern(L".log"));
    EXPECT_EQ(errors_, "  Can't delete dir " + at("tree/a/b") + notEmpty() + "Can't delete dir " +
                           at("tree/a") + notEmpty());
}

TEST_F(Removal, EntryThatCannotBeRemovedIsReportedAndTheOthersGo) {
    NEED_HELD_DIRECTORY();
    const test::HeldDirectory held(folder_.path() / "tree/held");
    folder_.write("tree/a", "");
    folder_.write("tree/z", "");
    EXPECT_FALSE(removeContents());
    EXPECT_EQ(errors_, "Can't delete dir " + at("tree/held") +
                           "  -  Failed with error 16: Device or resource busy\n");
    EXPECT_FALSE(folder_.has("tree/a"));
    EXPECT_FALSE(folder_.has("tree/z"));
}

TEST_F(Removal, LinkThatLeadsNowhereIsDeletedLikeAFile) {
    fs::create_directories(folder_.path() / "tree");
    fs::create_symlink("nowhere", folder_.path() / "tree/dangling");
    fs::create_symlink("loop", folder_.path() / "tree/loop");
    EXPECT_TRUE(removeContents());
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tree"));
}

TEST_F(Removal, LinkToAFileIsDeletedAndItsTargetStays) {
    folder_.write("target", "x");
    fs::create_directories(folder_.path() / "tree");
    fs::create_symlink(at("target"), folder_.path() / "tree/link");
    EXPECT_TRUE(removeContents());
    EXPECT_FALSE(folder_.has("tree/link"));
    EXPECT_EQ(folder_.read("target"), "x");
}

TEST_F(Removal, LinkToADirectoryIsDeletedAndItsTargetIsLeftAlone) {
    folder_.write("target/file", "x");
    fs::create_directories(folder_.path() / "tree/deep");
    fs::create_directory_symlink(at("target"), folder_.path() / "tree/link");
    fs::create_directory_symlink(at("target"), folder_.path() / "tree/deep/link");
    EXPECT_TRUE(removeContents());
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tree"));
    EXPECT_EQ(folder_.read("target/file"), "x");
}

TEST_F(Removal, PatternMeansLinksByTheirOwnName) {
    folder_.write("target/y.log", "x");
    fs::create_directories(folder_.path() / "tree");
    fs::create_directory_symlink(at("target"), folder_.path() / "tree/link");
    fs::create_directory_symlink(at("target"), folder_.path() / "tree/link.log");
    EXPECT_TRUE(removePattern(L".log"));
    EXPECT_TRUE(fs::is_symlink(folder_.path() / "tree/link"));
    EXPECT_FALSE(fs::is_symlink(folder_.path() / "tree/link.log"));
    EXPECT_TRUE(folder_.has("target/y.log"));
}

TEST_F(Removal, LinkInTheTreesOwnPlaceIsNotEnteredHoweverItsNameEnds) {
    folder_.write("target/file", "x");
    fs::create_directory_symlink(at("target"), folder_.path() / "tree");
    for (const char* name : {"tree", "tree/", "tree//", "tree/.", "tree/./", "tree//././/"}) {
        EXPECT_FALSE(tell(removeDirectoryContents(folder_.wide() + L"/" + toWide(name))));
        EXPECT_TRUE(errors_.starts_with("Error in " + at("tree") + "  -  Failed with"));
        EXPECT_FALSE(removeTree(name));
        EXPECT_EQ(folder_.read("target/file"), "x") << name;
        EXPECT_TRUE(fs::is_symlink(folder_.path() / "tree")) << name;
    }
}

TEST_F(Removal, BelowAFolderFollowsLinksToTheFolderOnly) {
    folder_.write("target/a/b/file", "x");
    folder_.write("target/c/file", "x");
    fs::create_directory_symlink("c", folder_.path() / "target/link");
    fs::create_directory_symlink("target", folder_.path() / "folder");
    EXPECT_TRUE(removeBelow("folder", L"a/b"));
    EXPECT_EQ(errors_, "");
    EXPECT_TRUE(fs::is_empty(folder_.path() / "target/a"));
    for (const wchar_t* name : {L"link", L"link/d", L"link/../c", L""}) {
        EXPECT_FALSE(removeBelow("folder", name));
        EXPECT_NE(errors_, "");
        EXPECT_TRUE(folder_.has("target/c/file"));
    }
    EXPECT_FALSE(removeBelow("missing", L"a"));
    EXPECT_EQ(errors_, "Error in " + at("missing") + kMissing);
}

TEST_F(Removal, FileThatCannotBeDeletedIsReported) {
    folder_.write("tree/file", "x");
    // Root deletes everything, so somebody else tries.
    ASSERT_EQ(chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(at("tree").c_str(), 0555), 0);
    const std::wstring tree = folder_.wide("tree");
    EXPECT_EXIT(
        {
            const bool changed = geteuid() != 0 || seteuid(12345) == 0;
            const Removed removed = removeDirectoryContents(tree);
            fputs(toNarrow(removed.failures).c_str(), stderr);
            _exit(changed && !removed.isComplete ? 3 : 4);
        },
        testing::ExitedWithCode(3),
        "^Can't delete file .*/tree/file  -  Failed with error 13: Permission denied\n$");
    EXPECT_TRUE(folder_.has("tree/file"));
}

TEST_F(Removal, ManyEntriesAndDeepTreesAreRemoved) {
    for (int i = 0; i < 2000; ++i) {
        folder_.write("tree/many/file" + std::to_string(i), "");
    }
    std::string deep = "tree";
    for (int i = 0; i < 300; ++i) {
        deep += "/deep";
    }
    folder_.write(deep + "/file", "");
    EXPECT_TRUE(removeContents());
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tree"));
}

TEST_F(Removal, DirectoryGoesBehindItsContents) {
    folder_.write("tree/a/b", "");
    EXPECT_TRUE(removeTree("tree"));
    EXPECT_EQ(errors_, "");
    EXPECT_FALSE(folder_.has("tree"));
}

TEST_F(Removal, MissingDirectoryIsReportedForItsContentsAndForItself) {
    EXPECT_FALSE(removeTree("missing"));
    EXPECT_EQ(errors_, "Error in " + at("missing") + kMissing + "Can't delete dir " +
                           at("missing") + kMissing);
}

}  // namespace
}  // namespace rcp
