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
        // It gets this number, which is the lowest free one: all below are in use by now. Not
        // close-on-exec: it is the platform's stream too.
        if (calls::open("/dev/null", O_RDWR | O_NOCTTY) < 0) {  // NOLINT(*-cloexec-*)
            fatal(because(errno), messages.nullDeviceNotOpened);
        }
    }
}

}  // namespace rcp
