// macOS: what the system says about itself.
#include "platform/platform.h"

#include <sys/sysctl.h>

#include <cstddef>

namespace rcp::platform {

const char* const kUtf8LocaleName = "UTF-8";

std::string productVersion() {
    constexpr const char* kName = "kern.osproductversion";
    std::size_t size = 0;
    if (sysctlbyname(kName, nullptr, &size, nullptr, 0) != 0) {
        return {};
    }
    std::string version(size, '\0');
    if (sysctlbyname(kName, version.data(), &size, nullptr, 0) != 0) {
        return {};
    }
    // What arrived is zero-terminated, and shorter than the buffer when the version changed between
    // the two calls.
    return version.c_str();
}

}  // namespace rcp::platform
