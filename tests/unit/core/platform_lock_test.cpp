#include "launcher/core/platform_lock.h"

#include "tests/unit/core/lock_fixture.h"

#include <sys/resource.h>
#include <sys/time.h>

#include <fstream>
#include <limits>
#include <utility>

namespace rcp {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;

class PlatformLock : public test::LockTest {
  protected:
    // Whether a launcher that finds this content in the lock file becomes the main one.
    bool becomesMain(const std::string& content) {
        setMainProcess(false);
        writeLock(content);
        locate();
        closeLockFile();
        return isMainProcess();
    }
};

TEST_F(PlatformLock, FilesLieInTheWorkspace) {
    locate();
    EXPECT_EQ(getLockFilePath(), folder_.wide() + L"/.rcp.lock");
    EXPECT_EQ(getPipeFilePath(), folder_.wide() + L"/.pipe");
    EXPECT_EQ(getMainPidFilePath(), folder_.wide() + L"/.rcp.main");
}

TEST_F(PlatformLock, FirstLauncherMakesTheFileForItsUserAloneAndIsTheMainOne) {
    const test::Records records(folder_);
    locate();
    EXPECT_TRUE(isMainProcess());
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

TEST_F(PlatformLock, TracingIsForcedAndThenAsBefore) {
    for (const bool before : {false, true}) {
        debug = before;
        const test::Records records(folder_);
        locate();
        EXPECT_TRUE(records.has("ZYPRA0304I"));
        EXPECT_EQ(debug, before);
    }
}

TEST_F(PlatformLock, ContentWithoutALivePlatformMakesTheMainLauncher) {
    const std::string dead = std::to_string(test::deadProcessId()) + "          ";
    for (const std::string& content :
         {std::string(), std::string(14, ' '), std::string("\n"), dead, std::string("0"),
          std::string("-1"), std::to_string(-getpid()), std::string("99999999999999999999999"),
          std::to_string((1L << 32) + getpid())}) {
        EXPECT_TRUE(becomesMain(content)) << content;
    }
}

TEST_F(PlatformLock, UnrelatedLiveProcessIsNoPlatform) {
    const ChildProcess other("/bin/sleep", "editor", "1000");
    for (int round = 0; round < 400 && !becomesMain(std::to_string(other.pid())); ++round) {
        usleep(5000);  // until it has become the other program
    }
    EXPECT_TRUE(isMainProcess());
    EXPECT_TRUE(becomesMain("1          "));
}

TEST_F(PlatformLock, LivePlatformMakesADaemonThatKnowsItsId) {
    const test::Records records(folder_);
    EXPECT_FALSE(becomesMain(std::to_string(platformId()) + "          "));
    EXPECT_EQ(pid, platformId());
    EXPECT_TRUE(records.has("ZYPRA0305I: We are daemon process\n"));
    EXPECT_FALSE(records.has("ZYPRA0304I"));
    EXPECT_FALSE(records.has("ZYPRA0091E"));
}

TEST_F(PlatformLock, LettersInTheFileAreFatal) {
    locate();
    unlockLockFile();
    for (const char* content : {"letters", "  x12"}) {
        writeLock(content);
        EXPECT_FATAL(isMainProcessRunning(kMarker),
                     "ZYPRA0092E: Error reading platform lock file\\. \\(" +
                         folder_.narrow(".rcp.lock") + "\\)\n");
        EXPECT_FATAL(locate(), "ZYPRA0092E");
    }
}

TEST_F(PlatformLock, FileThatIsGoneMeansNoPlatform) {
    writeLock(std::to_string(platformId()));
    locate();
    ASSERT_TRUE(isMainProcessRunning(kMarker));
    std::filesystem::remove(folder_.path() / ".rcp.lock");
    EXPECT_FALSE(isMainProcessRunning(kMarker));
}

TEST_F(PlatformLock, MainLauncherDeletesTheSidFileAndADaemonKeepsIt) {
    folder_.write(".sid", "7");
    EXPECT_FALSE(becomesMain(std::to_string(platformId())));
    EXPECT_TRUE(folder_.has(".sid"));
    EXPECT_TRUE(becomesMain(""));
    EXPECT_FALSE(folder_.has(".sid"));
    EXPECT_TRUE(becomesMain("")) << "it need not be there";
}

TEST_F(PlatformLock, LockIsHeldUntilItIsReleased) {
    const test::Records records(folder_);
    locate();
    EXPECT_TRUE(isLocked());
    const ForcedTracing forced;
    unlockLockFile();
    EXPECT_FALSE(isLocked());
    EXPECT_TRUE(records.has("ZYPRA0306I: lock file released @ "));
}

TEST_F(PlatformLock, OpeningTheFileElsewhereInTheProcessKeepsTheLock) {
    locate();
    EXPECT_EQ(lockFile(), "");
    EXPECT_TRUE(isLocked()) << "the file was opened and closed in between";
}

TEST_F(PlatformLock, DescriptorIsNotPassedToOtherPrograms) {
    locate();
    ASSERT_GE(descriptor(), 0);
    EXPECT_NE(fcntl(descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(PlatformLock, SecondLauncherWaitsForTheFirst) {
    locate();
    ChildProcess second([this] {
        setMainProcess(false);
        locate();
        return isMainProcess() ? 1 : 2;
    });
    EXPECT_FALSE(second.endsWithin(100ms));
    populateLockFile(getpid());
    unlockLockFile();
    EXPECT_EQ(second.wait(), 2);
}

TEST_F(PlatformLock, LauncherThatDiesReleasesTheLock) {
    ChildProcess first([this] {
        locate();
        pause();
        return 0;
    });
    while (!folder_.has(".rcp.lock") || !isLocked()) {
        ASSERT_FALSE(first.endsWithin(1ms));
    }
    ChildProcess second([this] {
        locate();
        return isMainProcess() ? 1 : 2;
    });
    EXPECT_FALSE(second.endsWithin(50ms));
    first.end();
    EXPECT_EQ(second.wait(), 1);
}

TEST_F(PlatformLock, SignalsDoNotEndTheWait) {
    locate();
    ChildProcess second([this] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);  // interrupts system calls
        const itimerval often = {{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
        locate();
        return 3;
    });
    EXPECT_FALSE(second.endsWithin(100ms));
    unlockLockFile();
    EXPECT_EQ(second.wait(), 3);
}

TEST_F(PlatformLock, ChildAloneHoldsTheLockOnceTheParentGaveItUp) {
    locate();
    ChildProcess child([] {
        pause();
        return 0;
    });
    closeLockFile();
    EXPECT_EQ(descriptor(), -1);
    EXPECT_TRUE(isLocked());
    unlockLockFile();
    EXPECT_TRUE(isLocked()) << "there is nothing left that the parent could release";
    child.end();
    EXPECT_FALSE(isLocked());
}

TEST_F(PlatformLock, LockThatFailsIsFatal) {
    locate();
    EXPECT_FATAL(
        {
            close(descriptor());
            lockLockFile(folder_.wide(".sid"), kMarker);
        },
        "ZYPRA0053E: Error locking platform lock file\\.  : Bad file descriptor");
    EXPECT_FATAL(
        {
            close(descriptor());
            unlockLockFile();
        },
        "ZYPRA0070E: Error unlocking platform lock file\\.  : Bad file descriptor");
}

TEST_F(PlatformLock, FileThatCannotBeMadeIsFatal) {
    std::filesystem::create_directory(folder_.path() / "workspace");
    (void)locateLockFile({L"rcplauncher"}, folder_.wide("workspace"), kMarker);
    std::filesystem::remove_all(folder_.path() / "workspace");
    const test::Records records(folder_);
    EXPECT_FATAL(createAndOpenLockFile(),
                 "^ZYPRA0054E: Error locating platform lock file : No such file");
    EXPECT_TRUE(records.has("ZYPRA0199E: CreateLockFile failed. errno=2\n"));
}

TEST_F(PlatformLock, NothingButAFileIsALockFile) {
    locate();
    const std::string path = folder_.narrow(".rcp.lock");
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_FATAL(createAndOpenLockFile(), "ZYPRA0054E: Error locating platform lock file");
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FATAL(createAndOpenLockFile(), "ZYPRA0054E: Error locating platform lock file");
}

TEST_F(PlatformLock, MainLauncherRecordsTheIdInBothFiles) {
    locate();
    populateLockFile(4711);
    EXPECT_EQ(lockFile(), "4711          ");
    EXPECT_EQ(folder_.read(".rcp.main"), "4711    ");
}

TEST_F(PlatformLock, FileThatWasRemovedWhileItWasWaitedForIsMadeAnew) {
    writeLock("");
    const int holder = open(folder_.narrow(".rcp.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    test::ChildProcess waiting([&] {
        close(holder);  // or the waiting process would hold the lock too
        locate();
        return isMainProcess() && isLocked() ? 0 : 1;
    });
    EXPECT_FALSE(waiting.endsWithin(std::chrono::milliseconds(200)));
    std::filesystem::remove(folder_.path() / ".rcp.lock");
    close(holder);
    EXPECT_EQ(waiting.wait(), 0);
    EXPECT_TRUE(folder_.has(".rcp.lock"));
}

TEST_F(PlatformLock, FileThatALinkLeadsToIsLocked) {
    for (const char* target : {"elsewhere", "made by the launch"}) {
        const std::string path = folder_.narrow(target);
        if (target == std::string("elsewhere")) {
            folder_.write(target, "");
        }
        std::filesystem::remove(folder_.path() / ".rcp.lock");
        std::filesystem::create_symlink(path, folder_.path() / ".rcp.lock");
        ChildProcess launcher([this] {
            locate();
            populateLockFile(4711);
            return isMainProcess() && isLocked() ? 0 : 1;
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

TEST_F(PlatformLock, FileThatIsAnotherOneAfterEachWaitIsGivenUp) {
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
    EXPECT_FATAL(locate(),
                 "ZYPRA0053E: Error locking platform lock file\\. \\(.*/\\.rcp\\.lock is another "
                 "one each time\\.\\)\n");
}
#endif

TEST_F(PlatformLock, DaemonRecordsNothing) {
    const std::string content = std::to_string(platformId()) + "          ";
    writeLock(content);
    locate();
    populateLockFile(4711);
    EXPECT_EQ(lockFile(), content);
    EXPECT_FALSE(folder_.has(".rcp.main"));
}

TEST_F(PlatformLock, ShorterIdLeavesNoDigitOfALongerOne) {
    writeLock("98765432101    ");  // too large for a process id
    folder_.write(".rcp.main", "98765432101    ");
    locate();
    populateLockFile(7);
    EXPECT_EQ(lockFile(), "7              ");
    EXPECT_EQ(folder_.read(".rcp.main"), "7    ") << "this one is written from scratch";
}

TEST_F(PlatformLock, FailedForkIsRecordedAsItIs) {
    locate();
    populateLockFile(-1);
    EXPECT_EQ(lockFile(), "-1          ");
    EXPECT_EQ(folder_.read(".rcp.main"),
              std::to_string(std::numeric_limits<unsigned long>::max()) + "    ");
}

TEST_F(PlatformLock, MainIdFileThatCannotBeOpenedIsReportedAndTheLockStillWritten) {
    const test::Records records(folder_);
    std::filesystem::create_directory(folder_.path() / ".rcp.main");
    locate();
    debug = true;  // information, for all that it tells of a failure
    populateLockFile(4711);
    EXPECT_TRUE(records.has("ZYPRA00XXI: Unable to open rcp.main file\n"));
    EXPECT_EQ(lockFile(), "4711          ");
}

TEST_F(PlatformLock, MainIdThatCannotBeWrittenIsReported) {
    if (logIsOpen()) {
        GTEST_SKIP() << "records cannot be written either";
    }
    locate();
    ChildProcess withoutRoom([] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_FSIZE, &none);
        const std::size_t before = logQueue().size();
        debug = true;
        populateLockFile(4711);
        const std::string records =
            "ZYPRA00XXI: Unable to write pid to rcp.main file\n"
            "ZYPRA0051E: Unable to write to platform lock file : File too large\n";
        return logQueue().substr(before) == records ? 0 : 1;
    });
    EXPECT_EQ(withoutRoom.wait(), 0);
}

TEST_F(PlatformLock, LockFileThatCannotBeWrittenIsReportedOnly) {
    const test::Records records(folder_);
    locate();
    closeLockFile();
    populateLockFile(4711);
    EXPECT_TRUE(
        records.has("ZYPRA0051E: Unable to write to platform lock file : Bad file descriptor\n"));
    EXPECT_FALSE(records.has("ZYPRA0052E"));
    invalidateLockFile();
    EXPECT_TRUE(
        records.has("ZYPRA0052E: Unable to invalidate platform lock file : Bad file descriptor\n"));
}

TEST_F(PlatformLock, InvalidatingWritesFourteenBlanks) {
    writeLock("99999999999999999");
    locate();
    invalidateLockFile();
    EXPECT_EQ(lockFile(), std::string(14, ' ') + "999");
}

TEST_F(PlatformLock, NoShutdownIsDirty) {
    EXPECT_FALSE(isDirtyShutdown());
}

class PipeName : public test::LockTest {
  protected:
    // "(none)" when no name was read.
    std::wstring read() const {
        locate();
        std::wstring name = L"as before";
        return getPipeName(name) ? name : name == L"as before" ? L"(none)" : L"(changed)";
    }
};

TEST_F(PipeName, NoFileGivesNone) {
    EXPECT_EQ(read(), L"(none)");
}

TEST_F(PipeName, IsTheFirstLineWithoutLeadingBlanks) {
    folder_.write(".pipe", "  /tmp/pipe of ann  \nsecond\n");
    EXPECT_EQ(read(), L"/tmp/pipe of ann  ");
    folder_.write(".pipe", "\n\n\tB\u00FCro");
    EXPECT_EQ(read(), L"B\u00FCro");
}

TEST_F(PipeName, FileWithoutANameGivesNone) {
    for (const char* content : {"", "\n", "  \n \t\n"}) {
        folder_.write(".pipe", content);
        EXPECT_EQ(read(), L"(none)") << content;
    }
}

TEST_F(PipeName, IsCutAtItsLongest) {
    folder_.write(".pipe", std::string(2024, 'p') + "more\n");
    EXPECT_EQ(read(), std::wstring(2024, L'p'));
}

}  // namespace
}  // namespace rcp
