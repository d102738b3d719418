// A file that is on no disk: the launcher reads property files, and a check has texts.
#pragma once

#include "base/unique_fd.h"

namespace rcp::inspect {

/// An empty regular file that goes with its descriptor; readable as /dev/fd/NUMBER. None on failure.
UniqueFd openMemoryFile();

}  // namespace rcp::inspect
