#include "inspect/quiet_read.h"

#include "base/unique_fd.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace rcp::inspect {

int openQuietly(const std::string& path, int flags) {
#ifdef O_NOATIME
    // For the owner only.
    const int descriptor = ::open(path.c_str(), flags | O_NOATIME);
    if (descriptor >= 0 || errno != EPERM) {
        return descriptor;
    }
#endif
    return ::open(path.c_str(), flags);
}

std::string readQuietly(const std::string& path, std::size_t limit) {
    const UniqueFd file(openQuietly(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    std::string text;
    std::array<char, 65536> buffer;
    bool goesOn = file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    while (goesOn && text.size() < limit) {
        const ssize_t length =
            read(file.get(), buffer.data(), std::min(buffer.size(), limit - text.size()));
        goesOn = length > 0 || (length < 0 && errno == EINTR);
        text.append(buffer.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    }
    return text;
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace rcp::inspect
