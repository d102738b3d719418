// Linux: what the system says about itself.
#include "platform/platform.h"

namespace rcp::platform {

const char* const kUtf8LocaleName = "C.UTF-8";

// The version decides between two kinds of start that differ on macOS only; no number here could
// mean the same.
std::string productVersion() {
    return {};
}

}  // namespace rcp::platform
