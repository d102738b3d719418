#include "platform/standard_streams.h"

#include "base/system_calls.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rcp {
namespace {

bool isNullDevice(int descriptor) {
    struct stat mine {};
    struct stat null {};
    return fstat(descriptor, &mine) == 0 && stat("/dev/null", &null) == 0 &&
           mine.st_rdev == null.st_rdev && S_ISCHR(mine.st_mode);
}

// In a process of its own: the streams of this one are still needed.
TEST(StandardStreams, ClosedOnesBecomeTheNullDeviceAndOthersStay) {
    for (int closed = 0; closed < 8; ++closed) {
        const pid_t child = fork();
        if (child == 0) {
            const int before = open("/", O_RDONLY | O_CLOEXEC);
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                dup2(before, descriptor);
                if ((closed & (1 << descriptor)) != 0) {
                    close(descriptor);
                }
            }
            openMissingStandardStreams();
            bool isRight = open("/", O_RDONLY | O_CLOEXEC) > 2;
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                isRight &= isNullDevice(descriptor) == ((closed & (1 << descriptor)) != 0);
                isRight &= (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0;
                isRight &=
                    !isNullDevice(descriptor) || (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDWR;
            }
            _exit(isRight ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << closed;
    }
}

TEST(StandardStreams, MissingNullDeviceEndsTheLaunch) {
    SystemCalls failing = systemCalls;
    failing.open = [](const char*, int, mode_t) {
        errno = ENXIO;
        return -1;
    };
    const InstalledCalls installed(failing);
    const int before = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const LaunchEnded end = test::endOfLaunch(openMissingStandardStreams);
    dup2(before, STDIN_FILENO);
    close(before);
    EXPECT_EQ(end.status, 255);
    EXPECT_EQ(end.record,
              std::string("Error: openMissingStandardStreams: /dev/null cannot be opened : ") +
                  strerror(ENXIO));
}

}  // namespace
}  // namespace rcp
