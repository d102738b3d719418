// What a folder holds at one moment, for tests that say what a launch leaves alone.
#pragma once

#include "installation.h"

#include <functional>
#include <map>
#include <string>

namespace acceptance {

struct Entry {
    std::string content;    ///< a file's text, a link's target; "(directory)", "(program)"
    long long changed = 0;  ///< a file's modification time in nanoseconds

    bool operator==(const Entry&) const = default;
};

/// By path below the folder.
using Snapshot = std::map<std::string, Entry>;

Snapshot takeSnapshot(const std::string& folder);

/// The same without the times, and with the installation's own root called "ROOT": what the same
/// launch in two installations has in common.
Snapshot portable(Snapshot snapshot, const Installation& velmo);

/// The snapshot less the entries whose path `isLeftOut`.
Snapshot without(Snapshot snapshot, const std::function<bool(const std::string&)>& isLeftOut);

/// One line a path whose entries differ; empty when there is none.
std::string differences(const Snapshot& expected, const Snapshot& actual);

/// The paths that end like a file on its way to its place; empty when there is none.
Texts temporaryNames(const Snapshot& snapshot);

}  // namespace acceptance
