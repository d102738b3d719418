// Reading that leaves no trace: not even the time of the last access changes where the system lets it
// be kept.
#pragma once

#include <cstddef>
#include <string>

namespace rcp::inspect {

/// open(2) for reading.
int openQuietly(const std::string& path, int flags);

inline constexpr std::size_t kWhole = static_cast<std::size_t>(-1);
/// As much as is read of a log.
inline constexpr std::size_t kLongestLog = std::size_t{16} << 20U;

/// The regular file at `path`, or its first `limit` bytes; empty when it cannot be read. Waits for
/// nothing.
std::string readQuietly(const std::string& path, std::size_t limit = kWhole);

/// Whether stat(2) finds a directory there.
bool isFolder(const std::string& path);

}  // namespace rcp::inspect
