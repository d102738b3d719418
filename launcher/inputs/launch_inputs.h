// Everything that a launch has read and decided on the way to its command line.
#pragma once

#include "launcher/inputs/arguments.h"
#include "launcher/inputs/traits.h"
#include "launcher/properties/property_list.h"
#include "launcher/properties/vm_argument_map.h"

#include <algorithm>
#include <optional>
#include <string>

namespace rcp {

/// What becomes of the user's area. What stands further down outweighs what stands before it.
enum class UserArea {
    kKept,
    kInUse,   // it should begin anew, but a platform runs in it
    kMade,    // or completed
    kReset,   // as the user asked
    kReused,  // another installation's: its configuration begins anew
};

struct LaunchInputs {
    Traits traits;
    Arguments arguments;     // the launcher's own, as the start-up sequence extended them
    std::wstring workspace;  // as prepared: these directories exist
    std::wstring configuration;
    Origin workspaceOrigin;  // what has named it
    std::wstring installDir;
    PropertyList properties;      // the launcher property list
    PropertyList userProperties;  // the per-user install property list
    VmArgumentMap vmargMap;
    /// The debug marker, if it was there.
    std::optional<std::wstring> debugFile;
    /// The process of the workspace's platform; none for the main launcher, and before the lock is taken.
    std::optional<long> runningPlatform;
    /// A directory or per-user file of the user's had to be made, or the provisioning level changed. While
    /// false, reuse and reset of the user's area are considered.
    bool userFirstLaunch = false;
    UserArea area = UserArea::kKept;
    /// The initial configuration stands in for the user's arguments.
    bool isInitial = false;

    /// Whether this launcher is the main one, whose process becomes the platform. Asked from the lock on.
    [[nodiscard]] bool isMainProcess() const { return !runningPlatform; }

    /// Something of the user's area is made.
    void completeArea() {
        userFirstLaunch = true;
        area = std::max(area, UserArea::kMade);
    }
};

}  // namespace rcp
