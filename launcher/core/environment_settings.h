// What the JVM inherits. The JVM is started in the launcher's own process, so these steps of the
// command line assembly append nothing: they change the process's environment.
#pragma once

#include "launcher/core/property_list.h"

namespace rcp {

/// Removes the variables named by "env.unset.NAME", then sets those of "env.set.NAME".
void addEnvSetToCommandLine(const PropertyList& properties);

/// Sets "DYLD_LIBRARY_PATH" from "library.path.prepend", "com.ovr.rcp.core.internal.librarypath"
/// and "library.path.append". With none of them the variable stays; with any, its old value is not
/// kept.
void addLibpathToCommandLine(const PropertyList& properties);

/// Preloads "library.preload". Ends the launch when "rcp.install.id", which names the preload
/// link, is missing.
void addLdPreloadToCommandLine(const PropertyList& properties);

/// Sets "JAVA_HIGH_ZIPFDS" to "env.JAVA_HIGH_ZIPFDS", or "500".
void addEnvJavaHighZipfds(const PropertyList& properties);

}  // namespace rcp
