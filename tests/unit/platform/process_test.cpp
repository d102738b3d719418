#include "platform/process.h"

#include "tests/unit/fixture.h"
#include "tests/unit/launch_pieces.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace rcp {
namespace {

using test::ScopedVariable;

class Process : public test::LauncherTest {
  protected:
    static ProgramResult run(const std::vector<std::string>& arguments) {
        const std::optional<ProgramResult> result = runProgram(arguments);
        EXPECT_TRUE(result.has_value());
        return result.value_or(ProgramResult());
    }
    static ProgramResult shell(const std::string& script) { return run({"/bin/sh", "-c", script}); }
};

TEST_F(Process, OutputAndSuccessAreReturned) {
    const ProgramResult result = shell("printf 'a\\nb'");
    EXPECT_TRUE(result.succeeded);
    EXPECT_EQ(result.output, "a\nb");
}

TEST_F(Process, EveryOtherEndIsNoSuccess) {
    EXPECT_FALSE(shell("exit 1").succeeded);
    EXPECT_FALSE(shell("kill -9 $$").succeeded);
    EXPECT_EQ(shell("printf x; exit 3").output, "x");
}

TEST_F(Process, SignalsDoNotEndTheWait) {
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) {};
    struct sigaction before {};
    ASSERT_EQ(sigaction(SIGALRM, &interrupting, &before), 0);
    const itimerval often = {{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    // Its output ends long before it does: all of the wait is for its end.
    const auto result = runProgram({"/bin/sh", "-c", "exec >&-; sleep 0.1"});
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->succeeded);
}

TEST_F(Process, LongOutputIsReadWhole) {
    EXPECT_EQ(
        shell("i=0; while [ $i -lt 20000 ]; do echo 0123456789; i=$((i+1)); done").output.size(),
        220'000U);
}

TEST_F(Process, ProgramIsFoundThroughPath) {
    folder_.write("unit tool", "#!/bin/sh\necho found\n");
    ASSERT_EQ(chmod(folder_.narrow("unit tool").c_str(), 0755), 0);
    const ScopedVariable path("PATH", folder_.narrow() + ":/usr/bin:/bin");
    EXPECT_EQ(run({"unit tool"}).output, "found\n");
}

TEST_F(Process, ProgramThatCannotBeStartedGivesNothing) {
    EXPECT_FALSE(runProgram({}).has_value());
    EXPECT_FALSE(runProgram({folder_.narrow("missing")}).has_value());
    folder_.write("file", "");
    EXPECT_FALSE(runProgram({folder_.narrow("file")}).has_value());
}

TEST_F(Process, ArgumentsAreNeverReadAsACommand) {
    EXPECT_EQ(run({"/bin/echo", "a b", "$HOME", "; echo c", "`id`", "*"}).output,
              "a b $HOME ; echo c `id` *\n");
}

TEST_F(Process, InputIsEmptyAndErrorsAreDropped) {
    EXPECT_EQ(run({"/bin/cat"}).output, "");
    EXPECT_EQ(shell("echo error >&2; echo output").output, "output\n");
}

TEST_F(Process, VariablesThatChangeListingsAreKeptFromIt) {
    const ScopedVariable columns("COLUMNS", "10");
    const ScopedVariable format("PS_FORMAT", "pid");
    const ScopedVariable kept("RCP_UNIT_COLUMNS", "kept");
    EXPECT_EQ(shell("echo ${COLUMNS-none} ${PS_FORMAT-none} $RCP_UNIT_COLUMNS").output,
              "none none kept\n");
}

TEST_F(Process, IgnoredChildSignalDoesNotHideTheEnd) {
    EXPECT_EXIT(
        {
            (void)signal(SIGCHLD, SIG_IGN);
            const bool isRight = shell("exit 0").succeeded && !shell("exit 1").succeeded;
            _exit(isRight && signal(SIGCHLD, SIG_DFL) == SIG_IGN ? 3 : 4);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(Process, NoDescriptorOfTheCallIsLeftOpen) {
    const int before = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(before);
    shell("true");
    runProgram({folder_.narrow("missing")});
    const int after = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(after);
    EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace rcp
