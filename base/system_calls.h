// The system calls by which files and processes are found and changed, as one table. A launch makes them
// as they are; a rehearsal (inspect/rehearsal/) puts calls in their place that keep the changes to
// themselves, and a test some that fail.
//
// Each does what the system's function of its name does, errno included.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace rcp {

struct SystemCalls {
    int (*open)(const char* path, int flags, mode_t mode);
    int (*openat)(int directory, const char* path, int flags);  // without O_CREAT
    int (*stat)(const char* path, struct stat* status);
    int (*lstat)(const char* path, struct stat* status);
    int (*fstatat)(int directory, const char* path, struct stat* status, int flags);
    int (*fstat)(int descriptor, struct stat* status);
    char* (*realpath)(const char* path);  // allocated; the caller frees it
    char* (*getcwd)(char* buffer, std::size_t size);
    ssize_t (*readlink)(const char* path, char* buffer, std::size_t size);
    int (*mkdir)(const char* path, mode_t mode);
    int (*rename)(const char* source, const char* target);
    int (*unlink)(const char* path);
    int (*unlinkat)(int directory, const char* path, int flags);
    int (*symlink)(const char* target, const char* path);
    int (*flock)(int descriptor, int operation);
    ssize_t (*read)(int descriptor, void* buffer, std::size_t size);
    ssize_t (*pread)(int descriptor, void* buffer, std::size_t size, off_t offset);
    ssize_t (*write)(int descriptor, const void* bytes, std::size_t size);
    ssize_t (*pwrite)(int descriptor, const void* bytes, std::size_t size, off_t offset);
    int (*ftruncate)(int descriptor, off_t size);
    int (*fchmod)(int descriptor, mode_t mode);
    int (*pipe)(int* ends);  // both ends close-on-exec
    pid_t (*fork)();
    int (*execv)(const char* path, char* const* arguments);
    unsigned (*sleep)(unsigned seconds);
};

/// The calls themselves.
extern const SystemCalls kSystemsOwnCalls;

/// The calls that are made: the system's own unless somebody has put others in their place.
extern SystemCalls systemCalls;

/// Other calls for a while.
class InstalledCalls {
  public:
    explicit InstalledCalls(const SystemCalls& calls) : former_(systemCalls) {
        systemCalls = calls;
    }
    InstalledCalls(const InstalledCalls&) = delete;
    InstalledCalls& operator=(const InstalledCalls&) = delete;
    InstalledCalls(InstalledCalls&&) = delete;
    InstalledCalls& operator=(InstalledCalls&&) = delete;
    ~InstalledCalls() { systemCalls = former_; }

  private:
    SystemCalls former_;
};

// The calls under their own names, for those who make them.
namespace calls {

inline int open(const char* path, int flags, mode_t mode = 0) {
    return systemCalls.open(path, flags, mode);
}
inline int openat(int directory, const char* path, int flags) {
    return systemCalls.openat(directory, path, flags);
}
inline int stat(const char* path, struct stat* status) {
    return systemCalls.stat(path, status);
}
inline int lstat(const char* path, struct stat* status) {
    return systemCalls.lstat(path, status);
}
inline int fstatat(int directory, const char* path, struct stat* status, int flags) {
    return systemCalls.fstatat(directory, path, status, flags);
}
inline int fstat(int descriptor, struct stat* status) {
    return systemCalls.fstat(descriptor, status);
}
inline char* realpath(const char* path) {
    return systemCalls.realpath(path);
}
inline char* getcwd(char* buffer, std::size_t size) {
    return systemCalls.getcwd(buffer, size);
}
inline ssize_t readlink(const char* path, char* buffer, std::size_t size) {
    return systemCalls.readlink(path, buffer, size);
}
inline int mkdir(const char* path, mode_t mode) {
    return systemCalls.mkdir(path, mode);
}
inline int rename(const char* source, const char* target) {
    return systemCalls.rename(source, target);
}
inline int unlink(const char* path) {
    return systemCalls.unlink(path);
}
inline int unlinkat(int directory, const char* path, int flags) {
    return systemCalls.unlinkat(directory, path, flags);
}
inline int symlink(const char* target, const char* path) {
    return systemCalls.symlink(target, path);
}
inline int flock(int descriptor, int operation) {
    return systemCalls.flock(descriptor, operation);
}
inline ssize_t read(int descriptor, void* buffer, std::size_t size) {
    return systemCalls.read(descriptor, buffer, size);
}
inline ssize_t pread(int descriptor, void* buffer, std::size_t size, off_t offset) {
    return systemCalls.pread(descriptor, buffer, size, offset);
}
inline ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    return systemCalls.write(descriptor, bytes, size);
}
inline ssize_t pwrite(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    return systemCalls.pwrite(descriptor, bytes, size, offset);
}
inline int ftruncate(int descriptor, off_t size) {
    return systemCalls.ftruncate(descriptor, size);
}
inline int fchmod(int descriptor, mode_t mode) {
    return systemCalls.fchmod(descriptor, mode);
}
inline int pipe(int* ends) {
    return systemCalls.pipe(ends);
}
inline pid_t fork() {
    return systemCalls.fork();
}
inline int execv(const char* path, char* const* arguments) {
    return systemCalls.execv(path, arguments);
}
inline unsigned sleep(unsigned seconds) {
    return systemCalls.sleep(seconds);
}

}  // namespace calls
}  // namespace rcp
