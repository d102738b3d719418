// The JVM of a launch, started with the launch's JVM options and "-version": only when it is asked for.
#pragma once

#include "inspect/handoff/hand_off.h"

namespace rcp::inspect {

/// In an empty folder of its own and with a time limit. Its path is what the JVM said first, its faults why
/// it does not start, or was not tried. Of a library the program of its home is started, which makes the same
/// JVM.
Examined tryJvm(const Examination& examination);

}  // namespace rcp::inspect
