// File calls that change nothing: the same results as the real ones, and the changes told.
#include "base/system_calls.h"
#include "tests/inspect/rehearsal_fixture.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace rcp::inspect::test {
namespace {

constexpr int kNew = O_RDWR | O_CREAT;

Call opening(const std::string& path, int flags, const std::string& written = {}) {
    return {"open", path, {}, flags, 0644, written};
}
Call making(const std::string& path) {
    return {"mkdir", path, {}, 0, 0755, {}};
}
Call linking(const std::string& target, const std::string& path) {
    return {"symlink", path, target, 0, 0, {}};
}
Call moving(const std::string& source, const std::string& target) {
    return {"rename", source, target, 0, 0, {}};
}
Call with(const std::string& name, const std::string& path) {
    return {name, path, {}, 0, 0, {}};
}

TEST_F(RehearsalTest, TellsNoChangesOfReading) {
    EXPECT_EQ(changesOf({opening("a/f", O_RDONLY), with("stat", "c/o"), with("realpath", "l/m")}),
              "");
}

TEST_F(RehearsalTest, TellsWhatIsMadeReplacedAndRemoved) {
    EXPECT_EQ(changesOf({making("d"), opening("d/new", kNew, "text"), linking("a", "d/link"),
                         opening("a/f", O_WRONLY | O_TRUNC, "new"), with("unlink", "c/g"),
                         with("rmdir", "empty")}),
              "replaced file a/f\n"
              "removed file c/g\n"
              "made directory d\n"
              "made link d/link\n"
              "made file d/new\n"
              "removed directory empty\n");
}

TEST_F(RehearsalTest, TellsNothingOfWhatIsMadeAndRemovedAgain) {
    EXPECT_EQ(changesOf({making("d"), opening("d/f", kNew), with("unlink", "d/f"),
                         with("rmdir", "d"), moving("f", "g"), moving("g", "f")}),
              "");
}

TEST_F(RehearsalTest, TakesAFileWrittenAsItStoodForNoChange) {
    EXPECT_EQ(changesOf({opening("f", O_WRONLY | O_TRUNC, "text of /f"),
                         opening("f.new", kNew, "text of /a/f"), moving("f.new", "a/f")}),
              "");
}

TEST_F(RehearsalTest, TellsAMoveAsOneChangeAndWhatChangesInsideBesides) {
    EXPECT_EQ(changesOf({moving("a", "z"), opening("z/f", O_WRONLY | O_APPEND, "more"),
                         opening("z/b/new", kNew), making("a"), opening("a/f", kNew)}),
              "moved directory a -> z\n"
              "made directory a\n"
              "made file a/f\n"
              "made file z/b/new\n"
              "replaced file z/f\n");
}

TEST_F(RehearsalTest, TellsOfARemovedDirectoryThatItIsGoneNotWhatWasInIt) {
    const std::vector<Call> calls{with("unlink", "a/f"), with("unlink", "a/m"),
                                  with("unlink", "a/b/f"), with("rmdir", "a/b"),
                                  with("rmdir", "a")};
    EXPECT_EQ(changesOf(calls), "removed directory a\n");
}

TEST_F(RehearsalTest, TellsWhatADirectoryMadeAnewHasNotAnyMore) {
    EXPECT_EQ(changesOf({with("unlink", "a/b/f"), with("rmdir", "a/b"), making("a/b")}),
              "removed file a/b/f\n");
}

TEST_F(RehearsalTest, TellsOfAMovedFileThatIsWrittenThatTheOldOneIsGone) {
    EXPECT_EQ(changesOf({moving("f", "g"), opening("g", O_WRONLY | O_APPEND, "more")}),
              "removed file f\nmade file g\n");
    makeTrees();
    EXPECT_EQ(changesOf({opening("f", O_WRONLY | O_APPEND, "more"), moving("f", "g")}),
              "removed file f\nmade file g\n");
}

TEST_F(RehearsalTest, TellsPathsAsTheLaunchNamesThem) {
    EXPECT_EQ(changesOf({opening("l//./new", kNew), making("a/m/dir")}),
              "made directory a/m/dir\nmade file l/new\n");
}

TEST_F(RehearsalTest, TellsWhatALinkLeadsToAndNotTheLink) {
    EXPECT_EQ(changesOf({opening("n", kNew, "text"), opening("c/o", O_WRONLY | O_TRUNC)}),
              "replaced file f\nmade file nowhere\n");
}

// --- The same as the real calls -----------------------------------------------------------------------

TEST_F(RehearsalTest, ReadsBackWhatWasWritten) {
    expectTheSame({opening("new", kNew, "first"), opening("new", O_RDONLY),
                   opening("new", O_WRONLY | O_APPEND, " second"), opening("new", O_RDWR),
                   opening("new", O_RDWR | O_TRUNC, "third"), with("stat", "new"),
                   opening("a/f", O_RDWR, "TEXT"), opening("l/f", O_RDONLY)});
}

TEST_F(RehearsalTest, ListsDirectoriesAsTheyWouldBe) {
    expectTheSame({opening("a", O_RDONLY | O_DIRECTORY), with("unlink", "a/f"), making("a/dir"),
                   linking("x", "a/link"), opening("a/new", kNew), moving("f", "a/moved"),
                   opening("a", O_RDONLY | O_DIRECTORY), opening("l", O_RDONLY), making("d"),
                   opening("d", O_RDONLY)});
}

TEST_F(RehearsalTest, RefusesAsTheSystemDoes) {
    expectTheSame({opening("f", kNew | O_EXCL), opening("n", kNew | O_EXCL),
                   opening("c/o", O_RDONLY | O_NOFOLLOW), opening("c/o", O_WRONLY | O_NOFOLLOW),
                   opening("a", O_WRONLY), opening("a", O_RDONLY | O_CREAT),
                   opening("missing", O_RDWR), opening("missing/f", kNew), opening("f/f", kNew),
                   opening("c/loop", O_RDONLY), opening("new/", kNew), opening("f/", O_RDONLY),
                   opening(std::string(300, 'x'), kNew), opening(std::string(5000, 'x'), kNew)});
    makeTrees();
    expectTheSame({making("a"), making("f"), making("n"), making("f/d"), making("missing/d"),
                   with("unlink", "a"), with("unlink", "missing"), with("unlink", "f/"),
                   with("unlink", "l/"), with("rmdir", "a"), with("rmdir", "f"), with("rmdir", "l"),
                   with("rmdir", "missing"), with("unlink", "a/.")});
    makeTrees();
    expectTheSame({moving("missing", "x"), moving("a", "a/b/x"), moving("a/b", "a"),
                   moving("f", "a"), moving("a", "f"), moving("a", "c"), moving("empty", "a"),
                   moving("a", "empty"), moving("f", "f"), moving("f", "missing/x"),
                   moving("c/.", "x"), moving("f/", "x"), linking("a", "f"), linking("", "x"),
                   with("readlink", "f"), with("readlink", "missing"), with("realpath", "n")});
}

TEST_F(RehearsalTest, GoesThroughLinksAndDotsAsTheSystemDoes) {
    expectTheSame({opening("l/../f", O_RDONLY), opening("a/m/../a/f", O_RDONLY),
                   with("realpath", "l/m/../c/o"), linking("b/..", "a/up"),
                   opening("a/up/new", kNew, "text"), with("realpath", "a/up/new"),
                   opening("a//b/./../new", O_RDONLY), with("stat", "f/.."), with("stat", "f/."),
                   making("x/"), with("lstat", "l/"), with("stat", "l/m")});
}

TEST_F(RehearsalTest, FollowsAsManyLinksAsTheSystemDoesAndNoMore) {
    constexpr int kMost = 40;  // path_resolution(7)
    std::vector<Call> calls{linking("f", "link1")};
    for (int i = 1; i <= kMost; ++i) {
        calls.push_back(linking("link" + std::to_string(i), "link" + std::to_string(i + 1)));
    }
    for (int i = kMost - 1; i <= kMost + 1; ++i) {
        calls.push_back(with("stat", "link" + std::to_string(i)));
    }
    expectTheSame(calls);
}

TEST_F(RehearsalTest, FollowsLinksOfItsOwnMaking) {
    expectTheSame({linking("c", "to"), opening("to/new", kNew, "text"), opening("c/new", O_RDONLY),
                   with("unlink", "to"), opening("to/new", O_RDONLY), linking("ROOT/a", "to"),
                   opening("to/f", O_WRONLY | O_TRUNC, "x"), with("readlink", "to"),
                   moving("to", "a/to"), opening("a/to/f", O_RDONLY)});
}

TEST_F(RehearsalTest, MovesDirectoriesWithAllThatHasChangedInThem) {
    expectTheSame({opening("a/f", O_WRONLY | O_TRUNC, "changed"), with("unlink", "a/b/f"),
                   opening("a/b/new", kNew, "new"), moving("a", "z"), opening("z/f", O_RDONLY),
                   opening("z/b/f", O_RDONLY), opening("z/b/new", O_RDONLY), moving("z/b", "b"),
                   moving("z", "c/z"), moving("c", "a"), opening("a/z/f", O_RDONLY),
                   opening("a/g", O_RDONLY), opening("z", O_RDONLY), making("c")});
}

TEST_F(RehearsalTest, PutsDirectoriesInThePlaceOfEmptyOnes) {
    expectTheSame({moving("a", "empty"), opening("empty/f", O_RDONLY), with("unlink", "c/g"),
                   with("unlink", "c/o"), with("unlink", "c/loop"), moving("empty", "c"),
                   opening("c/b/f", O_RDONLY)});
}

TEST_F(RehearsalTest, MovesNothingToAnotherFileSystem) {
    struct stat here {};
    struct stat there {};
    stat(rehearsed().c_str(), &here);
    if (stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev) {
        GTEST_SKIP() << "there is no other file system";
    }
    const std::string target = "/dev/shm/" + folder_.path().filename().string();
    startRehearsal();
    EXPECT_EQ(calls::rename((rehearsed() + "/f").c_str(), target.c_str()), -1);
    EXPECT_EQ(errno, EXDEV);
    EXPECT_EQ(calls::mkdir((rehearsed() + "/d").c_str(), 0755), 0);
    EXPECT_EQ(calls::rename((rehearsed() + "/d").c_str(), target.c_str()), -1);
    EXPECT_EQ(errno, EXDEV);
    EXPECT_FALSE(std::filesystem::exists(target));
}

// --- Beside the calls ---------------------------------------------------------------------------------

TEST_F(RehearsalTest, HidesWithoutTellingAChange) {
    startRehearsal();
    rehearsal_->hide(rehearsed() + "/a/f");
    EXPECT_EQ(carryOut(opening("a/f", O_RDONLY), rehearsed()),
              "open a/f 0 = error: No such file or directory");
    EXPECT_EQ(carryOut(opening("l/f", O_RDONLY), rehearsed()),
              "open l/f 0 = error: No such file or directory");
    EXPECT_EQ(listOf(rehearsal_->changes(), rehearsed()), "");
}

TEST_F(RehearsalTest, LeavesErrnoAloneWhenACallSucceeds) {
    startRehearsal();
    errno = ERANGE;
    EXPECT_EQ(calls::mkdir((rehearsed() + "/d").c_str(), 0755), 0);
    EXPECT_EQ(calls::rename((rehearsed() + "/d").c_str(), (rehearsed() + "/e").c_str()), 0);
    struct stat status {};
    EXPECT_EQ(calls::stat((rehearsed() + "/e").c_str(), &status), 0);
    EXPECT_EQ(errno, ERANGE);
}

TEST_F(RehearsalTest, TakesPathsFromTheWorkingDirectory) {
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(rehearsed() + "/a");
    startRehearsal();
    const int descriptor = calls::open("../c/new", kNew | O_CLOEXEC, 0644);
    EXPECT_EQ(calls::mkdir("dir", 0755), 0);
    std::filesystem::current_path(former);
    EXPECT_GE(descriptor, 0);
    close(descriptor);
    EXPECT_EQ(listOf(rehearsal_->changes(), rehearsed()),
              "made directory a/dir\nmade file c/new\n");
    EXPECT_FALSE(std::filesystem::exists(rehearsed() + "/c/new"));
}

TEST_F(RehearsalTest, IsRealAgainWhenItIsOver) {
    startRehearsal();
    rehearsal_.reset();
    EXPECT_EQ(carryOut(making("d"), rehearsed()), "mkdir d = done");
    EXPECT_TRUE(std::filesystem::exists(rehearsed() + "/d"));
}

TEST_F(RehearsalTest, LocksNothingAndMakesNoProcess) {
    startRehearsal();
    const int descriptor = calls::open((rehearsed() + "/f").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(calls::flock(descriptor, LOCK_EX), 0);
    const int other = ::open((rehearsed() + "/f").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    close(other);
    close(descriptor);
    EXPECT_EQ(calls::fork(), 0);
}

TEST_F(RehearsalTest, LeavesDevicesAloneThatAreOpenedForWriting) {
    ASSERT_EQ(mkfifo((rehearsed() + "/pipe").c_str(), 0600), 0);
    startRehearsal();
    const int descriptor =
        calls::open((rehearsed() + "/pipe").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(write(descriptor, "x", 1), -1);
    close(descriptor);
}

}  // namespace
}  // namespace rcp::inspect::test
