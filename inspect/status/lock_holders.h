// Who holds a file's lock, as the system tells those who only look: the lock is never asked for.
#pragma once

#include <string>
#include <vector>

namespace rcp::inspect {

struct Process {
    long id = 0;
    std::string name;  // empty when the system does not say

    bool operator==(const Process&) const = default;
};

struct LockHolders {
    bool isHeld = false;
    std::vector<Process> holders;  // may be empty though it is held: another user's, for one
    std::vector<Process> waiting;

    bool operator==(const LockHolders&) const = default;
};

/// The flock(2) lock of the file at `path`; a file that is not there has none.
LockHolders lockHolders(const std::string& path);

}  // namespace rcp::inspect
