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

#include "launcher/hand_off_tools.h"
#include "launcher/launch.h"
#include "launcher/vocabulary/name.h"

#include <string>
#include <vector>

namespace rcp {

/// Carries the plan of a prepared launch out. Returns in both processes when there is nothing left to do:
/// in the child, in the parent when the library's "run" returned or execv(3) failed. Of a provisioning neither
/// returns: the child, and a parent that could start nothing, end the launch with status 0.
void handOff(Launch& launch);

void launchEclipse(Launch& launch);
/// Replaces the process with the provisioning program, having recorded its own as the one that provisions
/// (running_provisioning.h) and the id of a forked child as the main process. Returns in the child, and in
/// the parent when execv(3) failed.
void doProvisioning(Launch& launch);

/// Loads the library, opens the gate and runs the platform in this process. The result of "run" is
/// ignored. A library that cannot be loaded or lacks an entry point ends the launch with the gate still
/// closed: until then no platform is there that others could find.
void invokeEclipseDylib(const std::wstring& libraryPath, NarrowArguments& arguments, Gate& gate);

/// Cuts `argv` at the first "-vmargs" (in any letter case): sets it to null and `argc` to its index. What
/// stands behind it, null without one. `argv[argc]` is null afterwards in any case.
char** parseArgs(int& argc, char** argv);

/// Whether some argument equals `option` exactly.
bool haveLaunchOption(OptionName option, const std::vector<std::string>& arguments);

}  // namespace rcp
