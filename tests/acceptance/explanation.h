// What rcpinspect says of a launch, beside what the launch does.
#pragma once

#include "installation.h"
#include "json.h"
#include "snapshot.h"

namespace acceptance {

/// "rcpinspect explain" of a launch in `velmo` with `arguments`; fails the test when there is none.
Json explain(Installation& velmo, const Texts& arguments);

/// Of the installation that is still staged below another folder, and has an older one in its place, the same is
/// explained, to the letter.
void expectSameOfStagedTree(Installation& velmo, const Texts& arguments);

/// The texts of the explained elements.
Texts elementTexts(const Json& explanation);

/// What the launch between the two snapshots of the whole tree has logged.
std::string logOfLaunch(const Snapshot& before, const Snapshot& after);

/// The launch ended as explained, with the same record or the same arguments and environment, and
/// every element has its rule. `environment` is what the launcher was given.
void expectExplained(const Json& explanation, const Launch& launch, const std::string& log,
                     const std::map<std::string, std::string>& environment);

/// What the launch made, replaced, moved and removed between the two snapshots of the whole tree is
/// what was explained, no more and no less.
void expectChangesExplained(const Json& explanation, const Installation& velmo,
                            const Snapshot& before, const Snapshot& after);

}  // namespace acceptance
