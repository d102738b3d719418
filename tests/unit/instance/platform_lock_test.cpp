#include "launcher/instance/platform_lock.h"

#include "base/system_calls.h"
#include "tests/unit/instance/lock_fixture.h"

#include <sys/resource.h>
#include <sys/time.h>

#include <fstream>
#include <limits>
#include <utility>

namespace rcp {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;

class WorkspaceLock : public test::LockTest {
  protected:
    // Whether a launcher that finds this content in the lock file becomes the main one.
    bool becomesMain(const std::string& content) {
        lock_.reset();
        writeLock(content);
        take();
        return isMain();
    }
};

TEST_F(WorkspaceLock, FilesLieInTheWorkspace) {
    EXPECT_EQ(getLockFilePath(L"/ws"), L"/ws/.rcp.lock");
    EXPECT_EQ(getMainPidFilePath(L"/ws"), L"/ws/.rcp.main");
}

TEST_F(WorkspaceLock, FirstLauncherMakesTheFileForItsUserAloneAndIsTheMainOne) {
    const test::Records records(folder_);
    take();
    EXPECT_TRUE(isMain());
    struct stat status {};
    ASSERT_EQ(stat(folder_.narrow(".rcp.lock").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(status.st_size, 0) << "the id is recorded at the hand-off";
    EXPECT_TRUE(records.has("ZYPRA0303I: lock file captured @ "));
    EXPECT_TRUE(
        records.has("ZYPRA0090E: Existing platform lock file found - checking validity.\n"
                    "ZYPRA0091E: No data in the platform lock file.\n"
                    "ZYPRA0304I: We are main process\n"))
        << records.text();
}

TEST_F(WorkspaceLock, TracingIsForcedAndThenAsBefore) {
    for (const bool before : {false, true}) {
        debug = before;
        const test::Records records(folder_);
        take();
        EXPECT_TRUE(records.has("ZYPRA0304I"));
        EXPECT_EQ(debug, before);
    }
}

TEST_F(WorkspaceLock, ContentWithoutALivePlatformMakesTheMainLauncher) {
    const std::string dead = std::to_string(test::deadProcessId()) + "          ";
    for (const std::string& content :
         {std::string(), std::string(14, ' '), std::string("\n"), dead, std::string("0"),
          std::string("-1"), std::to_string(-getpid()), std::string("99999999999999999999999"),
          std::to_string((1L << 32) + getpid())}) {
        EXPECT_TRUE(becomesMain(content)) << content;
    }
}

TEST_F(WorkspaceLock, UnrelatedLiveProcessIsNoPlatform) {
    const ChildProcess other("/bin/sleep", "editor", "1000");
    for (int round = 0; round < 400 && !becomesMain(std::to_string(other.pid())); ++round) {
        usleep(5000);  // until it has become the other program
    }
    EXPECT_TRUE(isMain());
    EXPECT_TRUE(becomesMain("1          "));
}

TEST_F(WorkspaceLock, LivePlatformMakesADaemonThatKnowsItsId) {
    const test::Records records(folder_);
    EXPECT_FALSE(becomesMain(std::to_string(platformId()) + "          "));
    EXPECT_EQ(platform(), platformId());
    EXPECT_TRUE(records.has("ZYPRA0305I: We are daemon process\n"));
    EXPECT_FALSE(records.has("ZYPRA0304I"));
    EXPECT_FALSE(records.has("ZYPRA0091E"));
}

TEST_F(WorkspaceLock, LettersInTheFileAreFatal) {
    for (const char* content : {"letters", "  x12"}) {
        writeLock(content);
        EXPECT_FATAL(take(), "ZYPRA0092E: Error reading platform lock file\\. \\(" +
                                 folder_.narrow(".rcp.lock") + "\\)\n");
    }
}

TEST_F(WorkspaceLock, MainLauncherDeletesTheSidFileAndADaemonKeepsIt) {
    folder_.write(".sid", "7");
    EXPECT_FALSE(becomesMain(std::to_string(platformId())));
    EXPECT_TRUE(folder_.has(".sid"));
    EXPECT_TRUE(becomesMain(""));
    EXPECT_FALSE(folder_.has(".sid"));
    EXPECT_TRUE(becomesMain("")) << "it need not be there";
}

TEST_F(WorkspaceLock, LockIsHeldUntilItIsReleased) {
    const test::Records records(folder_);
    take();
    EXPECT_TRUE(isLocked());
    const ForcedTracing forced;
    lock_->release();
    EXPECT_FALSE(isLocked());
    EXPECT_TRUE(records.has("ZYPRA0306I: lock file released @ "));
}

TEST_F(WorkspaceLock, OpeningTheFileElsewhereInTheProcessKeepsTheLock) {
    take();
    EXPECT_EQ(lockFile(), "");
    EXPECT_TRUE(isLocked()) << "the file was opened and closed in between";
}

TEST_F(WorkspaceLock, DescriptorIsNotPassedToOtherPrograms) {
    take();
    ASSERT_GE(descriptor(), 0);
    EXPECT_NE(fcntl(descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(WorkspaceLock, SecondLauncherWaitsForTheFirst) {
    take();
    ChildProcess second([this] {
        take();
        return isMain() ? 1 : 2;
    });
    EXPECT_FALSE(second.endsWithin(100ms));
    lock_->record(getpid());
    lock_->release();
    EXPECT_EQ(second.wait(), 2);
}

TEST_F(WorkspaceLock, LauncherThatDiesReleasesTheLock) {
    ChildProcess first([this] {
        take();
        pause();
        return 0;
    });
    while (!folder_.has(".rcp.lock") || !isLocked()) {
        ASSERT_FALSE(first.endsWithin(1ms));
    }
    ChildProcess second([this] {
        take();
        return isMain() ? 1 : 2;
    });
    EXPECT_FALSE(second.endsWithin(50ms));
    first.end();
    EXPECT_EQ(second.wait(), 1);
}

TEST_F(WorkspaceLock, SignalsDoNotEndTheWait) {
    take();
    ChildProcess second([this] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);  // interrupts system calls
        const itimerval often = {{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
        take();
        return 3;
    });
    EXPECT_FALSE(second.endsWithin(100ms));
    lock_->release();
    EXPECT_EQ(second.wait(), 3);
}

TEST_F(WorkspaceLock, ChildAloneHoldsTheLockOnceTheParentGaveItUp) {
    take();
    ChildProcess child([] {
        pause();
        return 0;
    });
    lock_->leaveToChild();
    EXPECT_EQ(descriptor(), -1);
    EXPECT_TRUE(isLocked());
    lock_->release();
    EXPECT_TRUE(isLocked()) << "there is nothing left that the parent could release";
    child.end();
    EXPECT_FALSE(isLocked());
}

int noLock(int /*descriptor*/, int /*operation*/) {
    errno = EBADF;
    return -1;
}

TEST_F(WorkspaceLock, LockThatFailsIsFatal) {
    take();
    SystemCalls calls = systemCalls;
    calls.flock = &noLock;
    const InstalledCalls installed(calls);
    EXPECT_FATAL(lock_->release(),
                 "ZYPRA0070E: Error unlocking platform lock file\\.  : Bad file descriptor");
    EXPECT_FATAL(take(), "ZYPRA0053E: Error locking platform lock file\\.  : Bad file descriptor");
}

TEST_F(WorkspaceLock, FileThatCannotBeMadeIsFatal) {
    const test::Records records(folder_);
    EXPECT_FATAL((void)PlatformLock::take(folder_.wide("missing"), kMarker, std::nullopt),
                 "^ZYPRA0054E: Error locating platform lock file : No such file");
    EXPECT_TRUE(records.has("ZYPRA0199E: CreateLockFile failed. errno=2\n"));
}

TEST_F(WorkspaceLock, NothingButAFileIsALockFile) {
    const std::string path = folder_.narrow(".rcp.lock");
    std::filesystem::create_directory(path);
    EXPECT_FATAL(take(), "ZYPRA0054E: Error locating platform lock file");
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FATAL(take(), "ZYPRA0054E: Error locating platform lock file");
}

TEST_F(WorkspaceLock, MainLauncherRecordsTheIdInBothFiles) {
    take();
    lock_->record(4711);
    EXPECT_EQ(lockFile(), "4711          ");
    EXPECT_EQ(folder_.read(".rcp.main"), "4711    ");
}

TEST_F(WorkspaceLock, FileThatWasRemovedWhileItWasWaitedForIsMadeAnew) {
    writeLock("");
    const int holder = open(folder_.narrow(".rcp.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    test::ChildProcess waiting([&] {
        close(holder);  // or the waiting process would hold the lock too
        take();
        return isMain() && isLocked() ? 0 : 1;
    });
    EXPECT_FALSE(waiting.endsWithin(std::chrono::milliseconds(200)));
    std::filesystem::remove(folder_.path() / ".rcp.lock");
    close(holder);
    EXPECT_EQ(waiting.wait(), 0);
    EXPECT_TRUE(folder_.has(".rcp.lock"));
}

TEST_F(WorkspaceLock, FileThatALinkLeadsToIsLocked) {
    for (const char* target : {"elsewhere", "made by the launch"}) {
        const std::string path = folder_.narrow(target);
        if (target == std::string("elsewhere")) {
            folder_.write(target, "");
        }
        std::filesystem::remove(folder_.path() / ".rcp.lock");
        std::filesystem::create_symlink(path, folder_.path() / ".rcp.lock");
        ChildProcess launcher([this] {
            take();
            lock_->record(4711);
            return isMain() && isLocked() ? 0 : 1;
        });
        ASSERT_TRUE(launcher.endsWithin(10s)) << target;
        EXPECT_EQ(launcher.wait(), 0) << target;
        EXPECT_EQ(folder_.read(target), "4711          ");
        EXPECT_TRUE(std::filesystem::is_symlink(folder_.path() / ".rcp.lock"));
    }
}

#ifdef __linux__
bool isWaitedFor(int descriptor) {
    struct stat status {};
    fstat(descriptor, &status);
    const std::string file = ":" + std::to_string(status.st_ino) + " ";
    std::ifstream table("/proc/locks");
    for (std::string line; std::getline(table, line);) {
        if (line.find("->") != std::string::npos && line.find(file) != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST_F(WorkspaceLock, FileThatIsAnotherOneAfterEachWaitIsGivenUp) {
    const auto lockNew = [this](const char* name) {
        const int file = open(folder_.narrow(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        return flock(file, LOCK_EX) == 0 ? file : -1;
    };
    writeLock("");
    const ChildProcess replacing([&] {
        for (int held = lockNew(".rcp.lock");;) {
            while (!isWaitedFor(held)) {
                usleep(1000);
            }
            const int next = lockNew("next");
            std::filesystem::rename(folder_.path() / "next", folder_.path() / ".rcp.lock");
            close(std::exchange(held, next));
        }
        return 0;
    });
    while (!isLocked()) {
        usleep(1000);
    }
    EXPECT_FATAL(take(),
                 "ZYPRA0053E: Error locking platform lock file\\. \\(.*/\\.rcp\\.lock is another "
                 "one each time\\.\\)\n");
}
#endif

TEST_F(WorkspaceLock, DaemonRecordsNothing) {
    const std::string content = std::to_string(platformId()) + "          ";
    writeLock(content);
    take();
    lock_->record(4711);
    EXPECT_EQ(lockFile(), content);
    EXPECT_FALSE(folder_.has(".rcp.main"));
}

TEST_F(WorkspaceLock, ShorterIdLeavesNoDigitOfALongerOne) {
    writeLock("98765432101    ");  // too large for a process id
    folder_.write(".rcp.main", "98765432101    ");
    take();
    lock_->record(7);
    EXPECT_EQ(lockFile(), "7              ");
    EXPECT_EQ(folder_.read(".rcp.main"), "7    ") << "this one is written from scratch";
}

TEST_F(WorkspaceLock, FailedForkIsRecordedAsItIs) {
    take();
    lock_->record(-1);
    EXPECT_EQ(lockFile(), "-1          ");
    EXPECT_EQ(folder_.read(".rcp.main"),
              std::to_string(std::numeric_limits<unsigned long>::max()) + "    ");
}

TEST_F(WorkspaceLock, MainIdFileThatCannotBeOpenedIsReportedAndTheLockStillWritten) {
    const test::Records records(folder_);
    std::filesystem::create_directory(folder_.path() / ".rcp.main");
    take();
    debug = true;  // information, for all that it tells of a failure
    lock_->record(4711);
    EXPECT_TRUE(records.has("ZYPRA00XXI: Unable to open rcp.main file\n"));
    EXPECT_EQ(lockFile(), "4711          ");
}

TEST_F(WorkspaceLock, MainIdThatCannotBeWrittenIsReported) {
    if (logIsOpen()) {
        GTEST_SKIP() << "records cannot be written either";
    }
    take();
    ChildProcess withoutRoom([this] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_FSIZE, &none);
        const std::size_t before = logQueue().size();
        debug = true;
        lock_->record(4711);
        const std::string records =
            "ZYPRA00XXI: Unable to write pid to rcp.main file\n"
            "ZYPRA0051E: Unable to write to platform lock file : File too large\n";
        return logQueue().substr(before) == records ? 0 : 1;
    });
    EXPECT_EQ(withoutRoom.wait(), 0);
}

TEST_F(WorkspaceLock, LockFileThatCannotBeWrittenIsReportedOnly) {
    const test::Records records(folder_);
    take();
    lock_->leaveToChild();
    lock_->record(4711);
    EXPECT_TRUE(
        records.has("ZYPRA0051E: Unable to write to platform lock file : Bad file descriptor\n"));
    EXPECT_FALSE(records.has("ZYPRA0052E"));
}

}  // namespace
}  // namespace rcp
