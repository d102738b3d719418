// Configuration extensions: "-config NAME" on the command line stands for the arguments that the
// properties config.NAME.1, config.NAME.2, ... hold.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <optional>
#include <string>

namespace rcp {

/// The arguments of the start-up sequence: the launcher's own with "-config NAME" replaced by what
/// it stands for and the debug options added when the debug marker file was there. Merges the
/// "vmarg." arguments of both into the map; an extension's "-data" becomes property "rcp.data".
Arguments addConfigExtentionsToArg(const Arguments& arguments, PropertyList& properties,
                                   VmArgumentMap& vmargMap,
                                   const std::optional<std::wstring>& debugFile);

/// Makes property "rcp.data" the value of the extension's "-data", so that whoever asks the
/// property sees the workspace that the extension chose.
void patchWorkspace(const Arguments& extension, PropertyList& properties);

}  // namespace rcp
