// Everything that the command line is assembled from, prepared by the start-up sequence.
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/property_list.h"
#include "launcher/core/vm_argument_map.h"

#include <string>

namespace rcp {

struct LaunchInputs {
    Arguments arguments;     // the launcher's own, as the start-up sequence extended them
    std::wstring workspace;  // as prepared: these directories exist
    std::wstring configuration;
    std::wstring installDir;
    PropertyList properties;      // the launcher property list
    PropertyList userProperties;  // the per-user install property list
    VmArgumentMap vmargMap;
    Start start = Start::kOrdinary;
};

}  // namespace rcp
