// Reading that leaves no trace: not even the time of the last access changes where the system lets it
// be kept.
#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace rcp::inspect {

/// open(2), for reading, of what really lies there.
int openQuietly(const std::string& place, int flags);

inline constexpr std::size_t kWhole = static_cast<std::size_t>(-1);
/// As much as is read of a log.
inline constexpr std::size_t kLongestLog = std::size_t{16} << 20U;

/// As much as is read of settings: the longest that anybody writes have some hundred kilobytes.
inline constexpr std::size_t kLongestSettings = std::size_t{16} << 20U;

/// The regular file that really lies at `place`, or its first `limit` bytes; empty when it cannot be read.
/// Waits for nothing.
std::string readPlace(const std::string& place, std::size_t limit = kWhole);
/// The same of the file that `path` names, in a staged tree too.
std::string readQuietly(const std::string& path, std::size_t limit = kWhole);

/// Its last `limit` bytes.
std::string readEndQuietly(const std::string& path, std::size_t limit);

/// Whether a directory is there.
bool isFolder(const std::string& path);
/// Whether a regular file is there.
bool isRegularFile(const std::string& path);
/// Whether anything is there.
bool isThere(const std::string& path);
/// access(2) for the user whose rights count.
bool isAllowedAt(const std::string& path, int access);
/// The names in a directory; none of one that cannot be read.
std::set<std::string> entryNames(const std::string& path);

}  // namespace rcp::inspect
