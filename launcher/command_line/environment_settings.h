// What the JVM inherits: these pieces of the plan are no arguments but changes of the environment. The JVM is
// started in the launcher's own process, so they are made there, last of all.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/properties/property_list.h"

namespace rcp {

/// All of them, in order. Ends the launch when the preloaded library lacks the install id.
EnvironmentChanges environmentOf(const PropertyList& properties);

/// Removes the variables named by "env.unset.NAME", then sets those of "env.set.NAME".
void addEnvSetToCommandLine(EnvironmentChanges& changes, const PropertyList& properties);

/// Sets "DYLD_LIBRARY_PATH" from "library.path.prepend", "com.ovr.rcp.core.internal.librarypath"
/// and "library.path.append". With none of them the variable stays; with any, its old value is not
/// kept.
void addLibpathToCommandLine(EnvironmentChanges& changes, const PropertyList& properties);

/// Preloads "library.preload". Ends the launch when "rcp.install.id", which names the preload
/// link, is missing.
void addLdPreloadToCommandLine(EnvironmentChanges& changes, const PropertyList& properties);

/// Sets "JAVA_HIGH_ZIPFDS" to "env.JAVA_HIGH_ZIPFDS", or "500".
void addEnvJavaHighZipfds(EnvironmentChanges& changes, const PropertyList& properties);

/// Makes them, in this process.
void applyEnvironment(const EnvironmentChanges& changes);

}  // namespace rcp
