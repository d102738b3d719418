// How a fatal error ends the launch, and what is left of it when there is no memory at all.
#include "diagnostics/log_file.h"
#include "diagnostics/svc_debug.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace rcp {
namespace {

// What a process leaves in the temporary log; it must end with `status`.
std::string temporaryLogOf(void (*work)(), int status) {
    (void)std::remove("/tmp/rcplauncher.log");
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int ended = -1;
    EXPECT_EQ(waitpid(child, &ended, 0), child);
    EXPECT_TRUE(WIFEXITED(ended));
    EXPECT_EQ(WEXITSTATUS(ended), status);
    std::ifstream log("/tmp/rcplauncher.log");
    std::string text{std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
    (void)std::remove("/tmp/rcplauncher.log");
    return text;
}

TEST(ProcessEnd, LastWordsNeedNoOpenLog) {
    if (!test::hasPrivateTmp()) {
        GTEST_SKIP() << "no /tmp of its own";
    }
    EXPECT_EQ(temporaryLogOf([] { writeLastWords("last words\n"); }, 0), "last words\n");
}

TEST(ProcessEnd, WhatHasNoLogIsInTheTemporaryOneWhenTheStatusSaysSo) {
    if (!test::hasPrivateTmp()) {
        GTEST_SKIP() << "no /tmp of its own";
    }
    const auto fail = [] {
        _exit(test::statusOf([] { endWithRecord(because(ENOENT), "why", {}); }));
    };
    EXPECT_THAT(temporaryLogOf(fail, 255),
                testing::EndsWith("why : No such file or directory\n\n"));
    const auto end = [] { _exit(test::statusOf([] { endLaunch(0); })); };
    EXPECT_EQ(temporaryLogOf(end, 0), "");
}

}  // namespace
}  // namespace rcp
