#include "platform/standard_streams.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

namespace rcp {

void openMissingStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) {
            continue;
        }
        // The lowest free number is given out first, and all below are in use by now. Not
        // close-on-exec: it is the platform's stream too.
        const int opened = calls::open("/dev/null", O_RDWR | O_NOCTTY);  // NOLINT(*-cloexec-*)
        if (opened < 0) {
            fatal(because(errno), messages.nullDeviceNotOpened);
        }
        if (opened > STDERR_FILENO) {
            close(opened);
        }
    }
}

}  // namespace rcp
