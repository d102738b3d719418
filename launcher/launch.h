// The start-up sequence: everything between process entry and hand-off, in its fixed order.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/inputs/arguments.h"
#include "launcher/inputs/launch_inputs.h"
#include "launcher/instance/platform_lock.h"
#include "launcher/instance/process_check.h"
#include "launcher/properties/property_list.h"
#include "platform/whole_file.h"

#include <memory>
#include <optional>
#include <string>

namespace rcp {

/// One launch, as far as it has come: what it was given, has read and decided, and what it will do.
struct Launch {
    Arguments arguments;  // the launcher's own, as process entry extended them
    LaunchInputs inputs;
    std::optional<ProcessMarker> marker;  // from then on it deals with the workspace's lock
    std::optional<PlatformLock> lock;
    std::unique_ptr<UnfinishedNote> note;  // while temporary names may be made under that lock
    std::optional<Plan> plan;
};

/// Where the installation lies, and its own properties.
struct Installation {
    std::wstring directory;
    PropertyList properties;
};

/// Failure ends the launch.
Installation readInstallation();

/// Prepares the user's area, takes the lock, makes the plan and the environment that it needs in this
/// process. `installation` is what process entry has read. Every failure ends the launch. None for a
/// launch that has to begin anew: it has decided nothing yet, but made the workspace if it was missing.
[[nodiscard]] std::optional<Plan> startup(Launch& launch, Installation installation, Start start);

}  // namespace rcp
