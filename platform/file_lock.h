// Locks between processes, flock(2): they belong to the open file, go with its last descriptor, and
// are shared with forked processes.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

namespace rcp {

/// Takes the exclusive lock on an open file, waiting for it. False, with errno set, on failure.
bool lockExclusively(int descriptor);

/// Whether the open file is still the one called `path`. Whoever waited for a lock must ask: the
/// former holder may have renamed or removed the file meanwhile. Links are not followed.
bool isNamed(int descriptor, const std::string& path);
/// The same of the file with that status: its status now, none when it is another file.
std::optional<struct stat> isNamed(const struct stat& file, const std::string& path);

/// The same where `path` may be a link to the file.
std::optional<struct stat> isLedTo(const struct stat& file, const std::string& path);

}  // namespace rcp
