#include "platform/files.h"
#include "tests/unit/fixture.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace rcp {
namespace {

class CopyFile : public test::LauncherTest {
  protected:
    void copies(const std::string& content) const {
        folder_.write("from", content);
        EXPECT_TRUE(copyFile(folder_.wide("from"), folder_.wide("to")));
        EXPECT_EQ(folder_.read("to"), content);
    }
};

TEST_F(CopyFile, EveryTextIsCopied) {
    copies("");
    copies("a=1\nb=2\n");
    copies("no line feed at the end");
    copies("\u00FC\u65E5\U0001F600\r\n");
    copies(std::string("a\0b\n", 4));
}

TEST_F(CopyFile, LinesMayHaveAnyLength) {
    copies(std::string(1000, 'x') + "\n" + std::string(1001, 'y') + "\n");
    copies(std::string(2500, 'x'));
    std::string large;
    while (large.size() < 300'000) {
        large += "\u65E5\u00FCx";  // some character lies across each end of a buffer
    }
    copies(large);
}

// What is compared is read in one piece; a longer file is never a copy of its beginning.
TEST_F(CopyFile, BeginningOfTheFileIsNoCopyOfIt) {
    const std::string piece(std::size_t{16} * 1024, 'x');
    folder_.write("to", piece);
    copies(piece + "more");
    folder_.write("to", piece);
    copies(piece);
}

TEST_F(CopyFile, ExistingDestinationIsReplacedWhole) {
    folder_.write("to", std::string(5000, 'z'));
    copies("short\n");
    EXPECT_FALSE(folder_.has("to.tmp"));
}

TEST_F(CopyFile, ExistingDestinationKeepsItsPermissions) {
    folder_.write("to", "old");
    ASSERT_EQ(chmod(folder_.narrow("to").c_str(), 0640), 0);
    copies("new");
    struct stat status {};
    ASSERT_EQ(stat(folder_.narrow("to").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(CopyFile, DestinationThatIsACopyAlreadyIsNotReplaced) {
    folder_.write("to", "same\n");
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(stat(folder_.narrow("to").c_str(), &before), 0);
    copies("same\n");
    ASSERT_EQ(stat(folder_.narrow("to").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(CopyFile, DestinationThatIsALinkToACopyIsReplaced) {
    folder_.write("other", "same\n");
    std::filesystem::create_symlink("other", folder_.path() / "to");
    copies("same\n");
    EXPECT_FALSE(std::filesystem::is_symlink(folder_.path() / "to"));
}

TEST_F(CopyFile, MissingSourceEndsTheLaunch) {
    EXPECT_FATAL(copyFile(folder_.wide("from"), folder_.wide("to")),
                 "ZYPRA0190E: Unable to open source file " + folder_.narrow("from") +
                     " to be copied : No such file or directory\n");
    EXPECT_FALSE(folder_.has("to"));
}

TEST_F(CopyFile, DestinationThatCannotBeOpenedEndsTheLaunch) {
    folder_.write("from", "x");
    EXPECT_FATAL(copyFile(folder_.wide("from"), folder_.wide("missing/to")),
                 "ZYPRA0191E: Unable to open destination file " + folder_.narrow("missing/to") +
                     " to be copied to : No such file or directory\n");
}

TEST_F(CopyFile, FailedWriteEndsTheLaunchAndLeavesTheOldFile) {
    folder_.write("from", std::string(300'000, 'x'));
    folder_.write("to", "old");
    EXPECT_FATAL(
        {
            const test::FileSizeLimit limit(100'000);
            copyFile(folder_.wide("from"), folder_.wide("to"));
        },
        "ZYPRA0192E: Encountered error copying file contents : File too large\n");
    EXPECT_EQ(folder_.read("to"), "old");
    EXPECT_FALSE(folder_.has("to.tmp"));
}

TEST_F(CopyFile, DestinationThatIsADirectoryEndsTheLaunch) {
    folder_.write("from", "x");
    folder_.write("to/file", "x");
    EXPECT_FATAL(copyFile(folder_.wide("from"), folder_.wide("to")),
                 "ZYPRA0191E: Unable to open destination file " + folder_.narrow("to") +
                     " to be copied to : Is a directory\n");
}

TEST_F(CopyFile, SourceThatIsNoTextOfTheLocaleIsCopiedByteForByte) {
    for (const std::string bytes : {"a\xFF\n", "\xC3", "\xC3(", "\xED\xA0\x80"}) {
        copies(bytes);
        copies(std::string(20'000, 'x') + bytes);
    }
}

// A process's own memory: it opens like a file, and there is nothing to read at its beginning.
TEST_F(CopyFile, SourceThatCannotBeReadToItsEndEndsTheLaunchAndIsNamed) {
    if (!existsA("/proc/self/mem")) {
        GTEST_SKIP() << "needs Linux's /proc";
    }
    folder_.write("to", "old");
    EXPECT_FATAL(copyFile(L"/proc/self/mem", folder_.wide("to")),
                 "ZYPRA0193E: Did not encounter EOF while copying file contents "
                 "\\(/proc/self/mem\\) : Input/output error\n");
    EXPECT_EQ(folder_.read("to"), "old");
}

}  // namespace
}  // namespace rcp
