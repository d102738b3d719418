#include "base/system_calls.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

namespace rcp {

namespace {

int closedOnExec(int* ends) {
#ifdef __linux__
    return pipe2(ends, O_CLOEXEC);
#else
    // macOS has no pipe2(2). There is one thread, so no other can start a program between the calls.
    const int result = ::pipe(ends);
    for (int* end = ends; result == 0 && end != ends + 2; ++end) {
        (void)fcntl(*end, F_SETFD, FD_CLOEXEC);
    }
    return result;
#endif
}

}  // namespace

// Where the system's function takes more, or another number of arguments, a function of ours stands in.
constexpr SystemCalls kSystemsOwnCalls = {
    .open = [](const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); },
    .openat = [](int directory, const char* path,
                 int flags) { return ::openat(directory, path, flags); },
    .stat = ::stat,
    .lstat = ::lstat,
    .fstatat = ::fstatat,
    .fstat = ::fstat,
    .realpath = [](const char* path) { return ::realpath(path, nullptr); },
    .getcwd = ::getcwd,
    .readlink = ::readlink,
    .mkdir = ::mkdir,
    .rename = ::rename,
    .unlink = ::unlink,
    .unlinkat = ::unlinkat,
    .symlink = ::symlink,
    .flock = ::flock,
    .read = ::read,
    .pread = ::pread,
    .write = ::write,
    .pwrite = ::pwrite,
    .ftruncate = ::ftruncate,
    .fchmod = ::fchmod,
    .pipe = closedOnExec,
    .fork = ::fork,
    .execv = ::execv,
    .sleep = ::sleep,
};

constinit SystemCalls systemCalls = kSystemsOwnCalls;

}  // namespace rcp
