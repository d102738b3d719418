// What is said of a disk that is nearly full, against what a launch there then does.
#include "inspect/handoff/room.h"

#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

#ifdef __linux__
#include <sys/mount.h>
#endif

namespace rcp::inspect {
namespace {

TEST(Room, IsWhatTheDiskAndTheQuotaBothLeave) {
    const Quota quota{{1000, kNoLimit}, {400, 7}};
    EXPECT_EQ(roomWithin({5000, 9}, quota).bytes, 600U);
    EXPECT_EQ(roomWithin({5000, 9}, quota).files, 9U);
    EXPECT_EQ(roomWithin({500, 9}, quota).bytes, 500U);
    EXPECT_EQ(roomWithin({500, 9}, {{300, 10}, {400, 4}}).bytes, 0U) << "more than is allowed";
    EXPECT_EQ(roomWithin({500, 9}, {{300, 10}, {400, 4}}).files, 6U);
}

TEST(Room, IsLackedWhereMoreIsWrittenThanTheDiskHolds) {
    const rcp::test::TestFolder folder;
    const auto faults = [&](std::uintmax_t bytes) {
        return examineRoom({{{"folder", folder.narrow()}, {"bytes", bytes}, {"files", 1}}}).faults;
    };
    EXPECT_TRUE(faults(1).empty());
    ASSERT_EQ(faults(kNoLimit - 1).size(), 1U);
    EXPECT_STREQ(faults(kNoLimit - 1)[0].code, "RI609");
}

#ifdef __linux__

class SmallRoom : public test::StatusTest {
  protected:
    // Mounts a disk of that size as the home; what keeps it from it, or empty.
    std::string mountHome(const char* options) {
        home_ = folder_.narrow("home");
        std::filesystem::create_directories(home_);
        if (const std::string obstacle = rcp::test::sandboxObstacle(); !obstacle.empty()) {
            return obstacle;
        }
        isMounted_ = mount("none", home_.c_str(), "tmpfs", 0, options) == 0;
        return isMounted_ ? std::string() : strerror(errno);
    }
    void TearDown() override {
        if (isMounted_) {
            (void)umount2(home_.c_str(), MNT_DETACH);
        }
    }
    [[nodiscard]] std::string told(const std::string& command) const {
        test::Program program({test::seen(INSPECT_PROGRAM), command, "--install", installation()},
                              environment());
        const std::string text = program.rest();
        return text + "status " + std::to_string(program.wait()) + "\n";
    }
    void expectLack(const std::string& lack) const {
        for (const char* command : {"check", "explain", "doctor"}) {
            EXPECT_NE(told(command).find(lack), std::string::npos) << command << told(command);
        }
        EXPECT_EQ(launch(), 255);
    }

  private:
    std::string home_;
    bool isMounted_ = false;
};

TEST_F(SmallRoom, ForTooFewFilesIsFoundAndEndsTheLaunch) {
    if (const std::string obstacle = mountHome("size=8m,nr_inodes=4"); !obstacle.empty()) {
        GTEST_SKIP() << obstacle;
    }
    expectLack(" has room for 3 files of user ");
}

TEST_F(SmallRoom, ForTooFewBytesIsFoundAndEndsTheLaunch) {
    if (const std::string obstacle = mountHome("size=4k,nr_inodes=1000"); !obstacle.empty()) {
        GTEST_SKIP() << obstacle;
    }
    expectLack(" bytes of user ");
}

// A file system gives out blocks: a dozen small files take more than their bytes.
TEST_F(SmallRoom, ForTooFewBlocksIsFoundAndEndsTheLaunch) {
    if (const std::string obstacle = mountHome("size=20k,nr_inodes=1000"); !obstacle.empty()) {
        GTEST_SKIP() << obstacle;
    }
    expectLack("/home has room for 20480 bytes of user ");
}

TEST_F(SmallRoom, ThatIsEnoughIsNotComplainedOf) {
    if (const std::string obstacle = mountHome("size=8m,nr_inodes=1000"); !obstacle.empty()) {
        GTEST_SKIP() << obstacle;
    }
    EXPECT_EQ(told("check"), installation() + ": nothing found\nstatus 0\n");
    const std::string doctor = told("doctor");
    EXPECT_NE(doctor.find("✓ space and permissions "), std::string::npos) << doctor;
    EXPECT_TRUE(doctor.ends_with("\nstatus 0\n")) << doctor;
    EXPECT_EQ(launch(), 0);
}

#endif

class ExplainedUser : public test::StatusTest {};

TEST_F(ExplainedUser, IsNamedAndRootIsWarned) {
    test::Program program({test::seen(INSPECT_PROGRAM), "explain", "--install", installation()},
                          environment());
    const std::string text = program.rest();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_NE(text.find("\n  user           "), std::string::npos) << text;
    EXPECT_EQ(text.find("others may get other answers") != std::string::npos, geteuid() == 0);
}

}  // namespace
}  // namespace rcp::inspect
