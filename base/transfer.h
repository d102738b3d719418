// Reads and writes that go on until everything has moved. The system may move less than it was asked
// for, and a signal may come between; neither is a failure.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

namespace rcp {

/// write(2) of all of `bytes`. False, with errno set, when some could not be written; how many of
/// the others were is unknown.
bool writeFully(int descriptor, std::string_view bytes);
/// The same from `offset` on, pwrite(2).
bool writeFullyAt(int descriptor, std::string_view bytes, off_t offset);

/// The first `limit` bytes of a file, or all of one that is shorter: pread(2), which leaves the
/// position alone. Empty optional, with errno set, when it cannot be read.
std::optional<std::string> readBeginning(int descriptor, std::size_t limit);

/// What is left to read, to its end or to a failure, which leaves errno set.
std::string readToEnd(int descriptor);

}  // namespace rcp
