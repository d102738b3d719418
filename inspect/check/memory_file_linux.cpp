#include "inspect/check/memory_file.h"

#include <sys/mman.h>

namespace rcp::inspect {

int openMemoryFile() {
    return memfd_create("rcpinspect", MFD_CLOEXEC);
}

}  // namespace rcp::inspect
