// A restarted launcher waits for the old platform to end. The clock is the test's own.
#include "base/system_calls.h"
#include "launcher/instance/platform_lock.h"
#include "tests/unit/instance/lock_fixture.h"

#include <functional>

namespace rcp {
namespace {

class RestartWait : public test::LockTest {
  protected:
    RestartWait() : clock_(test::sleepingLike(&tick)) {
        seconds = 0;
        whileAsleep = nullptr;
    }
    ~RestartWait() override { whileAsleep = nullptr; }

    static std::string idOf(pid_t process) { return std::to_string(process) + "          "; }
    void restartAfter(long oldId) { take(oldId); }

    static inline int seconds = 0;
    // Called with the number of the second that passes.
    static inline std::function<void(int)> whileAsleep;

  private:
    static unsigned tick(unsigned duration) {
        EXPECT_EQ(duration, 1U);
        ++seconds;
        if (whileAsleep) {
            whileAsleep(seconds);
        }
        return 0;
    }
    InstalledCalls clock_;
};

constexpr char kGivenUp[] =
    "ZYPRA0013E: Existing platform has not shutdown within allotted time. Invalidating the "
    "lockfile for new launch.\n";

TEST_F(RestartWait, PlatformThatIsGoneCostsOneSecond) {
    const test::Records records(folder_);
    const pid_t dead = test::deadProcessId();
    writeLock(idOf(dead));
    restartAfter(dead);
    EXPECT_EQ(seconds, 1);
    EXPECT_TRUE(isMain());
    EXPECT_FALSE(records.has("ZYPRA0013E"));
    EXPECT_EQ(lockFile(), idOf(dead)) << "nothing needs to be cleared";
}

TEST_F(RestartWait, EndsSoonAfterThePlatformDoes) {
    const test::Records records(folder_);
    test::ChildProcess platform([] {
        pause();
        return 0;
    });
    writeLock(idOf(platform.pid()));
    whileAsleep = [&](int second) {
        if (second == 7) {
            platform.end();
        }
    };
    restartAfter(platform.pid());
    EXPECT_EQ(seconds, 7);
    EXPECT_TRUE(isMain());
    EXPECT_FALSE(records.has("ZYPRA0013E"));
}

TEST_F(RestartWait, PlatformThatNeverEndsIsGivenUpAfterTwentyWaits) {
    const test::Records records(folder_);
    writeLock(idOf(platformId()));
    restartAfter(platformId());
    EXPECT_EQ(seconds, 1 + 20);
    EXPECT_TRUE(records.has(kGivenUp)) << records.text();
    EXPECT_TRUE(lockFile().starts_with(std::string(14, ' '))) << lockFile();
    EXPECT_TRUE(isMain());
    EXPECT_TRUE(isLocked());
}

TEST_F(RestartWait, PlatformThatEndsInTheLastSecondIsGivenUpAllTheSame) {
    const test::Records records(folder_);
    test::ChildProcess platform([] {
        pause();
        return 0;
    });
    writeLock(idOf(platform.pid()));
    whileAsleep = [&](int second) {
        if (second == 21) {
            platform.end();
        }
    };
    restartAfter(platform.pid());
    EXPECT_EQ(seconds, 21);
    EXPECT_TRUE(records.has(kGivenUp));
    EXPECT_TRUE(isMain());
}

TEST_F(RestartWait, AnotherPlatformsIdEndsTheWaitAtOnce) {
    writeLock(idOf(platformId()));
    restartAfter(getppid());
    EXPECT_EQ(seconds, 1);
    EXPECT_FALSE(isMain());
    EXPECT_EQ(platform(), platformId());
    EXPECT_EQ(lockFile(), idOf(platformId()));
}

TEST_F(RestartWait, AnotherPlatformThatIsRecordedMeanwhileEndsTheWait) {
    test::ChildProcess old([] {
        pause();
        return 0;
    });
    writeLock(idOf(old.pid()));
    whileAsleep = [&](int second) {
        if (second == 5) {
            writeLock(idOf(platformId()));
        }
    };
    restartAfter(old.pid());
    EXPECT_EQ(seconds, 5);
    EXPECT_FALSE(isMain());
    EXPECT_EQ(platform(), platformId());
}

TEST_F(RestartWait, OnlyTheOldPlatformsIdIsCleared) {
    const test::Records records(folder_);
    test::ChildProcess old([] {
        pause();
        return 0;
    });
    writeLock(idOf(old.pid()));
    whileAsleep = [&](int second) {
        if (second == 21) {
            writeLock(idOf(platformId()));  // another launcher was faster
        }
    };
    restartAfter(old.pid());
    EXPECT_TRUE(records.has(kGivenUp));
    EXPECT_EQ(lockFile(), idOf(platformId()));
    EXPECT_FALSE(isMain());
    EXPECT_EQ(platform(), platformId());
}

TEST_F(RestartWait, OldIdThatIsNobodysEndsItAtOnce) {
    writeLock(idOf(platformId()));
    restartAfter(0);
    EXPECT_EQ(seconds, 1);
    EXPECT_FALSE(isMain());
}

TEST_F(RestartWait, OrdinaryLaunchWaitsForNobody) {
    writeLock(idOf(platformId()));
    take();
    EXPECT_EQ(seconds, 0);
    EXPECT_FALSE(isMain());
}

// What is cleared is written over, not cut off.
TEST_F(RestartWait, ClearingWritesFourteenBlanks) {
    const std::string id = std::to_string(platformId());
    writeLock(id + std::string(17 - id.size(), 'x'));
    EXPECT_FATAL(restartAfter(platformId()), "ZYPRA0092E");
    EXPECT_EQ(lockFile(), std::string(14, ' ') + "xxx");
}

TEST_F(RestartWait, EndsWhenTheLockFileIsGone) {
    const test::Records records(folder_);
    writeLock(idOf(platformId()));
    whileAsleep = [this](int second) {
        if (second == 3) {
            std::filesystem::remove(folder_.path() / ".rcp.lock");
        }
    };
    restartAfter(platformId());
    EXPECT_EQ(seconds, 3);
    EXPECT_FALSE(records.has("ZYPRA0013E"));
    EXPECT_TRUE(isMain());
}

ssize_t noPwrite(int /*descriptor*/, const void* /*bytes*/, std::size_t /*size*/, off_t /*at*/) {
    errno = EBADF;
    return -1;
}

TEST_F(RestartWait, IdThatCannotBeClearedIsReported) {
    const test::Records records(folder_);
    writeLock(idOf(platformId()));
    SystemCalls calls = systemCalls;
    calls.pwrite = &noPwrite;
    const InstalledCalls installed(calls);
    restartAfter(platformId());
    EXPECT_TRUE(
        records.has("ZYPRA0052E: Unable to invalidate platform lock file : Bad file descriptor\n"));
    EXPECT_FALSE(isMain());
}

TEST(OldPlatform, IsNamedOnARestartAlone) {
    EXPECT_EQ(oldPlatform({L"p", L"-rcp_old_pid", L"12"}), std::nullopt);
    EXPECT_EQ(oldPlatform({L"p", L"-restart", L"-rcp_old_pid", L"12"}), 12);
}

TEST(OldPlatform, IsNobodyWhenItIsMissingLastOrNoNumber) {
    EXPECT_EQ(oldPlatform({L"p", L"-restart"}), 0);
    EXPECT_EQ(oldPlatform({L"p", L"-restart", L"-rcp_old_pid"}), 0);
    EXPECT_EQ(oldPlatform({L"p", L"-restart", L"-rcp_old_pid", L"abc"}), 0);
    EXPECT_EQ(oldPlatform({L"p", L"-restart", L"-rcp_old_pid", L"12x"}), 0);
}

TEST_F(RestartWait, EmptyAndUnreadableLockFilesEndIt) {
    restartAfter(platformId());
    EXPECT_EQ(seconds, 1);
    EXPECT_TRUE(isMain());
    lock_.reset();
    writeLock("letters");
    EXPECT_FATAL(restartAfter(platformId()), "ZYPRA0092E");
}

}  // namespace
}  // namespace rcp
