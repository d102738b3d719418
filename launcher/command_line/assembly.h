// The final order of the command line. getUserCmdString is its table of contents: it calls the
// pieces in order, and each piece appends its own elements.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/inputs/launch_inputs.h"

#include <string>

namespace rcp {

/// Replaces the placeholders in the per-user list, the arguments and the VM argument map. One that cannot
/// be resolved ends the launch, and so does what a placeholder must not bring to the JVM.
void expandPlaceholders(LaunchInputs& inputs);

/// The plan of a launch of this kind. Every failure ends the launch.
Plan getUserCmdString(const LaunchInputs& inputs, LaunchKind kind);

/// The launcher executable, first element, and the launcher library's path. Ends the launch when
/// the base location is unknown or either file is missing.
void addBaseEclipseToCommandLine(CommandLine& line, const PropertyList& properties);
/// The path of the platform's own program. Ends the launch when the base location is unknown.
Argument platformProgram(const PropertyList& properties);
/// What execv(3) gets: that program or, in the direct Java shape, the JVM.
Argument executedProgram(const LaunchInputs& inputs);
/// "-startup" and the startup jar: the argument behind "-perfJar", or launcher.jar of the base
/// location.
void addStartupToCommandLine(CommandLine& line, const PropertyList& properties,
                             const Arguments& arguments);
/// The main class of the direct Java shape.
void addMainClassToCommandLine(CommandLine& line);
/// "-cp" and the class path, if there is one.
void addClasspathToCommandLine(CommandLine& line, const LaunchInputs& inputs);

}  // namespace rcp
