#include "base/pipe.h"

#include "base/system_calls.h"
#include "base/transfer.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>

namespace rcp {
namespace {

TEST(Pipe, CarriesBytesAndIsInheritedByNoProgram) {
    Pipe pipe;
    ASSERT_TRUE(pipe.readEnd);
    ASSERT_TRUE(pipe.writeEnd);
    for (const int end : {pipe.readEnd.get(), pipe.writeEnd.get()}) {
        EXPECT_NE(fcntl(end, F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_TRUE(writeFully(pipe.writeEnd.get(), "text"));
    pipe.writeEnd.reset();
    EXPECT_EQ(readToEnd(pipe.readEnd.get()), "text");
}

TEST(Pipe, SystemsReasonForNoneIsKept) {
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit none = {0, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    std::array<int, 2> ends{};
    const int result = calls::pipe(ends.data());
    const int error = errno;
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, EMFILE);
}

TEST(Pipe, IsEmptyWhereTheSystemHasNone) {
    SystemCalls failing = systemCalls;
    failing.pipe = [](int*) {
        errno = EMFILE;
        return -1;
    };
    const InstalledCalls installed(failing);
    const Pipe pipe;
    EXPECT_EQ(errno, EMFILE);
    EXPECT_FALSE(pipe.readEnd);
    EXPECT_FALSE(pipe.writeEnd);
}

}  // namespace
}  // namespace rcp
