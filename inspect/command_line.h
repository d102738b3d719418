// The command line of rcpinspect.
#pragma once

namespace rcp::inspect {

/// Reads the command line and carries the command out. Returns the exit status; wrong use gets one
/// line on standard error and sysexits(3) EX_USAGE.
int run(int argc, char** argv);

}  // namespace rcp::inspect
