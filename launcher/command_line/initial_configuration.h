// The initial configuration: until the user's first configuration is complete, every launch runs with
// "-config initial".
#pragma once

#include "launcher/inputs/launch_inputs.h"

namespace rcp {

/// Whether the installation has numbered "config.initial." arguments and the property that they
/// name behind "-initialCompleteFlag" is not yet "true..." in the per-user list. Ends the launch
/// when the numbers have a gap or the flag is missing.
bool isInitialRequired(const LaunchInputs& inputs);

/// The arguments of a launch with the initial configuration: the program path, "-config initial",
/// and of `arguments` only what decides where and how the platform runs.
Arguments initialArguments(const Arguments& arguments);

}  // namespace rcp
