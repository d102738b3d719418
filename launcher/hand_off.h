// The hand-off: the launcher's own process becomes the platform.
//
//   launchEclipse
//     |-- fork
//     |     child:  records the parent's id in the lock file, waits until the parent has become the
//     |             platform, releases the lock, ends
//     |
//     '-- parent: gives up its descriptor of the lock, then
//           invokeDylib   loads the Eclipse launcher library and calls "setInitialArgs" and "run"
//           otherwise     execv
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/hand_off_tools.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/property_list.h"

#include <string>
#include <vector>

namespace rcp {

/// The VM arguments found behind "-vmargs" by parseArgs; null until then and without "-vmargs".
extern char** userVMarg;

/// Hands the command line off. Returns in both processes when there is nothing left to do: in the
/// child, in the parent when the library's "run" returned or execv(3) failed. `arguments` are the
/// launcher's own.
void launchEclipse(const Arguments& arguments, const CommandLine& line);

/// Loads the library, opens the gate and runs the platform in this process. The result of "run" is
/// ignored. A library that cannot be loaded or lacks an entry point ends the launch with the gate still
/// closed: until then no platform is there that others could find.
void invokeEclipseDylib(const std::wstring& libraryPath, NarrowArguments& arguments, Gate& gate);

/// Cuts `argv` at the first "-vmargs" (in any letter case): sets it to null and `argc` to its
/// index, and with `mode` 1 `userVMarg` to what stands behind. `argv[argc]` is null afterwards in
/// any case.
void parseArgs(int& argc, char** argv, int mode);

/// Whether some argument equals `option` exactly.
bool haveLaunchOption(const std::string& option, const std::vector<std::string>& arguments);

/// Decides `invokeDylib` from the executable's name, the properties and the system version.
void initInvokeDylib(const PropertyList& properties);
/// Whether a system of this product version ("10.15.7") hands off in-process: only 10.15.
bool isInProcessVersion(const std::string& version);

}  // namespace rcp
