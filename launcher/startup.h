// The start-up sequence: everything between process entry and hand-off, in its fixed order.
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/platform_lock.h"
#include "launcher/core/property_list.h"

#include <string>

namespace rcp {

/// Where the installation lies, and its own properties.
struct Installation {
    std::wstring directory;
    PropertyList properties;
};

/// Failure ends the launch.
Installation readInstallation(const Arguments& arguments);

/// Prepares the user's area and fills `launchArgs` (launcher/core/launch_arguments.h). `arguments`
/// are the launcher's own as process entry extended them, `installation` is what process entry has
/// read. Every failure ends the launch. A launch that begins anew has decided nothing yet, but made
/// the workspace if it was missing.
[[nodiscard]] Launch startup(const Arguments& arguments, Installation installation);

}  // namespace rcp
