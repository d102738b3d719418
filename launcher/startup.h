// The start-up sequence: everything between process entry and hand-off, in its fixed order.
#pragma once

#include "launcher/core/arguments.h"

namespace rcp {

/// Prepares the user's area and fills `launchArgs` (launcher/core/launch_arguments.h). `arguments`
/// are the launcher's own as process entry extended them. Every failure ends the process.
void startup(const Arguments& arguments);

}  // namespace rcp
