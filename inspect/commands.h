// The commands of rcpinspect, each in the file of its name. Every one writes its result to standard
// output and returns the exit status.
#pragma once

#include "inspect/options.h"

namespace rcp::inspect {

/// What a launch with these arguments in this environment would do.
int explain(const Options& options);
/// What its maker should know about an installation: status 0 clean, 1 warnings, 2 errors.
int check(const Options& options);
/// The state of one workspace.
int status(const Options& options);
/// What two installations, or one and its last launch, would do differently.
int diff(const Options& options);

}  // namespace rcp::inspect
