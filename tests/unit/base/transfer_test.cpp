#include "base/transfer.h"

#include "base/system_calls.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rcp::test {
namespace {

class Transfer : public ::testing::Test {
  protected:
    Transfer() : descriptor_(open(folder_.narrow("file").c_str(), O_RDWR | O_CREAT, 0600)) {}
    ~Transfer() override { close(descriptor_); }

    TestFolder folder_;
    int descriptor_;
};

TEST_F(Transfer, WritesEverythingBehindWhatIsThere) {
    EXPECT_TRUE(writeFully(descriptor_, "one "));
    EXPECT_TRUE(writeFully(descriptor_, ""));
    EXPECT_TRUE(writeFully(descriptor_, "two"));
    EXPECT_EQ(folder_.read("file"), "one two");
}

TEST_F(Transfer, WritesAtAnOffsetAndLeavesTheRest) {
    EXPECT_TRUE(writeFully(descriptor_, "0123456789"));
    EXPECT_TRUE(writeFullyAt(descriptor_, "abc", 2));
    EXPECT_EQ(folder_.read("file"), "01abc56789");
}

TEST_F(Transfer, ReadsTheBeginningWithoutMoving) {
    EXPECT_TRUE(writeFully(descriptor_, "0123456789"));
    EXPECT_EQ(readBeginning(descriptor_, 4), "0123");
    EXPECT_EQ(readBeginning(descriptor_, 100), "0123456789");
    EXPECT_EQ(readBeginning(descriptor_, 0), "");
    EXPECT_EQ(lseek(descriptor_, 0, SEEK_CUR), 10);
}

TEST_F(Transfer, FailuresLeaveTheirReasonInErrno) {
    errno = 0;
    EXPECT_FALSE(writeFully(-1, "x"));
    EXPECT_EQ(errno, EBADF);
    errno = 0;
    EXPECT_FALSE(writeFullyAt(-1, "x", 0));
    EXPECT_EQ(errno, EBADF);
    errno = 0;
    EXPECT_FALSE(readBeginning(-1, 1).has_value());
    EXPECT_EQ(errno, EBADF);
}

int callsMade = 0;

// Interrupted, then a byte at a time.
ssize_t writeLittle(int descriptor, const void* bytes, std::size_t size) {
    if (callsMade++ == 0) {
        errno = EINTR;
        return -1;
    }
    return kSystemsOwnCalls.write(descriptor, bytes, size == 0 ? 0 : 1);
}

TEST_F(Transfer, InterruptedAndPartialWritesGoOn) {
    SystemCalls calls = systemCalls;
    calls.write = &writeLittle;
    const InstalledCalls installed(calls);
    callsMade = 0;
    EXPECT_TRUE(writeFully(descriptor_, "text"));
    EXPECT_EQ(callsMade, 5);
    EXPECT_EQ(folder_.read("file"), "text");
}

TEST_F(Transfer, ADeviceThatTakesNothingIsFull) {
    SystemCalls calls = systemCalls;
    calls.write = [](int, const void*, std::size_t) {
        errno = EINTR;  // of an earlier call
        return ssize_t{0};
    };
    const InstalledCalls installed(calls);
    EXPECT_FALSE(writeFully(descriptor_, "text"));
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(Transfer, APipeThatTakesLittleAtATimeGetsAll) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string text(std::size_t{1} << 20, 'x');  // far more than a pipe holds
    const pid_t reader = fork();
    if (reader == 0) {
        close(ends[1]);
        std::size_t total = 0;
        char buffer[777];
        for (ssize_t length = 0; (length = read(ends[0], buffer, sizeof buffer)) > 0;) {
            total += static_cast<std::size_t>(length);
        }
        _exit(total == text.size() ? 0 : 1);
    }
    close(ends[0]);
    EXPECT_TRUE(writeFully(ends[1], text));
    close(ends[1]);
    int status = 0;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace rcp::test
