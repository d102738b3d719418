// A restarted launcher, which waits for the old platform to end.
#include "checks.h"

#include <filesystem>
#include <thread>

namespace acceptance {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr char kGivenUp[] =
    "ZYPRA0013E: Existing platform has not shutdown within allotted time. Invalidating the "
    "lockfile for new launch.";

Texts restartOf(pid_t old) {
    return {"-restart", "-rcp_old_pid", std::to_string(old)};
}

void expectWait(const char* inProcess) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", inProcess);
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    const std::string marker = *inProcess == '1' ? velmo.hold() : "";
    StayingLaunch second = velmo.startStaying(restartOf(first.pid()));
    if (marker.empty()) {
        std::this_thread::sleep_for(1500ms);
    } else {
        ASSERT_TRUE(isReached(marker));
    }
    EXPECT_TRUE(second.running());
    EXPECT_FALSE(second.reported().has_value());
    EXPECT_EQ(first.finish().status, 0);
    std::filesystem::remove(marker);
    EXPECT_FALSE(second.platform().has("-useDaemon"));
    second.waitUntilRecorded();
    const Launch launch = second.finish();
    EXPECT_EQ(launch.status, 0);
    EXPECT_FALSE(hasLine(launch.log, kGivenUp));
}

TEST(Restart, WaitsForTheOldPlatformWithExec) {
    expectWait("0");
}

TEST(Restart, WaitsForTheOldPlatformInProcess) {
    expectWait("1");
}

TEST(Restart, WaitsOneSecondWhenTheOldPlatformIsGone) {
    Installation velmo;
    const pid_t old = velmo.launch().pid;
    const auto begin = Clock::now();
    const Launch launch = velmo.launch(restartOf(old));
    EXPECT_GE(Clock::now() - begin, 1s);
    ASSERT_TRUE(launch.platform.has_value());
    EXPECT_FALSE(launch.platform->has("-useDaemon"));
    EXPECT_FALSE(hasLine(launch.log, kGivenUp));
}

TEST(Restart, DoesNotWaitForAnotherPlatformThanTheOldOne) {
    Installation velmo;
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    const std::string id = std::to_string(first.pid());
    for (const Texts& arguments :
         {restartOf(1), Texts{"-restart"}, Texts{"-restart", "-rcp_old_pid"},
          Texts{"-restart", "-rcp_old_pid", id + "x"}}) {
        EXPECT_EQ(velmo.start(arguments).after("-useDaemon"), id);
    }
    EXPECT_EQ(first.finish().status, 0);
}

TEST(RealClock, RestartGivesTheOldPlatformUpAfterTwentySeconds) {
    Installation velmo;
    StayingLaunch first = velmo.startStaying();
    first.waitUntilRecorded();
    const auto begin = Clock::now();
    StayingLaunch second = velmo.startStaying(restartOf(first.pid()));
    EXPECT_FALSE(second.platform().has("-useDaemon"));
    EXPECT_GE(Clock::now() - begin, 20s);
    EXPECT_TRUE(first.running());
    second.waitUntilRecorded();
    const Launch launch = second.finish();
    EXPECT_EQ(launch.status, 0);
    EXPECT_TRUE(hasLine(launch.log, kGivenUp)) << launch.log;
    EXPECT_EQ(first.finish().status, 0);
}

}  // namespace

}  // namespace acceptance
