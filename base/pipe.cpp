#include "base/pipe.h"

#include "base/system_calls.h"

#include <array>

namespace rcp {

Pipe::Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (calls::pipe(ends.data()) == 0) {
        readEnd.reset(ends[0]);
        writeEnd.reset(ends[1]);
    }
}

}  // namespace rcp
