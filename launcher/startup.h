// The start-up sequence: everything between process entry and hand-off, in its fixed order.
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/property_list.h"

#include <optional>
#include <string>

namespace rcp {

/// Where the installation lies, and its own properties.
struct Installation {
    std::wstring directory;
    PropertyList properties;
};

/// Failure ends the launch.
Installation readInstallation(const Arguments& arguments);

/// Prepares the user's area and gives the platform's command line. `arguments`
/// are the launcher's own as process entry extended them, `installation` is what process entry has
/// read. Every failure ends the launch. None for a launch that begins anew: it has decided
/// nothing yet, but made the workspace if it was missing.
[[nodiscard]] std::optional<CommandLine> startup(const Arguments& arguments,
                                                 Installation installation, Start start);

}  // namespace rcp
