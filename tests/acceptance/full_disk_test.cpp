// A launch that runs out of disk: it ends by itself and leaves nothing unfinished, and with room
// the next one ends up where an undisturbed one would have.
#include "checks.h"
#include "hostile.h"
#include "user_area_scenarios.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#ifdef __linux__
#include <sys/mount.h>
#endif

namespace acceptance {

namespace {

#ifdef __linux__

// A small disk of its own in place of a folder, seen in the sandbox only.
class SmallDisk {
  public:
    explicit SmallDisk(std::string folder) : folder_(std::move(folder)) {
        obstacle_ = rcp::test::sandboxObstacle();
        isMounted_ = obstacle_.empty() && mount("tmpfs", folder_.c_str(), "tmpfs", 0, kRoom) == 0;
        if (!isMounted_ && obstacle_.empty()) {
            obstacle_ = std::strerror(errno);
        }
    }
    ~SmallDisk() {
        if (isMounted_) {
            (void)umount2(folder_.c_str(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    [[nodiscard]] const std::string& obstacle() const { return obstacle_; }

    /// From now on that many pages are left; an empty disk has one at least.
    void leavePages(int pages) const {
        const struct statvfs status = now();
        const auto kept = status.f_blocks - status.f_bfree + static_cast<unsigned long>(pages);
        remount("size=" + std::to_string(std::max(kept, 1UL) * status.f_bsize));
    }
    /// From now on that many new files and directories are left.
    void leaveFiles(int files) const {
        const struct statvfs status = now();
        remount("nr_inodes=" + std::to_string(status.f_files - status.f_ffree +
                                              static_cast<unsigned long>(files)));
    }
    void leaveRoom() const { remount(kRoom); }

  private:
    static constexpr char kRoom[] = "size=64m,nr_inodes=10000";

    [[nodiscard]] struct statvfs now() const {
        struct statvfs status {};
        EXPECT_EQ(statvfs(folder_.c_str(), &status), 0);
        return status;
    }
    void remount(const std::string& options) const {
        EXPECT_EQ(mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT, options.c_str()), 0)
            << options << ": " << std::strerror(errno);
    }

    std::string folder_;
    std::string obstacle_;
    bool isMounted_ = false;
};

#else

class SmallDisk {
  public:
    explicit SmallDisk(const std::string&) {}
    [[nodiscard]] std::string obstacle() const { return "this system has no tmpfs"; }
    void leavePages(int) const {}
    void leaveFiles(int) const {}
    void leaveRoom() const {}
};

#endif

class FullDisk : public testing::TestWithParam<int> {
  protected:
    FullDisk() {
        Installation undisturbed;
        scenario.prepare(undisturbed);
        undisturbed.start(scenario.disturbed);
        expected = launchNext(undisturbed, scenario);
    }

    void launchWithoutRoom(const Installation& velmo) {
        const Launch launch = velmo.launch(scenario.disturbed);
        EXPECT_TRUE(launch.status == 0 || launch.status == 255)
            << "status " << launch.status << ", signal " << launch.signal << "\n"
            << launch.output;
        failures += launch.status == 255 ? 1 : 0;
        expectNothingUnfinished(velmo);
    }

    // The limits of 0, 1, ... `most`, each in an installation of its own.
    void tryLimits(int most, void (SmallDisk::*limit)(int) const) {
        for (int left = 0; left <= most && !HasFailure(); ++left) {
            SCOPED_TRACE(left);
            Installation velmo;
            const SmallDisk disk(velmo.userHome);
            if (!disk.obstacle().empty()) {
                GTEST_SKIP() << "no small disk: " << disk.obstacle();
            }
            scenario.prepare(velmo);
            (disk.*limit)(left);
            launchWithoutRoom(velmo);
            disk.leaveRoom();
            expectSameOutcome(expected, launchNext(velmo, scenario), scenario);
        }
        EXPECT_GT(failures, 0);
    }

    const Scenario scenario = scenarios()[static_cast<std::size_t>(GetParam())];
    Outcome expected;
    int failures = 0;
};

TEST_P(FullDisk, LaunchWithoutPagesLeavesNothingUnfinished) {
    tryLimits(16, &SmallDisk::leavePages);
}

TEST_P(FullDisk, LaunchWithoutInodesLeavesNothingUnfinished) {
    tryLimits(24, &SmallDisk::leaveFiles);
}

TEST(FullDiskLog, LastRecordOfALogThatTakesNothingIsInTheTemporaryOne) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    const SmallDisk disk(velmo.userHome);
    if (!disk.obstacle().empty()) {
        GTEST_SKIP() << "no small disk: " << disk.obstacle();
    }
    velmo.write(velmo.userHome + "/letter", "dear");
    disk.leavePages(0);
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.log, "");
    EXPECT_TRUE(fileExists(velmo.workspace + "/logs/rcplauncher.log")) << "it could be opened";
    EXPECT_TRUE(hasLineStart(launch.temporaryLog, "ZYPRA0030I")) << launch.temporaryLog;
    EXPECT_EQ(launch.status, 255);
    EXPECT_TRUE(hasErrorRecord(launch.temporaryLog)) << launch.temporaryLog;
}

// Where no small disk can be had, this is what stands for one.
TEST_P(FullDisk, LaunchWithAFileSizeLimitLeavesNothingUnfinished) {
    for (int blocks : {0, 1, 2, 3, 4, 8, 64, 128, 256, 390, 1000}) {
        SCOPED_TRACE(blocks);
        Installation velmo;
        scenario.prepare(velmo);
        velmo.wrapper = {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f $0 && exec \"$@\"",
                         std::to_string(blocks)};
        launchWithoutRoom(velmo);
        velmo.wrapper.clear();
        expectSameOutcome(expected, launchNext(velmo, scenario), scenario);
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(In, FullDisk, testing::Range(0, static_cast<int>(scenarios().size())),
                         [](const auto& info) {
                             return scenarios()[static_cast<std::size_t>(info.param)].name;
                         });

}  // namespace

}  // namespace acceptance
