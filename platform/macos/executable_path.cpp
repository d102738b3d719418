// macOS: the running executable's path as it was started, and another process's.
#include "platform/platform.h"
#include "platform/working_directory.h"

#include <libproc.h>
#include <mach-o/dyld.h>

#include <cerrno>
#include <cstdint>

namespace rcp::platform {

std::string executablePathAsStarted() {
    std::uint32_t size = 1024;
    std::string path(size, '\0');
    // A buffer that is too small leaves the needed size, the terminating zero included, in `size`.
    while (_NSGetExecutablePath(path.data(), &size) != 0) {
        if (size <= path.size()) {
            errno = ENAMETOOLONG;
            return {};
        }
        path.assign(size, '\0');
    }
    path.resize(path.find('\0'));
    if (path.empty() || path.front() == '/') {
        return path;
    }
    // A relative name means something only from where the process began, so the folder of the first
    // call is kept.
    static const std::string startedIn = workingDirectory();
    if (startedIn.empty()) {
        return {};
    }
    return startedIn == "/" ? startedIn + path : startedIn + "/" + path;
}

bool isOwnExecutable(const std::string& /*path*/) {
    return false;
}

std::optional<std::string> executableOfProcess(pid_t process) {
    std::string path(PROC_PIDPATHINFO_MAXSIZE, '\0');
    const int length = proc_pidpath(process, path.data(), static_cast<std::uint32_t>(path.size()));
    if (length <= 0) {
        return std::nullopt;
    }
    path.resize(static_cast<std::size_t>(length));
    return path;
}

}  // namespace rcp::platform
