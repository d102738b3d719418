#include "platform/standard_streams.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace rcp {

namespace {

// Asked at once. What poll(2) does not take for open may be so all the same, and is asked for alone.
bool areAllOpen() {
    std::array<pollfd, STDERR_FILENO + 1> streams{
        {{STDIN_FILENO, 0, 0}, {STDOUT_FILENO, 0, 0}, {STDERR_FILENO, 0, 0}}};
    return poll(streams.data(), streams.size(), 0) >= 0 &&
           std::none_of(streams.begin(), streams.end(),
                        [](const pollfd& stream) { return (stream.revents & POLLNVAL) != 0; });
}

}  // namespace

void openMissingStandardStreams() {
    if (areAllOpen()) {
        return;
    }
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) {
            continue;
        }
        // It gets this number, which is the lowest free one: all below are in use by now. Not
        // close-on-exec: it is the platform's stream too.
        if (calls::open("/dev/null", O_RDWR | O_NOCTTY) < 0) {  // NOLINT(*-cloexec-*)
            fatal(because(errno), messages.nullDeviceNotOpened);
        }
    }
}

}  // namespace rcp
