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
/// One answer a question, on one screen: status 0 all is good, 1 something is odd, 2 something is bad.
int doctor(const Options& options);
/// What is known of one option, key, variable, path, message or finding: status 1 when nothing is.
int why(const Options& options);
/// Whether why has to rehearse a launch to tell of that: the numbers of messages and findings need none.
bool needsLaunch(const std::string& subject);
/// Every property with its value and where it comes from.
int config(const Options& options);
/// All of that, and the last logs, in an archive that can be mailed.
int report(const Options& options);
/// What two installations, or one and its last launch, would do differently.
int diff(const Options& options);

}  // namespace rcp::inspect
