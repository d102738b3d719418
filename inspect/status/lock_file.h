// What the lock file of a workspace holds. The lock itself is lock_holders.h's.
#pragma once

#include <string>

namespace rcp::inspect {

struct LockFile {
    enum class Content { kMissing, kNothing, kProcess, kOther, kUnreadable };
    Content content = Content::kMissing;
    long process = 0;  // kProcess

    bool operator==(const LockFile&) const = default;
};

/// Reads the file at `path` as a launch does, without ever meeting a lock.
LockFile lookAtLockFile(const std::string& path);

}  // namespace rcp::inspect
