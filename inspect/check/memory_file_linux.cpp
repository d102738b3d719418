#include "inspect/check/memory_file.h"

#include <sys/mman.h>

namespace rcp::inspect {

UniqueFd openMemoryFile() {
    return UniqueFd(memfd_create("rcpinspect", MFD_CLOEXEC));
}

}  // namespace rcp::inspect
