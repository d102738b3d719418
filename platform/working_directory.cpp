// The working directory as text of any length: getcwd(3) with a buffer that grows.
#include "platform/working_directory.h"

#include "base/system_calls.h"

#include <errno.h>

#include <cstddef>

namespace rcp::platform {

namespace {
constexpr std::size_t kFirstSize = 1024;
}

std::string workingDirectory() {
    std::string buffer(kFirstSize, '\0');
    while (calls::getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) {
            return {};
        }
        buffer.resize(buffer.size() * 2);
    }
    buffer.resize(buffer.find('\0'));
    // Linux answers "(unreachable)/..." for a directory outside the process's root; nothing can be
    // opened by such a name.
    if (buffer.empty() || buffer.front() != '/') {
        errno = ENOENT;
        return {};
    }
    return buffer;
}

}  // namespace rcp::platform
