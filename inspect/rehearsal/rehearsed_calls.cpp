// The calls of a rehearsal in the place of the system's, and those of rcpinspect for what it only reads.
#include "inspect/rehearsal/rehearsed_calls.h"

#include "inspect/quiet_read.h"
#include "inspect/rehearsal/rehearsal.h"
#include "inspect/rehearsal/staged_tree.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace rcp::inspect {
namespace {

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
    return rehearsed([&](const Rehearsal& rehearsal) {
        const std::string place = rehearsal.placeOf(path, last);
        return place.empty() ? decltype(look(path)){-1} : look(place.c_str());
    });
}

std::string pathFrom(int directory, const char* path) {
    return currentRehearsal()->pathFrom(directory, path);
}

int openRehearsed(const char* path, int flags, mode_t mode) {
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.open(path, flags, mode); });
}
int openatRehearsed(int directory, const char* path, int flags) {
    return openRehearsed(pathFrom(directory, path).c_str(), flags, 0);
}
int statRehearsed(const char* path, struct stat* status) {
    return lookAt(path, LastLink::kFollowed,
                  [status](const char* place) { return ::stat(place, status); });
}
int lstatRehearsed(const char* path, struct stat* status) {
    return lookAt(path, LastLink::kKept,
                  [status](const char* place) { return ::lstat(place, status); });
}
int fstatatRehearsed(int directory, const char* path, struct stat* status, int /*flags*/) {
    return lstatRehearsed(pathFrom(directory, path).c_str(), status);
}
char* realpathRehearsed(const char* path) {
    const int before = errno;
    const std::string resolved = currentRehearsal()->resolved(path);
    if (resolved.empty()) {
        return nullptr;
    }
    errno = before;
    return strdup(resolved.c_str());
}
ssize_t readlinkRehearsed(const char* path, char* buffer, std::size_t size) {
    return lookAt(path, LastLink::kKept,
                  [=](const char* place) { return ::readlink(place, buffer, size); });
}
int mkdirRehearsed(const char* path, mode_t mode) {
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.makeDirectory(path, mode); });
}
int renameRehearsed(const char* source, const char* target) {
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.rename(source, target); });
}
int unlinkRehearsed(const char* path) {
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.unlink(path); });
}
int unlinkatRehearsed(int directory, const char* path, int flags) {
    return rehearsed([&](Rehearsal& rehearsal) {
        const std::string whole = pathFrom(directory, path);
        return (flags & AT_REMOVEDIR) != 0 ? rehearsal.removeDirectory(whole)
                                           : rehearsal.unlink(whole);
    });
}
int symlinkRehearsed(const char* target, const char* path) {
    return rehearsed([&](Rehearsal& rehearsal) { return rehearsal.symlink(target, path); });
}

// Of a file that is longer than anybody writes one the beginning, so that none takes long; whoever examines it
// tells of that.
ssize_t readBounded(int descriptor, void* buffer, std::size_t size) {
    const int before = errno;
    const off_t at = lseek(descriptor, 0, SEEK_CUR);
    errno = before;
    const std::size_t done = at < 0 ? 0 : static_cast<std::size_t>(at);  // a pipe has no place
    return ::read(
        descriptor, buffer,
        at < 0 ? size : std::min(size, kLongestSettings - std::min(kLongestSettings, done)));
}

int openForReadingQuietly(const char* path, int flags, mode_t mode) {
    const bool isReading = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) == 0;
    return isReading ? openQuietly(placeOf(path), flags) : kSystemsOwnCalls.open(path, flags, mode);
}
int statQuietly(const char* path, struct stat* status) {
    return ::stat(placeOf(path).c_str(), status);
}
int lstatQuietly(const char* path, struct stat* status) {
    return ::lstat(placeOf(path, LastLink::kKept).c_str(), status);
}
ssize_t readlinkQuietly(const char* path, char* buffer, std::size_t size) {
    return ::readlink(placeOf(path, LastLink::kKept).c_str(), buffer, size);
}
// Without links there as well: the place of what a link leads to is found.
char* realpathQuietly(const char* path) {
    char* const resolved = kSystemsOwnCalls.realpath(placeOf(path).c_str());
    if (resolved == nullptr) {
        return nullptr;
    }
    const std::string plain = pathOfPlace(resolved);
    free(resolved);
    return strdup(plain.c_str());
}

}  // namespace

SystemCalls quietCalls() {
    SystemCalls calls = kSystemsOwnCalls;
    calls.open = openForReadingQuietly;
    calls.read = readBounded;
    calls.stat = statQuietly;
    calls.lstat = lstatQuietly;
    calls.readlink = readlinkQuietly;
    calls.realpath = realpathQuietly;
    return calls;
}

SystemCalls rehearsedCalls() {
    SystemCalls calls = kSystemsOwnCalls;
    calls.open = openRehearsed;
    calls.openat = openatRehearsed;
    calls.stat = statRehearsed;
    calls.lstat = lstatRehearsed;
    calls.fstatat = fstatatRehearsed;
    calls.realpath = realpathRehearsed;
    calls.readlink = readlinkRehearsed;
    calls.mkdir = mkdirRehearsed;
    calls.rename = renameRehearsed;
    calls.unlink = unlinkRehearsed;
    calls.unlinkat = unlinkatRehearsed;
    calls.symlink = symlinkRehearsed;
    calls.read = readBounded;
    // Nobody else knows the copies, and what is only read is not to be kept from others.
    calls.flock = [](int, int) { return 0; };
    // The rehearsal plays the child, which looks after the lock, and never becomes the platform.
    calls.fork = [] { return pid_t{0}; };
    return calls;
}

}  // namespace rcp::inspect
