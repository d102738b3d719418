// The system calls of rcpinspect: rehearsed while a rehearsal is at work, real otherwise.
#include "system/system_calls.h"

#include "inspect/quiet_read.h"
#include "inspect/rehearsal/rehearsal.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

namespace rcp::calls {
namespace {

using inspect::currentRehearsal;
using inspect::LastLink;
using inspect::Rehearsal;

// A call that succeeds leaves errno alone, as the system's do: records are written with what an
// earlier failure left in it.
template <typename Call>
auto rehearsed(Call call) {
    const int before = errno;
    const auto result = call(*currentRehearsal());
    if (result >= 0) {
        errno = before;
    }
    return result;
}

// Calls `look` with the place of `path`; -1 when there is none.
template <typename Look>
auto lookAt(const char* path, LastLink last, Look look) {
    if (currentRehearsal() == nullptr) {
        return look(path);
    }
    return rehearsed([&](const Rehearsal& rehearsal) {
        const std::string place = rehearsal.placeOf(path, last);
        return place.empty() ? decltype(look(path)){-1} : look(place.c_str());
    });
}

}  // namespace

int open(const char* path, int flags, mode_t mode) {
    if (currentRehearsal() == nullptr) {
        const bool isReading = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) == 0;
        return isReading ? inspect::openQuietly(path, flags) : ::open(path, flags, mode);
    }
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.open(path, flags, mode); });
}
int openat(int directory, const char* path, int flags) {
    return currentRehearsal() == nullptr
               ? ::openat(directory, path, flags)
               : calls::open(currentRehearsal()->pathFrom(directory, path).c_str(), flags);
}
int stat(const char* path, struct stat* status) {
    return lookAt(path, LastLink::kFollowed,
                  [status](const char* place) { return ::stat(place, status); });
}
int lstat(const char* path, struct stat* status) {
    return lookAt(path, LastLink::kKept,
                  [status](const char* place) { return ::lstat(place, status); });
}
int fstatat(int directory, const char* path, struct stat* status, int flags) {
    return currentRehearsal() == nullptr
               ? ::fstatat(directory, path, status, flags)
               : calls::lstat(currentRehearsal()->pathFrom(directory, path).c_str(), status);
}
char* realpath(const char* path) {
    if (currentRehearsal() == nullptr) {
        return ::realpath(path, nullptr);
    }
    const int before = errno;
    const std::string resolved = currentRehearsal()->resolved(path);
    if (resolved.empty()) {
        return nullptr;
    }
    errno = before;
    return strdup(resolved.c_str());
}
ssize_t readlink(const char* path, char* buffer, std::size_t size) {
    return lookAt(path, LastLink::kKept,
                  [=](const char* place) { return ::readlink(place, buffer, size); });
}
int mkdir(const char* path, mode_t mode) {
    if (currentRehearsal() == nullptr) {
        return ::mkdir(path, mode);
    }
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.makeDirectory(path, mode); });
}
int rename(const char* source, const char* target) {
    if (currentRehearsal() == nullptr) {
        return ::rename(source, target);
    }
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.rename(source, target); });
}
int unlink(const char* path) {
    if (currentRehearsal() == nullptr) {
        return ::unlink(path);
    }
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.unlink(path); });
}
int unlinkat(int directory, const char* path, int flags) {
    if (currentRehearsal() == nullptr) {
        return ::unlinkat(directory, path, flags);
    }
    return rehearsed([&](Rehearsal& rehearsal) {
        const std::string whole = rehearsal.pathFrom(directory, path);
        return (flags & AT_REMOVEDIR) != 0 ? rehearsal.removeDirectory(whole)
                                           : rehearsal.unlink(whole);
    });
}
int symlink(const char* target, const char* path) {
    if (currentRehearsal() == nullptr) {
        return ::symlink(target, path);
    }
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.symlink(target, path); });
}
// Nobody else knows the copies, and what is only read is not to be kept from others.
int flock(int descriptor, int operation) {
    return currentRehearsal() == nullptr ? ::flock(descriptor, operation) : 0;
}
// The rehearsal plays the child, which looks after the lock, and never becomes the platform.
pid_t fork() {
    return currentRehearsal() == nullptr ? ::fork() : 0;
}

}  // namespace rcp::calls
