// Put in front of the C library of a launcher, stops it and the process that it forks in front of
// each call by which launchers of a workspace affect one another, until whoever listens at the socket
// RCP_STANDIN_STEPS (an abstract name) answers. What is told is "LAUNCHER STEP" or "LAUNCHER child:
// STEP", with the number in RCP_STANDIN_LAUNCHER. Nothing sleeps: a second passes when it is allowed.
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))

extern char** environ;

namespace {

enum class Lock { kUntouched, kTaken, kCompared };

bool hasBegun = false;
bool hasForked = false;
bool isChild = false;
int lockFile = -1;
Lock lock = Lock::kUntouched;

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool endsWith(const char* text, const char* end) {
    const size_t length = strlen(text);
    const size_t wanted = strlen(end);
    return length >= wanted && strcmp(text + length - wanted, end) == 0;
}

// The first byte of the answer; 0 without one, and in programs that are no launcher.
char tell(const char* step) {
    const char* name = getenv("RCP_STANDIN_STEPS");
    const char* launcher = getenv("RCP_STANDIN_LAUNCHER");
    if (name == nullptr || launcher == nullptr ||
        strcmp(program_invocation_short_name, "rcplauncher") != 0) {
        return 0;
    }
    const int savedErrno = errno;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (void)snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "%s", name);
    const socklen_t length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + strlen(address.sun_path + 1));
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    char answer = 0;
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), length) == 0) {
        char text[100];
        const int size =
            snprintf(text, sizeof text, "%s %s%s", launcher, isChild ? "child: " : "", step);
        if (send(connection, text, static_cast<size_t>(size), MSG_NOSIGNAL) == size) {
            (void)recv(connection, &answer, 1, 0);
        }
    }
    (void)next<int(int)>("close")(connection);
    errno = savedErrno;
    return answer;
}

void tellOfOpening(const char* path, int flags) {
    const bool isLockFile = endsWith(path, "/.rcp.lock");
    const bool isMade = (flags & O_CREAT) != 0;
    if (isMade && isLockFile && !hasBegun) {
        hasBegun = true;
        tell("starts");
    } else if (isMade && strstr(path, "/.rcp.provisioning") != nullptr) {
        tell("recordProvisioning");
    } else if (!isMade && lock == Lock::kCompared &&
               (isLockFile || endsWith(path, "/.rcp.provisioning"))) {
        lock = Lock::kUntouched;
        tell("decides");
    }
}

int openFile(const char* function, const char* path, int flags, mode_t mode) {
    tellOfOpening(path, flags);
    const int file = next<int(const char*, int, ...)>(function)(path, flags, mode);
    if ((flags & O_CREAT) != 0 && endsWith(path, "/.rcp.lock")) {
        lockFile = file;
    }
    return file;
}

void tellOfLooking(const char* path) {
    if (lock == Lock::kTaken && endsWith(path, "/.rcp.lock")) {
        lock = Lock::kCompared;
        tell("isLedTo");
    }
}

}  // namespace

STANDIN_EXPORT int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openFile("open", path, flags, mode);
}

STANDIN_EXPORT int flock(int file, int operation) noexcept {
    if (file != lockFile) {  // a file that is being written has a lock of its own
        return next<int(int, int)>("flock")(file, operation);
    }
    const bool isRelease = operation == LOCK_UN;
    tell(isRelease ? "unlockLockFile" : "lockExclusively");
    const int result = next<int(int, int)>("flock")(file, operation);
    lock = isRelease ? Lock::kUntouched : Lock::kTaken;
    return result;
}

STANDIN_EXPORT int stat(const char* path, struct stat* status) noexcept {
    tellOfLooking(path);
    return next<int(const char*, struct stat*)>("stat")(path, status);
}

STANDIN_EXPORT int lstat(const char* path, struct stat* status) noexcept {
    tellOfLooking(path);
    return next<int(const char*, struct stat*)>("lstat")(path, status);
}

STANDIN_EXPORT ssize_t pread(int file, void* bytes, size_t size, off_t offset) {
    if (file == lockFile && lock == Lock::kCompared) {
        lock = Lock::kUntouched;
        tell("decides");
    }
    return next<ssize_t(int, void*, size_t, off_t)>("pread")(file, bytes, size, offset);
}

STANDIN_EXPORT ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    const bool records = file == lockFile && hasForked;
    if (records) {
        tell("populateLockFile");
    }
    const ssize_t result =
        next<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, size, offset);
    if (records && isChild) {
        tell("has recorded");
    }
    return result;
}

STANDIN_EXPORT pid_t fork() noexcept {
    hasForked = true;
    if (tell("fork") == 'f') {
        errno = EAGAIN;
        return -1;
    }
    const pid_t child = next<pid_t()>("fork")();
    if (child == 0) {
        isChild = true;
        tell("begins");
    }
    return child;
}

STANDIN_EXPORT int close(int file) {
    if (file == lockFile && file >= 0 && hasForked && !isChild) {
        tell("closeLockFile");
        lockFile = -1;
    }
    return next<int(int)>("close")(file);
}

STANDIN_EXPORT int execv(const char* path, char* const* arguments) noexcept {
    tell("becomes");
    return execve(path, arguments, environ);
}

STANDIN_EXPORT void* dlopen(const char* file, int mode) noexcept {
    if (file != nullptr && strstr(file, "eclipse_1615") != nullptr) {
        tell("becomes");
    }
    return next<void*(const char*, int)>("dlopen")(file, mode);
}

STANDIN_EXPORT unsigned sleep(unsigned /*seconds*/) {
    tell("sleeps");
    return 0;
}

namespace {

__attribute__((destructor)) void tellOfEnd() {
    if (isChild) {
        tell("endLaunch");
    }
}

}  // namespace
