// A whole launch, rehearsed: the launcher's own entry is run in a process of its own whose file
// calls change nothing, and what it did and decided is told as JSON (docs/inspect-layout.md).
//
//   rcpinspect --- fork --- rehearsal: runLauncher(arguments)
//       |                     | file calls change copies, no process is started, nothing is waited
//       |                     | for; an observer notes what is looked at
//       |                     | ends as the launch would: hand-off, provisioning or a record
//       |<----- pipe -------- what became of it
//   completes the explanation
#pragma once

#include "inspect/options.h"

#include <nlohmann/json.hpp>

namespace rcp::inspect {

/// What a launch of options.launcher with options.arguments does in this environment. File names,
/// variables and records are as the system has them, which need not be UTF-8.
nlohmann::json rehearseLaunch(const Options& options);

/// Of that the outcome and the room that it needs alone, which takes less time.
nlohmann::json rehearseEnd(const Options& options);

/// All of it as everybody may read it: all of it is UTF-8.
nlohmann::json explainLaunch(const Options& options);

}  // namespace rcp::inspect
