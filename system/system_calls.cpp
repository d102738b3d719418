#include "system/system_calls.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

namespace rcp::calls {

int open(const char* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}
int openat(int directory, const char* path, int flags) {
    return ::openat(directory, path, flags);
}
int stat(const char* path, struct stat* status) {
    return ::stat(path, status);
}
int lstat(const char* path, struct stat* status) {
    return ::lstat(path, status);
}
int fstatat(int directory, const char* path, struct stat* status, int flags) {
    return ::fstatat(directory, path, status, flags);
}
char* realpath(const char* path) {
    return ::realpath(path, nullptr);
}
ssize_t readlink(const char* path, char* buffer, std::size_t size) {
    return ::readlink(path, buffer, size);
}
int mkdir(const char* path, mode_t mode) {
    return ::mkdir(path, mode);
}
int rename(const char* source, const char* target) {
    return ::rename(source, target);
}
int unlink(const char* path) {
    return ::unlink(path);
}
int unlinkat(int directory, const char* path, int flags) {
    return ::unlinkat(directory, path, flags);
}
int symlink(const char* target, const char* path) {
    return ::symlink(target, path);
}
int flock(int descriptor, int operation) {
    return ::flock(descriptor, operation);
}
pid_t fork() {
    return ::fork();
}

}  // namespace rcp::calls
