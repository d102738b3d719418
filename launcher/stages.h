// The stages in which a launch gets to know what it decides from. They read and decide and change nothing
// outside: what is to be done launch.cpp does between them, and whoever only wants to know runs them alone.
//
// What a stage cannot go on without ends the launch.
#pragma once

#include "launcher/inputs/launch_inputs.h"
#include "launcher/instance/process_check.h"

#include <string>

namespace rcp {

std::wstring propertyFileOf(const std::wstring& installDir);

/// The launcher's own arguments with those of the extension that they name, and the JVM arguments of
/// both and of the properties. It stands first: the arguments decide how everything else is read.
void extendArguments(const Arguments& arguments, LaunchInputs& inputs);

/// The base location with its "${rcp.home}" replaced; stored back, so that every later stage sees the
/// real path.
std::wstring settleBaseLocation(LaunchInputs& inputs);

/// Where the workspace and the configuration area are.
void settleWorkspace(LaunchInputs& inputs);

/// How the platform of this installation is told from other processes.
ProcessMarker markerOf(const LaunchInputs& inputs);

/// What follows from the user's properties: they and the installation's name the workspace, and their
/// JVM arguments count.
void applyUserProperties(LaunchInputs& inputs);

}  // namespace rcp
