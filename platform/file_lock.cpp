#include "platform/file_lock.h"

#include "base/system_calls.h"

#include <errno.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace rcp {

bool lockExclusively(int descriptor) {
    while (calls::flock(descriptor, LOCK_EX) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

namespace {

bool isSame(const struct stat& left, const struct stat& right) {
    return left.st_ino == right.st_ino && left.st_dev == right.st_dev;
}

}  // namespace

bool isNamed(int descriptor, const std::string& path) {
    struct stat opened {};
    return calls::fstat(descriptor, &opened) == 0 && isNamed(opened, path);
}

std::optional<struct stat> isNamed(const struct stat& file, const std::string& path) {
    struct stat named {};
    const bool isIt = calls::lstat(path.c_str(), &named) == 0 && isSame(file, named);
    return isIt ? std::optional(named) : std::nullopt;
}

std::optional<struct stat> isLedTo(const struct stat& file, const std::string& path) {
    struct stat named {};
    const bool isIt = calls::stat(path.c_str(), &named) == 0 && isSame(file, named);
    return isIt ? std::optional(named) : std::nullopt;
}

}  // namespace rcp
