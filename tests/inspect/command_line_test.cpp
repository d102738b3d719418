#include "inspect/command_line.h"

#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

int runWith(std::vector<std::string> words) {
    words.insert(words.begin(), "rcpinspect");
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    return run(static_cast<int>(words.size()), argv.data());
}

TEST(InspectCommandLine, AnUnknownCommandIsWrongUse) {
    EXPECT_EQ(runWith({"nonsense"}), 64);
}

TEST(InspectCommandLine, AnInstallationWithoutLauncherIsWrongUse) {
    EXPECT_EQ(runWith({"explain", "--install", "/nowhere"}), 64);
}

TEST(InspectCommandLine, AFolderIsNoLauncher) {
    EXPECT_EQ(runWith({"check", "--launcher", "/usr"}), 64);
}

class InspectInItsInstallation : public test::StatusTest {
  protected:
    // Of a shell in the installation.
    [[nodiscard]] int statusOf(const std::string& command,
                               const std::string& before = "true") const {
        const std::string line = "cd '" + installation() + "' && " + before + " && exec '" +
                                 rcp::test::seen(INSPECT_PROGRAM) + "' " + command;
        test::Program program({"/bin/sh", "-c", line}, environment());
        (void)program.rest();
        return program.wait();
    }
};

TEST_F(InspectInItsInstallation, AnEmptyPathIsNotTheCurrentDirectory) {
    EXPECT_EQ(statusOf("check"), 0);
    EXPECT_EQ(statusOf("check --install ''"), 64);
    EXPECT_EQ(statusOf("check --launcher ''"), 64);
}

TEST_F(InspectInItsInstallation, WhatNobodyExpectsIsAFailure) {
    EXPECT_EQ(statusOf("check --env-file x", "mkdir gone && cd gone && rmdir ../gone"), 70);
}

TEST_F(InspectInItsInstallation, AFileThatMayNotGrowIsAFailureAndLeavesNothing) {
    const std::string folder = folder_.narrow("mine");
    std::filesystem::create_directory(folder);
    EXPECT_EQ(statusOf("report -o " + folder + "/x.zip", "ulimit -f 8"), 73);
    EXPECT_EQ(statusOf("check --format html " + folder + "/x.html", "ulimit -f 8"), 73);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(InspectInItsInstallation, AShortOptionIsNotBlamedForAnother) {
    test::Program program({"/bin/sh", "-c", R"(exec "$0" report -o x --show-secrets --redact 2>&1)",
                           rcp::test::seen(INSPECT_PROGRAM)},
                          environment());
    EXPECT_EQ(program.rest(), "rcpinspect: --redact excludes --show-secrets\n");
    EXPECT_EQ(program.wait(), 64);
}

TEST_F(InspectInItsInstallation, WrongUseIsRedactedToo) {
    for (const auto& [option, said] :
         {std::pair("--install", "no launcher at "), std::pair("--redact", "'")}) {
        test::Program program(
            {"/bin/sh", "-c", R"(exec "$0" explain --redact "$1" "$2" 2>&1)",
             rcp::test::seen(INSPECT_PROGRAM), option, folder_.narrow("home/token=abc7")},
            environment());
        const std::string output = program.rest();
        EXPECT_EQ(program.wait(), 64);
        EXPECT_EQ(output.find(std::string("rcpinspect: ") + said + "/home/<user>/token=<redacted:"),
                  0U)
            << output;
    }
}

TEST_F(InspectInItsInstallation, WhyALauncherCannotBeReachedIsTold) {
    const std::string loop = folder_.narrow("home/loop");
    std::filesystem::create_symlink(loop, loop);
    for (const char* option : {"--install", "--launcher"}) {
        test::Program program({"/bin/sh", "-c", R"(exec "$0" explain "$1" "$2" 2>&1)",
                               rcp::test::seen(INSPECT_PROGRAM), option, loop},
                              environment());
        EXPECT_EQ(program.rest().find("rcpinspect: no launcher at " + loop +
                                      ": Too many levels of symbolic links; give --install DIR"),
                  0U);
        EXPECT_EQ(program.wait(), 64);
    }
}

TEST_F(InspectInItsInstallation, OutputThatCannotBeWrittenIsAFailure) {
    for (const char* command : {"explain", "check --format sarif", "status", "diff --with ."}) {
        EXPECT_EQ(statusOf(command), 0) << command;
        EXPECT_EQ(statusOf(std::string(command) + " >/dev/full"), 73) << command;
    }
}

}  // namespace
}  // namespace rcp::inspect
