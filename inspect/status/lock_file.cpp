#include "inspect/status/lock_file.h"

#include "launcher/core/lock_content.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <optional>

namespace rcp::inspect {
namespace {

// As much as a launch reads.
std::optional<std::string> beginningOf(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return std::nullopt;
    }
    std::array<char, 256> buffer{};
    struct stat status {};
    const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const ssize_t length = isFile ? read(descriptor, buffer.data(), buffer.size()) : -1;
    close(descriptor);
    if (length < 0) {
        return std::nullopt;
    }
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

}  // namespace

LockFile lookAtLockFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 && errno == ENOENT) {
        return {};
    }
    const std::optional<std::string> beginning = beginningOf(path);
    if (!beginning) {
        return {LockFile::Content::kUnreadable};
    }
    const LockContent content = parseLockContent(*beginning);
    switch (content.kind) {
        case LockContent::kNothing:
            return {LockFile::Content::kNothing};
        case LockContent::kNumber:
            return {LockFile::Content::kProcess, content.number};
        default:
            return {LockFile::Content::kOther};
    }
}

}  // namespace rcp::inspect
