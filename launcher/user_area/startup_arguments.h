// "args.properties": the launcher's own command line, recorded so that a later restart of the
// platform can be started with the same arguments.
#pragma once

#include "launcher/inputs/arguments.h"
#include "launcher/properties/property_list.h"

#include <optional>
#include <string>

namespace rcp {

/// Writes "args.properties" into the configuration directory: the arguments less those that belong
/// to this one start, then their number, then the library path. `restartExe` (none or empty: not given)
/// is the program to restart with; without one it is the launcher. Every failure ends the launch
/// and leaves an older file as it was. The file's text when it was read and holds all of that already;
/// none when it was written.
std::optional<std::string> writeStartupArgs(const Arguments& arguments,
                                            const std::wstring& configuration,
                                            const std::optional<std::wstring>& restartExe,
                                            const PropertyList& properties,
                                            const std::wstring& installDir);

}  // namespace rcp
