#include "base/pipe.h"

#include "base/system_calls.h"

#include <fcntl.h>

#include <array>

namespace rcp {

// Not pipe2(2), which macOS does not have. There is one thread, so no other can start a program in between.
Pipe::Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (calls::pipe(ends.data()) != 0) {
        return;
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    readEnd.reset(ends[0]);
    writeEnd.reset(ends[1]);
}

}  // namespace rcp
