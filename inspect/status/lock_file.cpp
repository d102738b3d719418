#include "inspect/status/lock_file.h"

#include "base/system_calls.h"
#include "inspect/quiet_read.h"
#include "launcher/instance/lock_content.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>

namespace rcp::inspect {
namespace {

constexpr std::size_t kLongestContent = 256;  // as much as a launch reads

// Nothing for what is no file or cannot be read.
std::optional<std::string> beginningOf(const std::string& path) {
    struct stat status {};
    if (calls::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        !isAllowedAt(path, R_OK)) {
        return std::nullopt;
    }
    return readQuietly(path, kLongestContent);
}

}  // namespace

LockFile lookAtLockFile(const std::string& path) {
    struct stat status {};
    if (calls::stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
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
