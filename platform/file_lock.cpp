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

using Status = int (*)(const char* path, struct stat* status);

bool isSame(int descriptor, const std::string& path, Status statusOf) {
    struct stat opened {};
    struct stat named {};
    return calls::fstat(descriptor, &opened) == 0 && statusOf(path.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

}  // namespace

bool isNamed(int descriptor, const std::string& path) {
    return isSame(descriptor, path, calls::lstat);
}

bool isLedTo(int descriptor, const std::string& path) {
    return isSame(descriptor, path, calls::stat);
}

}  // namespace rcp
