// A restarted launcher waits for the old platform to end. The clock is the test's own.
#include "launcher/core/platform_lock.h"
#include "platform/environment.h"
#include "tests/unit/core/lock_fixture.h"

#include <functional>

namespace rcp {
namespace {

class RestartWait : public test::LockTest {
  protected:
    RestartWait() : former_(setSleepFunction(&tick)) {
        seconds = 0;
        whileAsleep = nullptr;
    }
    ~RestartWait() override {
        setSleepFunction(former_);
        whileAsleep = nullptr;
    }

    static std::string idOf(pid_t process) { return std::to_string(process) + "          "; }
    static std::wstring text(long number) { return std::to_wstring(number); }
    void restart(const Arguments& more) const {
        Arguments arguments = {L"rcplauncher", L"-restart"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        locate(arguments);
    }
    void restartAfter(long oldId) const { restart({L"-rcp_old_pid", text(oldId)}); }

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
    SleepFunction former_;
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
    EXPECT_TRUE(isMainProcess());
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
    EXPECT_TRUE(isMainProcess());
    EXPECT_FALSE(records.has("ZYPRA0013E"));
}

TEST_F(RestartWait, PlatformThatNeverEndsIsGivenUpAfterTwentyWaits) {
    const test::Records records(folder_);
    writeLock(idOf(platformId()));
    restartAfter(platformId());
    EXPECT_EQ(seconds, 1 + 20);
    EXPECT_TRUE(records.has(kGivenUp)) << records.text();
    EXPECT_TRUE(lockFile().starts_with(std::string(14, ' '))) << lockFile();
    EXPECT_TRUE(isMainProcess());
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
    EXPECT_TRUE(isMainProcess());
}

TEST_F(RestartWait, AnotherPlatformsIdEndsTheWaitAtOnce) {
    writeLock(idOf(platformId()));
    restartAfter(getppid());
    EXPECT_EQ(seconds, 1);
    EXPECT_FALSE(isMainProcess());
    EXPECT_EQ(pid, platformId());
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
    EXPECT_FALSE(isMainProcess());
    EXPECT_EQ(pid, platformId());
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
    EXPECT_FALSE(isMainProcess());
    EXPECT_EQ(pid, platformId());
}

TEST_F(RestartWait, OldIdThatIsMissingLastOrNoNumberIsNobodys) {
    writeLock(idOf(platformId()));
    const std::vector<Arguments> cases = {{},
                                          {L"-rcp_old_pid"},
                                          {L"-rcp_old_pid", L"abc"},
                                          {L"-rcp_old_pid", text(platformId()) + L"x"}};
    for (const Arguments& more : cases) {
        seconds = 0;
        restart(more);
        EXPECT_EQ(seconds, 1);
        EXPECT_FALSE(isMainProcess());
    }
}

TEST_F(RestartWait, OrdinaryLaunchWaitsForNobody) {
    writeLock(idOf(platformId()));
    locate({L"rcplauncher", L"-rcp_old_pid", text(platformId())});
    EXPECT_EQ(seconds, 0);
    EXPECT_FALSE(isMainProcess());
}

TEST_F(RestartWait, EmptyAndUnreadableLockFilesEndIt) {
    restartAfter(platformId());
    EXPECT_EQ(seconds, 1);
    EXPECT_TRUE(isMainProcess());
    unlockLockFile();
    writeLock("letters");
    EXPECT_FATAL(restartAfter(platformId()), "ZYPRA0092E");
}

}  // namespace
}  // namespace rcp
