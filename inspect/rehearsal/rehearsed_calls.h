// What rcpinspect puts in the place of the system's calls.
#pragma once

#include "base/system_calls.h"

namespace rcp::inspect {

/// Files that are only read keep their times of access, and paths are those of a staged tree if there is one.
/// For all that rcpinspect does.
SystemCalls quietCalls();
/// The calls of the rehearsal that is at work. A `Rehearsal` installs them.
SystemCalls rehearsedCalls();

}  // namespace rcp::inspect
