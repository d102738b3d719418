#include "inspect/check/memory_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace rcp::inspect {

// There is no file without a name here, only one whose name is gone at once.
int openMemoryFile() {
    char name[] = "/tmp/rcpinspect.XXXXXX";
    const int descriptor = mkstemp(name);
    if (descriptor >= 0) {
        unlink(name);
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
    return descriptor;
}

}  // namespace rcp::inspect
