// The lock file of the workspace: what it may hold, and who holds its lock when.
#include "checks.h"
#include "tests/acceptance/paths.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

namespace acceptance {

namespace {

using namespace std::chrono_literals;

class PlatformLock : public testing::TestWithParam<const char*> {
  protected:
    PlatformLock() { velmo_.set("invoke.eclipse.dylib", GetParam()); }

    [[nodiscard]] std::string lockFile() const { return velmo_.workspace + "/.rcp.lock"; }
    // Whether a launch that finds this content becomes the main one.
    [[nodiscard]] bool becomesMain(const std::string& content) const {
        velmo_.write(lockFile(), content, 0600);
        StayingLaunch launch = velmo_.startStaying();
        launch.waitUntilRecorded();
        const std::string id = std::to_string(launch.pid()) + " ";
        EXPECT_TRUE(readFile(lockFile()).starts_with(id));
        const bool isMain = !launch.platform().has("-useDaemon");
        EXPECT_EQ(launch.finish().status, 0);
        return isMain;
    }
    [[nodiscard]] bool isLocked() const {
        const int file = open(lockFile().c_str(), O_RDWR | O_CLOEXEC);
        const bool isFree = flock(file, LOCK_EX | LOCK_NB) == 0;
        close(file);
        return !isFree;
    }

    Installation velmo_;
};

std::string nameOf(const testing::TestParamInfo<const char*>& info) {
    return *info.param == '1' ? "InProcess" : "Exec";
}

INSTANTIATE_TEST_SUITE_P(HandOff, PlatformLock, testing::Values("0", "1"), nameOf);

TEST_P(PlatformLock, FileWithoutALivePlatformsIdMakesTheMainLauncher) {
    const pid_t dead = velmo_.launch().pid;
    for (const std::string& content :
         {std::string(), std::string(14, ' '), std::to_string(dead) + "          ",
          std::string(4096, '\0'), std::string(14, ' ') + std::string(50, '\0'),
          std::to_string(getpid()) + "          ", std::string("99999999999999999999          "),
          std::string("4294967297"), std::string("-1"), std::string("-4711          "),
          std::string("0")}) {
        EXPECT_TRUE(becomesMain(content)) << "content: " << content;
    }
    EXPECT_EQ(kill(getpid(), 0), 0) << "nobody is ever signalled";
}

TEST_P(PlatformLock, FileWithLettersIsFatal) {
    NEEDS_PRIVATE_TMP();
    velmo_.write(lockFile(), "letters", 0600);
    const Launch launch = velmo_.launch();
    EXPECT_EQ(launch.status, 255);
    EXPECT_FALSE(launch.platform.has_value());
    const std::string& log = launch.temporaryLog;
    EXPECT_TRUE(hasLine(log, "ZYPRA0092E: Error reading platform lock file. (" + lockFile() + ")"))
        << log;
    const std::filesystem::directory_iterator logs(velmo_.tmp);
    EXPECT_EQ(std::distance(begin(logs), end(logs)), 1) << "the name of an untraced launch";
    EXPECT_EQ(readFile(lockFile()), "letters");
    EXPECT_FALSE(isLocked());
}

TEST_P(PlatformLock, FileMayBeALinkToOneElsewhere) {
    const std::string target = velmo_.path("local/lock");
    std::filesystem::create_directories(velmo_.path("local"));
    std::filesystem::create_directories(velmo_.workspace);
    std::filesystem::create_symlink(target, lockFile());
    StayingLaunch launch = velmo_.startStaying();
    launch.waitUntilRecorded();
    EXPECT_TRUE(readFile(target).starts_with(std::to_string(launch.pid()) + " "));
    EXPECT_TRUE(std::filesystem::is_symlink(lockFile()));
    EXPECT_EQ(velmo_.start().after("-useDaemon"), std::to_string(launch.pid()));
    EXPECT_EQ(launch.finish().status, 0);
}

TEST_P(PlatformLock, PlatformRunsWithTheLockFree) {
    StayingLaunch launch = velmo_.startStaying();
    launch.waitUntilRecorded();
    EXPECT_EQ(launch.platform().pid, launch.pid());
    const auto end = std::chrono::steady_clock::now() + Installation::kLimit;
    while (isLocked() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);  // the recording process is on its way out
    }
    EXPECT_FALSE(isLocked());
    for (const auto& [descriptor, target] : launch.platform().descriptors) {
        EXPECT_EQ(target.find(".rcp.lock"), std::string::npos) << descriptor;
        EXPECT_FALSE(target.starts_with("pipe:")) << descriptor;
    }
    EXPECT_EQ(launch.finish().status, 0);
}

#ifdef ACCEPTANCE_STANDIN_HOLD

TEST_P(PlatformLock, IsHeldUntilThePlatformIsThereAlthoughItsIdIsRecorded) {
    const std::string marker = velmo_.hold();
    StayingLaunch first = velmo_.startStaying();
    ASSERT_TRUE(isReached(marker));
    StayingLaunch second = velmo_.startStaying();
    std::this_thread::sleep_for(200ms);
    EXPECT_TRUE(isLocked());
    EXPECT_TRUE(readFile(lockFile()).starts_with(std::to_string(first.pid()) + " "));
    EXPECT_FALSE(first.reported().has_value());
    EXPECT_FALSE(second.reported().has_value());
    EXPECT_TRUE(second.running());
    std::filesystem::remove(marker);
    EXPECT_EQ(second.platform().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_FALSE(first.platform().has("-useDaemon"));
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_EQ(second.finish().status, 0);
}

#ifdef __linux__
TEST_P(PlatformLock, IsHeldByTheRecordingProcessAlone) {
    const std::string marker = velmo_.hold();
    StayingLaunch launch = velmo_.startStaying();
    ASSERT_TRUE(isReached(marker));
    int holders = 0;
    const std::string folder = "/proc/" + std::to_string(launch.pid()) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::error_code gone;
        holders += std::filesystem::read_symlink(entry, gone) == lockFile() ? 1 : 0;
    }
    EXPECT_EQ(holders, 0) << "the process that becomes the platform";
    EXPECT_TRUE(isLocked());
    std::filesystem::remove(marker);
    EXPECT_EQ(launch.finish().status, 0);
}
#endif

TEST_P(PlatformLock, LauncherThatDiesAtTheHandOffLetsOneOfTheWaitingOnesThrough) {
    const std::string marker = velmo_.hold();
    StayingLaunch first = velmo_.startStaying();
    ASSERT_TRUE(isReached(marker));
    velmo_.environment.erase("RCP_STANDIN_HOLD");
    std::vector<StayingLaunch> others;
    for (int i = 0; i < 5; ++i) {
        others.push_back(velmo_.startStaying());
    }
    std::this_thread::sleep_for(100ms);
    first.kill();
    std::string mainId;
    std::vector<std::string> daemonOf;
    for (StayingLaunch& launch : others) {
        const Report platform = launch.platform();
        if (platform.has("-useDaemon")) {
            daemonOf.push_back(platform.after("-useDaemon"));
        } else {
            mainId += std::to_string(platform.pid);
        }
    }
    EXPECT_EQ(daemonOf, std::vector<std::string>(4, mainId));
    EXPECT_FALSE(first.reported().has_value());
    for (StayingLaunch& launch : others) {
        EXPECT_EQ(launch.finish().status, 0);
    }
    EXPECT_EQ(first.finish().signal, SIGKILL);
}

#endif

}  // namespace

}  // namespace acceptance
