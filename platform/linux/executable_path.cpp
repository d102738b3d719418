// Linux: the running executable's path as it was started, and another process's.
#include "platform/platform.h"
#include "platform/working_directory.h"

#include <sys/auxv.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <utility>

namespace rcp::platform {

namespace {

/// The name that was given to the kernel with the program; links in it are not resolved.
std::string startedName() {
    // getauxval returns every value as a number; this one is an address of a text that lives as
    // long as the process.
    const auto* const name =
        reinterpret_cast<const char*>(getauxval(AT_EXECFN));  // NOLINT(performance-no-int-to-ptr)
    return name == nullptr ? std::string() : std::string(name);
}

/// What a link of the process file system leads to; empty, with errno set, when it cannot be read.
std::string targetOf(const std::string& link) {
    constexpr std::size_t kFirstSize = 1024;
    std::string buffer(kFirstSize, '\0');
    while (true) {
        const ssize_t length = readlink(link.c_str(), buffer.data(), buffer.size());
        if (length < 0) {
            return {};
        }
        const auto used = static_cast<std::size_t>(length);
        // A full buffer may hold a cut path.
        if (used < buffer.size()) {
            buffer.resize(used);
            return buffer;
        }
        buffer.resize(buffer.size() * 2);
    }
}

/// The file behind this process: absolute, but with every link resolved.
std::string resolvedPath() {
    return targetOf("/proc/self/exe");
}

}  // namespace

bool isOwnExecutable(const std::string& path) {
    return resolvedPath() == path;
}

std::optional<std::string> executableOfProcess(pid_t process) {
    constexpr std::string_view kGone = " (deleted)";  // what the system adds
    std::string path = targetOf("/proc/" + std::to_string(process) + "/exe");
    if (path.ends_with(kGone) && access(path.c_str(), F_OK) != 0) {
        path.resize(path.size() - kGone.size());
    }
    return path.empty() ? std::nullopt : std::optional(std::move(path));
}

std::string executablePathAsStarted() {
    std::string name = startedName();
    // A program started from an open descriptor has no name of its own, only the descriptor's.
    if (name.empty() || name.starts_with("/dev/fd/")) {
        return resolvedPath();
    }
    if (name.front() == '/') {
        return name;
    }
    // A relative name means something only from where the process began, so the folder of the first
    // call is kept.
    static const std::string startedIn = workingDirectory();
    if (startedIn.empty()) {
        return resolvedPath();
    }
    return startedIn == "/" ? startedIn + name : startedIn + "/" + name;
}

}  // namespace rcp::platform
