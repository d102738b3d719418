#include "platform/whole_file.h"

#include "base/system_calls.h"
#include "tests/unit/child_process.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace rcp {
namespace {

namespace fs = std::filesystem;

class WholeFiles : public test::LauncherTest {
  protected:
    [[nodiscard]] mode_t modeOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(folder_.narrow(name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    void replacesWhatIsThere() const {
        WholeFile file(folder_.wide("file"));
        EXPECT_TRUE(file.open());
        EXPECT_TRUE(file.write("text"));
        EXPECT_TRUE(file.commit());
        EXPECT_EQ(folder_.read("file"), "text");
        EXPECT_FALSE(folder_.has("file.tmp"));
    }
    /// By a relative name: an address holds a short one only.
    void bindSocket(const std::string& name) const {
        const fs::path before = fs::current_path();
        fs::current_path(folder_.path());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof address.sun_path - 1);
        const UniqueFd bound(socket(AF_UNIX, SOCK_STREAM, 0));
        EXPECT_EQ(bind(bound.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        fs::current_path(before);
    }
};

TEST_F(WholeFiles, ContentAppearsWithTheCommitAndNotBefore) {
    folder_.write("file", "old");
    WholeFile file(folder_.wide("file"));
    ASSERT_TRUE(file.open());
    EXPECT_TRUE(file.write("new "));
    EXPECT_TRUE(file.write(std::string(200'000, 'x')));
    EXPECT_EQ(folder_.read("file"), "old");
    EXPECT_TRUE(folder_.has("file.tmp"));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(folder_.read("file"), "new " + std::string(200'000, 'x'));
    EXPECT_FALSE(folder_.has("file.tmp"));
}

TEST_F(WholeFiles, WithoutACommitNothingIsLeft) {
    folder_.write("file", "old");
    {
        WholeFile file(folder_.wide("file"), L".new");
        ASSERT_TRUE(file.open());
        EXPECT_TRUE(folder_.has("file.new"));
        EXPECT_TRUE(file.write("new"));
    }
    EXPECT_EQ(folder_.read("file"), "old");
    EXPECT_FALSE(folder_.has("file.new"));
}

TEST_F(WholeFiles, LaunchThatEndsInBetweenLeavesNoTemporaryFile) {
    EXPECT_FATAL(
        {
            WholeFile file(folder_.wide("file"));
            if (file.open() && file.write("half")) {
                fatal(noReason(), messages.lockNotWritten);
            }
        },
        "ZYPRA0051E");
    EXPECT_FALSE(folder_.has("file"));
    EXPECT_FALSE(folder_.has("file.tmp"));
}

TEST_F(WholeFiles, WhatAKilledLaunchLeftIsTakenOver) {
    folder_.write("file.tmp", std::string(1000, 'z'));
    WholeFile file(folder_.wide("file"));
    ASSERT_TRUE(file.open());
    EXPECT_TRUE(file.write("new"));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(folder_.read("file"), "new");
}

TEST_F(WholeFiles, ReplacedFileKeepsItsPermissionsAndANewOneHasTheMasks) {
    folder_.write("file", "old");
    ASSERT_EQ(chmod(folder_.narrow("file").c_str(), 0604), 0);
    const mode_t before = umask(027);
    for (const char* name : {"file", "other"}) {
        WholeFile file(folder_.wide(name));
        EXPECT_TRUE(file.open() && file.write("new") && file.commit());
    }
    umask(before);
    EXPECT_EQ(modeOf("file"), 0604U);
    EXPECT_EQ(modeOf("other"), 0640U);
}

TEST_F(WholeFiles, LinkUnderTheTemporaryNameIsReplacedAndNotFollowed) {
    folder_.write("target", "untouched");
    fs::create_symlink("target", folder_.path() / "file.tmp");
    WholeFile file(folder_.wide("file"));
    ASSERT_TRUE(file.open());
    EXPECT_TRUE(file.write("text"));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(folder_.read("target"), "untouched");
    EXPECT_EQ(folder_.read("file"), "text");
    EXPECT_FALSE(folder_.has("file.tmp"));
}

TEST_F(WholeFiles, WhatAKilledLaunchLeftIsRemovedUnlessItIsBeingWritten) {
    folder_.write("file.tmp", "half");
    EXPECT_TRUE(removeUnfinished(folder_.wide("file")));
    EXPECT_FALSE(folder_.has("file.tmp"));
    EXPECT_TRUE(removeUnfinished(folder_.wide("file"))) << "nothing there is fine";

    WholeFile file(folder_.wide("file"));
    ASSERT_TRUE(file.open());
    EXPECT_TRUE(removeUnfinished(folder_.wide("file"))) << "the other one will";
    EXPECT_TRUE(folder_.has("file.tmp"));
}

TEST_F(WholeFiles, WhatAKilledLaunchLeftIsToldToStay) {
    SystemCalls unopened = systemCalls;
    unopened.open = [](const char*, int, mode_t) {
        errno = EACCES;
        return -1;
    };
    SystemCalls unlocked = systemCalls;
    unlocked.flock = [](int, int) {
        errno = EIO;
        return -1;
    };
    SystemCalls unknown = systemCalls;
    unknown.lstat = [](const char*, struct stat*) {
        errno = EIO;
        return -1;
    };
    SystemCalls kept = systemCalls;
    kept.unlink = [](const char*) {
        errno = EBUSY;
        return -1;
    };
    folder_.write("file.tmp", "half");
    for (const SystemCalls& calls : {unopened, unlocked, unknown, kept}) {
        const InstalledCalls installed(calls);
        EXPECT_FALSE(removeUnfinished(folder_.wide("file")));
    }
    EXPECT_TRUE(folder_.has("file.tmp"));
}

// By its writer, between the look at it and the lock.
TEST_F(WholeFiles, NameThatGoesOrIsAnotherFilesIsNoLongerTheKilledLaunchs) {
    static std::string name;
    static std::string target;
    name = folder_.narrow("file.tmp");
    target = folder_.narrow("file");
    SystemCalls renamed = systemCalls;
    renamed.flock = [](int, int) { return ::rename(name.c_str(), target.c_str()); };
    SystemCalls replaced = systemCalls;
    replaced.flock = [](int, int) {
        const UniqueFd made(kSystemsOwnCalls.open(target.c_str(), O_WRONLY | O_CREAT, 0600));
        return ::rename(target.c_str(), name.c_str());
    };
    SystemCalls removed = systemCalls;
    removed.unlink = [](const char* path) {
        kSystemsOwnCalls.unlink(path);
        return kSystemsOwnCalls.unlink(path);
    };
    for (const SystemCalls& calls : {renamed, replaced, removed}) {
        folder_.write("file.tmp", "half");
        const InstalledCalls installed(calls);
        EXPECT_TRUE(removeUnfinished(folder_.wide("file")));
    }
    EXPECT_FALSE(folder_.has("file.tmp"));
}

TEST_F(WholeFiles, PipeUnderTheTemporaryNameIsReplaced) {
    ASSERT_EQ(mkfifo(folder_.narrow("file.tmp").c_str(), 0600), 0);
    replacesWhatIsThere();
}

TEST_F(WholeFiles, SocketUnderTheTemporaryNameIsReplaced) {
    bindSocket("file.tmp");
    replacesWhatIsThere();
}

bool isOfKind(int descriptor, mode_t kind) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

// As on a Mac.
TEST_F(WholeFiles, PipeThatCannotBeLockedIsReplaced) {
    SystemCalls calls = systemCalls;
    calls.flock = [](int descriptor, int operation) {
        errno = ENOTSUP;
        return isOfKind(descriptor, S_IFIFO) ? -1 : kSystemsOwnCalls.flock(descriptor, operation);
    };
    const InstalledCalls installed(calls);
    ASSERT_EQ(mkfifo(folder_.narrow("file.tmp").c_str(), 0600), 0);
    replacesWhatIsThere();
}

// As on a Mac.
TEST_F(WholeFiles, SocketThatTheSystemCallsUnsupportedIsReplaced) {
    SystemCalls calls = systemCalls;
    calls.open = [](const char* path, int flags, mode_t mode) {
        const int opened = kSystemsOwnCalls.open(path, flags, mode);
        errno = opened < 0 && errno == ENXIO ? EOPNOTSUPP : errno;
        return opened;
    };
    const InstalledCalls installed(calls);
    bindSocket("file.tmp");
    replacesWhatIsThere();
}

TEST_F(WholeFiles, WhatAKilledWriterLeftWhileItsLockWasWaitedForIsEmptied) {
    SystemCalls calls = systemCalls;
    calls.flock = [](int descriptor, int operation) {
        EXPECT_EQ(pwrite(descriptor, "much more", 9, 0), 9);
        return kSystemsOwnCalls.flock(descriptor, operation);
    };
    const InstalledCalls installed(calls);
    replacesWhatIsThere();
}

TEST_F(WholeFiles, NoteStandsFromTheFirstTemporaryNameOn) {
    {
        UnfinishedNote note(folder_.narrow("note"));
        EXPECT_FALSE(note.isLeft());
        {
            WholeFile file(folder_.wide("file"));
            EXPECT_FALSE(folder_.has("note")) << "nothing is written";
            ASSERT_TRUE(file.open());
            EXPECT_TRUE(folder_.has("note"));
            EXPECT_TRUE(file.commit());
        }
        EXPECT_TRUE(folder_.has("note")) << "the next one is told of already";
        EXPECT_TRUE(WholeFile(folder_.wide("other")).open());
    }
    EXPECT_FALSE(folder_.has("note"));
    EXPECT_TRUE(WholeFile(folder_.wide("file")).open());
    EXPECT_FALSE(folder_.has("note")) << "nobody is to be told";
}

TEST_F(WholeFiles, NoteOfAKilledLaunchStaysUntilItIsSettled) {
    folder_.write("note", "");
    {
        UnfinishedNote note(folder_.narrow("note"));
        EXPECT_TRUE(note.isLeft());
        EXPECT_TRUE(WholeFile(folder_.wide("file")).open());
    }
    EXPECT_TRUE(folder_.has("note"));
    const UnfinishedNote note(folder_.narrow("note"));
    note.settle();
    EXPECT_FALSE(note.isLeft());
}

TEST_F(WholeFiles, NoteStaysWithATemporaryNameThatStays) {
    SystemCalls unlocked = systemCalls;
    unlocked.flock = [](int, int) {
        errno = ENOMEM;
        return -1;
    };
    SystemCalls unknown = systemCalls;
    unknown.fstat = [](int, struct stat*) {
        errno = EACCES;
        return -1;
    };
    SystemCalls kept = systemCalls;
    kept.unlink = [](const char* path) {
        errno = EIO;
        return std::string_view(path).ends_with(".tmp") ? -1 : kSystemsOwnCalls.unlink(path);
    };
    for (const SystemCalls& calls : {unlocked, unknown, kept}) {
        {
            const InstalledCalls installed(calls);
            const UnfinishedNote note(folder_.narrow("note"));
            EXPECT_EQ(WholeFile(folder_.wide("file")).open(), calls.unlink == kept.unlink);
        }
        EXPECT_TRUE(folder_.has("file.tmp"));
        EXPECT_TRUE(folder_.has("note"));
        fs::remove(folder_.path() / "file.tmp");
        fs::remove(folder_.path() / "note");
    }
}

TEST_F(WholeFiles, NoteThatCannotBeMadeStopsNobody) {
    UnfinishedNote note(folder_.narrow("missing/note"));
    EXPECT_FALSE(note.isLeft());
    EXPECT_TRUE(WholeFile(folder_.wide("file")).open());
}

TEST_F(WholeFiles, FailureSaysWhy) {
    WholeFile missing(folder_.wide("missing/file"));
    EXPECT_FALSE(missing.open());
    EXPECT_EQ(errno, ENOENT);
    WholeFile directory(folder_.wide("directory"));
    ASSERT_TRUE(directory.open());
    folder_.write("directory/file", "");
    EXPECT_FALSE(WholeFile(folder_.wide("directory")).open());
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(directory.commit());
    EXPECT_TRUE(errno == EISDIR || errno == ENOTEMPTY || errno == EEXIST) << errno;
    EXPECT_FALSE(folder_.has("directory.tmp"));
}

TEST_F(WholeFiles, TwoWritersTakeTurns) {
    const std::wstring path = folder_.wide("file");
    const std::string sign = folder_.narrow("sign");
    // Made first: it would share the first writer's lock otherwise.
    test::ChildProcess second([path, sign] {
        while (!fs::exists(sign)) {
            usleep(1000);
        }
        WholeFile file(path);
        return file.open() && file.write("second") && file.commit() ? 0 : 1;
    });
    WholeFile first(path);
    ASSERT_TRUE(first.open());
    ASSERT_TRUE(first.write("first"));
    folder_.write("sign", "");
    EXPECT_FALSE(second.endsWithin(std::chrono::milliseconds(50)));
    ASSERT_TRUE(first.commit());
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(folder_.read("file"), "second");
    EXPECT_FALSE(folder_.has("file.tmp"));
}

TEST(HoldsText, OnlyTheFileItselfWithExactlyThatText) {
    const test::TestFolder folder;
    folder.write("file", "text\n");
    fs::create_symlink("file", folder.path() / "link");
    EXPECT_TRUE(holdsText(folder.wide("file"), "text\n"));
    EXPECT_FALSE(holdsText(folder.wide("file"), "Text\n"));
    EXPECT_FALSE(holdsText(folder.wide("file"), "text"));
    EXPECT_FALSE(holdsText(folder.wide("file"), ""));
    EXPECT_FALSE(holdsText(folder.wide("link"), "text\n"));
    EXPECT_FALSE(holdsText(folder.wide("missing"), ""));
    EXPECT_FALSE(holdsText(folder.wide(), ""));
}

TEST_F(WholeFiles, TemporaryNameIsRemovedOnlyWhileItIsClaimed) {
    folder_.write("a", "");
    folder_.write("b", "");
    folder_.write("c", "");
    {
        TemporaryName unclaimed(folder_.narrow("a"));
        TemporaryName claimed(folder_.narrow("b"));
        claimed.claim();
        claimed.claim();
        TemporaryName released(folder_.narrow("c"));
        released.claim();
        released.release();
    }
    EXPECT_TRUE(folder_.has("a"));
    EXPECT_FALSE(folder_.has("b"));
    EXPECT_TRUE(folder_.has("c"));
}

}  // namespace
}  // namespace rcp
