#include "inspect/check/memory_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace rcp::inspect {

// There is no file without a name here, only one whose name is gone at once.
UniqueFd openMemoryFile() {
    char name[] = "/tmp/rcpinspect.XXXXXX";
    UniqueFd file(mkstemp(name));
    if (file) {
        unlink(name);
        fcntl(file.get(), F_SETFD, FD_CLOEXEC);
    }
    return file;
}

}  // namespace rcp::inspect
