// "/tmp" belongs to everybody: what somebody else has put there under the launcher's names is
// neither used nor touched, nor what it leads to.
#include "checks.h"
#include "hostile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

class HostileTmp : public testing::Test {
  protected:
    void SetUp() override {
        NEEDS_PRIVATE_TMP();
        NEEDS_ROOT();
        // A file of the user's own, which a planted link would lead to.
        victim = velmo.write("home/victim", "precious\n");
        velmo.place(velmo.rcp + "/rcplauncher", velmo.path("folder with blank/library.so"));
        velmo.giveTo(kUser);
        ASSERT_EQ(chown(velmo.tmp.c_str(), 0, 0), 0);
    }

    void TearDown() override {
        if (!victim.empty()) {
            EXPECT_EQ(readFile(victim), "precious\n");
            struct stat status {};
            EXPECT_EQ(stat(victim.c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 0777U, 0644U);
        }
    }

    // Makes an entry of the stranger's.
    void plantLink(const std::string& name, const std::string& target) const {
        files::create_symlink(target, velmo.tmp + "/" + name);
        ASSERT_EQ(lchown((velmo.tmp + "/" + name).c_str(), kStranger, kStranger), 0);
    }
    void plantFile(const std::string& name, const std::string& text) const {
        const std::string path = velmo.write("tmp/" + name, text, 0666);
        ASSERT_EQ(chown(path.c_str(), kStranger, kStranger), 0);
    }
    [[nodiscard]] bool isStrangers(const std::string& name) const {
        struct stat status {};
        return lstat((velmo.tmp + "/" + name).c_str(), &status) == 0 && status.st_uid == kStranger;
    }

    Installation velmo;
    std::string victim;
};

constexpr const char* kLog = "rcplauncher.log";
constexpr const char* kLink = "ovr.rcp.ann.abc123.library.so";

// A launch that ends before it has a log of its own.
Launch earlyFailure(Installation& velmo) {
    velmo.unset("rcp.base.location");
    return velmo.launch();
}

TEST_F(HostileTmp, LinkUnderTheTemporaryLogsNameIsNotFollowed) {
    plantLink(kLog, victim);
    EXPECT_EQ(earlyFailure(velmo).status, 255);
    EXPECT_TRUE(isStrangers(kLog));
}

TEST_F(HostileTmp, LinkToNothingUnderTheTemporaryLogsNameMakesNoFile) {
    plantLink(kLog, velmo.userHome + "/made");
    EXPECT_EQ(earlyFailure(velmo).status, 255);
    EXPECT_FALSE(fileExists(velmo.userHome + "/made"));
}

TEST_F(HostileTmp, FileOfSomebodyElseIsNotWrittenAsTheTemporaryLog) {
    plantFile(kLog, "theirs\n");
    EXPECT_EQ(earlyFailure(velmo).status, 255);
    EXPECT_EQ(readFile(velmo.tmp + "/" + kLog), "theirs\n");
}

TEST_F(HostileTmp, SecondNameOfAUsersFileIsNotWrittenAsTheTemporaryLog) {
    files::create_hard_link(victim, velmo.tmp + "/" + kLog);
    EXPECT_EQ(earlyFailure(velmo).status, 255);
}

TEST_F(HostileTmp, PipeOrFolderUnderTheTemporaryLogsNameDoesNotMakeTheLaunchWait) {
    const std::string path = velmo.tmp + "/" + kLog;
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_EQ(chmod(path.c_str(), 0666), 0);
    EXPECT_EQ(earlyFailure(velmo).status, 255);
    files::remove(path);
    files::create_directory(path);
    EXPECT_EQ(earlyFailure(velmo).status, 255);
    EXPECT_TRUE(files::is_directory(path));
}

TEST_F(HostileTmp, GoodLaunchLeavesForeignTemporaryLogsAlone) {
    plantLink(kLog, victim);
    velmo.start();
    EXPECT_TRUE(isStrangers(kLog));
}

TEST_F(HostileTmp, PreloadLinkOfSomebodyElseIsNotUsed) {
    velmo.set("library.preload", velmo.path("folder with blank/library.so"));
    const std::string evil = velmo.write("evil.so", "");
    plantLink(kLink, evil);
    const Launch launch = velmo.launch();
    ASSERT_TRUE(launch.platform.has_value()) << launch.log;
    EXPECT_EQ(launch.platform->variable("LD_PRELOAD"), "(unset)");
    EXPECT_TRUE(hasLineStart(launch.log, "Error: setPreload: /tmp/" + std::string(kLink)))
        << launch.log;
    EXPECT_TRUE(isStrangers(kLink));
}

TEST_F(HostileTmp, PreloadLinkOfSomebodyElseIsNotUsedEvenWhenItLeadsToTheRightLibrary) {
    const std::string library = velmo.path("folder with blank/library.so");
    velmo.set("library.preload", library);
    plantLink(kLink, library);
    EXPECT_EQ(velmo.start().variable("LD_PRELOAD"), "(unset)");
}

TEST_F(HostileTmp, FolderUnderThePreloadLinksNameIsNotUsed) {
    velmo.set("library.preload", velmo.path("folder with blank/library.so"));
    files::create_directory(velmo.tmp + "/" + kLink);
    ASSERT_EQ(chown((velmo.tmp + "/" + kLink).c_str(), kStranger, kStranger), 0);
    EXPECT_EQ(velmo.start().variable("LD_PRELOAD"), "(unset)");
    EXPECT_TRUE(isStrangers(kLink));
}

TEST_F(HostileTmp, OwnPreloadLinkIsMade) {
    const std::string library = velmo.path("folder with blank/library.so");
    velmo.set("library.preload", library);
    EXPECT_EQ(velmo.start().variable("LD_PRELOAD"), "/tmp/" + std::string(kLink));
    EXPECT_EQ(files::read_symlink(velmo.tmp + "/" + kLink), library);
}

}  // namespace

}  // namespace acceptance
