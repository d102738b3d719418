// A pipe between two processes.
#pragma once

#include "base/unique_fd.h"

namespace rcp {

/// pipe(2) with both ends close-on-exec. Without descriptors for it both ends are empty, with errno set.
struct Pipe {
    Pipe();

    UniqueFd readEnd;
    UniqueFd writeEnd;
};

}  // namespace rcp
