// What the launcher says. docs/messages.md has its tables from here, and so has whoever explains a log.
#pragma once

#include "diagnostics/message.h"

namespace rcp {

/// In the order of their numbers, those without one at the end.
struct Messages {
#include "diagnostics/messages.def"
};
inline constexpr Messages messages;

}  // namespace rcp
