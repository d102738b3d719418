// The platform options of the command line.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/inputs/launch_inputs.h"

namespace rcp {

/// Appends the platform options: the user's own, less those that the launcher decides, then
/// "-data", "-configuration", and from the properties whatever of "-application",
/// "-plugincustomization", "-product" and "-personality" the user did not give. Ends the launch
/// without "rcp.install.id" and when the plug-in customization file is missing.
void addMainOptionsToCommandLine(CommandLine& line, const LaunchInputs& inputs);

/// What provisioning starts; null when nothing names it.
const Property* provisioningApplication(const PropertyList& properties);
/// Appends "-application", the provisioning application and, when a user's launch asked for it,
/// "-userProvLaunch". Ends the launch when no application is configured.
void addProvisioningApplication(CommandLine& line, const PropertyList& properties, LaunchKind kind);

/// Appends "-useDaemon" and the process id of the platform that runs already, if one does.
void addUseDaemonToCommandLine(CommandLine& line, const LaunchInputs& inputs);

}  // namespace rcp
