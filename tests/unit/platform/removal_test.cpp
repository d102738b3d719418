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
        errors_ = L"old";
        return removeDirectoryContents(folder_.wide(name), errors_);
    }
    bool removePattern(const wchar_t* pattern) {
        std::string errors;
        const bool succeeded = removeDirectoryContents(at("tree"), toNarrow(pattern), errors, "");
        errors_ += toWide(errors);
        return succeeded;
    }
    std::wstring errors_;
};

TEST_F(Removal, ContentsGoAndTheDirectoryStays) {
    folder_.write("tree/a", "");
    folder_.write("tree/.hidden", "");
    folder_.write("tree/b/c/d\u00FC", "");
    fs::create_directories(folder_.path() / "tree/empty");
    EXPECT_TRUE(removeContents());
    EXPECT_EQ(errors_, L"");
    EXPECT_TRUE(fs::is_empty(folder_.path() / "tree"));
}

TEST_F(Removal, MissingDirectoryIsAFailureWithOneLine) {
    EXPECT_FALSE(removeContents("missing"));
    EXPECT_EQ(toNarrow(errors_), "Error in " + at("missing") + kMissing);
}

TEST_F(Removal, FileInTheDirectorysPlaceIsAFailure) {
    folder_.write("file", "x");
    EXPECT_FALSE(removeContents("file"));
    EXPECT_EQ(toNarrow(errors_), "Error in " + at("file") + kNotADirectory);
    EXPECT_TRUE(folder_.has("file"));
}

TEST_F(Removal, PatternDeletesMatchingFilesInEverySubdirectoryAndReportsTheOthers) {
    for (const char* name : {"x.log", "x.log.1", "x.txt", "sub/y.log", "sub/keep", "gone/z.log"}) {
        folder_.write(std::string("tree/") + name, "");
    }
    errors_ = L"before\n";
    EXPECT_FALSE(removePattern(L".log"));
    EXPECT_EQ(toNarrow(errors_), "before\nCan't delete dir " + at("tree/sub") + notEmpty());
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
    std::string errors = "before\n";
    EXPECT_FALSE(removeDirectoryContents(at("tree"), ".log", errors, ">"));
    EXPECT_EQ(errors, "before\n>  Can't delete dir " + at("tree/a/b") + notEmpty() +
                          ">Can't delete dir " + at("tree/a") + notEmpty());
}

TEST_F(Removal, EntryThatCannotBeRemovedIsReportedAndTheOthersGo) {
    NEED_HELD_DIRECTORY();
    const test::HeldDirectory held(folder_.path() / "tree/held");
    folder_.write("tree/a", "");
    folder_.write("tree/z", "");
    EXPECT_FALSE(removeContents());
    EXPECT_EQ(toNarrow(errors_), "Can't delete dir " + at("tree/held") +
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
        std::wstring errors;
        errors_ = L"old";
        EXPECT_FALSE(removeDirectoryContents(folder_.wide() + L"/" + toWide(name), errors_));
        EXPECT_TRUE(toNarrow(errors_).starts_with("Error in " + at("tree") + "  -  Failed with"));
        EXPECT_FALSE(removeDirectoryAndContents(folder_.wide() + L"/" + toWide(name), errors));
        EXPECT_EQ(folder_.read("target/file"), "x") << name;
        EXPECT_TRUE(fs::is_symlink(folder_.path() / "tree")) << name;
    }
}

TEST_F(Removal, BelowAFolderFollowsLinksToTheFolderOnly) {
    folder_.write("target/a/b/file", "x");
    folder_.write("target/c/file", "x");
    fs::create_directory_symlink("c", folder_.path() / "target/link");
    fs::create_directory_symlink("target", folder_.path() / "folder");
    std::wstring errors;
    EXPECT_TRUE(removeDirectoryBelow(folder_.wide("folder"), L"a/b", errors));
    EXPECT_EQ(errors, L"");
    EXPECT_TRUE(fs::is_empty(folder_.path() / "target/a"));
    for (const wchar_t* name : {L"link", L"link/d", L"link/../c", L""}) {
        EXPECT_FALSE(removeDirectoryBelow(folder_.wide("folder"), name, errors));
        EXPECT_NE(errors, L"");
        EXPECT_TRUE(folder_.has("target/c/file"));
    }
    EXPECT_FALSE(removeDirectoryBelow(folder_.wide("missing"), L"a", errors));
    EXPECT_EQ(toNarrow(errors), "Error in " + at("missing") + kMissing);
}

TEST_F(Removal, FileThatCannotBeDeletedIsReported) {
    folder_.write("tree/file", "x");
    // Root deletes everything, so somebody else tries.
    ASSERT_EQ(chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(at("tree").c_str(), 0555), 0);
    const std::string tree = at("tree");
    EXPECT_EXIT(
        {
            std::string errors;
            const bool changed = geteuid() != 0 || seteuid(12345) == 0;
            const bool removed = removeDirectoryContents(tree, errors, "");
            fputs(errors.c_str(), stderr);
            _exit(changed && !removed ? 3 : 4);
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

TEST_F(Removal, NarrowFormsAppendToTheText) {
    folder_.write("tree/a", "");
    std::string errors = "before\n";
    EXPECT_TRUE(removeDirectoryContents(at("tree"), errors, "  "));
    EXPECT_EQ(errors, "before\n");
    EXPECT_FALSE(removeDirectoryContents(at("missing"), errors, "  "));
    EXPECT_EQ(errors, "before\n  Error in " + at("missing") + kMissing);
}

TEST_F(Removal, DirectoryGoesBehindItsContents) {
    folder_.write("tree/a/b", "");
    errors_ = L"old";
    EXPECT_TRUE(removeDirectoryAndContents(folder_.wide("tree"), errors_));
    EXPECT_EQ(errors_, L"");
    EXPECT_FALSE(folder_.has("tree"));
}

TEST_F(Removal, MissingDirectoryIsReportedForItsContentsAndForItself) {
    EXPECT_FALSE(removeDirectoryAndContents(folder_.wide("missing"), errors_));
    EXPECT_EQ(toNarrow(errors_), "Error in " + at("missing") + kMissing + "Can't delete dir " +
                                     at("missing") + kMissing);
}

}  // namespace
}  // namespace rcp
