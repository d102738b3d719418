// Launches that build or rebuild the user's area, for tests that disturb them: whatever happens to
// one, the next launch must end up where an undisturbed one would have.
#pragma once

#include "installation.h"
#include "snapshot.h"

#include <string>
#include <vector>

namespace acceptance {

struct Scenario {
    std::string name;
    /// Leaves the installation and the user's area as they are before the disturbed launch.
    void (*prepare)(Installation& velmo);
    Texts disturbed;  ///< its arguments
    Texts next;       ///< the arguments of the launch behind it
    /// What of the user's area may differ afterwards.
    bool (*mayDiffer)(const std::string& path);
    bool hasKeptFiles;  ///< whether the user had a registry and bookmarks
};

/// First launches, reuse and reset.
std::vector<Scenario> scenarios();

/// What came of the scenario's next launch; comparable between installations.
struct Outcome {
    Texts arguments;
    Snapshot files;
};

Outcome launchNext(const Installation& velmo, const Scenario& scenario);

/// The platform got the same arguments, the files are the same but for what may differ, the user's
/// registry and bookmarks still exist, and nothing is left on the way to its place.
void expectSameOutcome(const Outcome& expected, const Outcome& actual, const Scenario& scenario);

/// No file of the user's or the installation has a temporary name.
void expectNothingUnfinished(const Installation& velmo);

}  // namespace acceptance
