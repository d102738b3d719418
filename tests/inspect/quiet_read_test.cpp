#include "inspect/quiet_read.h"

#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace rcp::inspect::test {
namespace {

// A file last read before it was last written: a plain read of it moves its time of access.
void makeAccessOld(const std::string& path) {
    const timespec times[] = {{1'000'000'000, 0}, {0, UTIME_OMIT}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

time_t accessTime(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_atime;
}

class QuietRead : public StatusTest {};

TEST_F(QuietRead, GivesTheFileOrItsBeginning) {
    folder_.write("file", "0123456789");
    EXPECT_EQ(readQuietly(folder_.narrow("file")), "0123456789");
    EXPECT_EQ(readQuietly(folder_.narrow("file"), 4), "0123");
    EXPECT_EQ(readQuietly(folder_.narrow("file"), 100), "0123456789");
}

TEST_F(QuietRead, GivesTheEndOfTheFile) {
    folder_.write("file", "0123456789");
    EXPECT_EQ(readEndQuietly(folder_.narrow("file"), 4), "6789");
    EXPECT_EQ(readEndQuietly(folder_.narrow("file"), 10), "0123456789");
    EXPECT_EQ(readEndQuietly(folder_.narrow("file"), 100), "0123456789");
    EXPECT_EQ(readEndQuietly(folder_.narrow("missing"), 4), "");
    EXPECT_EQ(readEndQuietly(folder_.narrow(), 4), "");
}

TEST_F(QuietRead, WhatIsNoFileIsEmptyAtOnce) {
    EXPECT_EQ(readQuietly(folder_.narrow("missing")), "");
    EXPECT_EQ(readQuietly(folder_.narrow()), "");
    const std::string pipe = folder_.narrow("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readQuietly(pipe), "");
}

TEST_F(QuietRead, EveryCommandLeavesTheTimesOfAccess) {
    ASSERT_EQ(launch(), 0);
    const Words files = {installation() + "/rcp/rcplauncher.properties",
                         folder_.narrow(area(".config/rcpinstall.properties")),
                         folder_.narrow(area(".rcp.lock")), folder_.narrow(area(".rcp.main")),
                         folder_.narrow(area("logs/rcplauncher.log"))};
    for (const Words& command :
         {Words{"explain"}, Words{"check"}, Words{"status"}, Words{"diff", "--since-last"}}) {
        for (const std::string& file : files) {
            makeAccessOld(file);
        }
        Words all{seen(INSPECT_PROGRAM)};
        all.insert(all.end(), command.begin(), command.end());
        all.insert(all.end(), {"--install", installation()});
        Program program(all, environment());
        EXPECT_NE(program.rest(), "");
        EXPECT_EQ(program.wait(), 0) << command.front();
        for (const std::string& file : files) {
            EXPECT_EQ(accessTime(file), 1'000'000'000) << command.front() << ": " << file;
        }
    }
}

}  // namespace
}  // namespace rcp::inspect::test
