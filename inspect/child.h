// What a process of its own does, and no more.
#pragma once

#include "inspect/options.h"

#include <unistd.h>

#include <exception>

namespace rcp::inspect {

/// For the child of fork(2), of which `work` is all: what it throws must not be caught in frames of the parent's,
/// which would go on there a second time.
template <typename Work>
[[noreturn]] void beChild(const Work& work) {
    try {
        work();
    } catch (const std::exception&) {
        // The parent tells that it has got no answer.
    }
    _exit(kFailure);
}

}  // namespace rcp::inspect
