// Where the user's data area (the workspace, "-data") and the configuration area ("-configuration")
// are. The functions compute; they make nothing.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <string>

namespace rcp {

/// The workspace and what has named it, by the first rule that applies:
///
///   service configurations     a folder of the installation
///   "-data" with a value       the value, one trailing separator dropped, the first "${rcp.home}"
///                              and the user placeholders replaced, made absolute
///   property "rcp.data"        its value likewise, but a relative one stays relative
///   otherwise                  HOME/OVR/RCP/<install id>/<user name>
///
/// Ends the launch when the rule that applies cannot give a path.
Argument getWorkspaceLocation(const LaunchInputs& inputs);

/// The configuration area: inside the workspace of `inputs`, or beside it in the service configurations.
std::wstring getConfigurationLocation(const LaunchInputs& inputs);

/// workspace + "/logs".
std::wstring getLogLocation(const std::wstring& workspace);

}  // namespace rcp
