// The calls by which files are found and changed, and the one that makes a second process. Everything above goes through them, so that one
// program can carry a launch out (system/system_calls.cpp makes the calls) and another can rehearse
// it (inspect/rehearsal/ keeps the changes to itself and shows them to whoever reads afterwards).
//
// Each does what the system's function of its name does, errno included.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace rcp::calls {

int open(const char* path, int flags, mode_t mode = 0);
/// Without O_CREAT.
int openat(int directory, const char* path, int flags);
int stat(const char* path, struct stat* status);
int lstat(const char* path, struct stat* status);
/// With AT_SYMLINK_NOFOLLOW.
int fstatat(int directory, const char* path, struct stat* status, int flags);
/// realpath(3) with its result allocated; the caller frees it.
char* realpath(const char* path);
ssize_t readlink(const char* path, char* buffer, std::size_t size);
int mkdir(const char* path, mode_t mode);
int rename(const char* source, const char* target);
int unlink(const char* path);
int unlinkat(int directory, const char* path, int flags);
int symlink(const char* target, const char* path);
int flock(int descriptor, int operation);
pid_t fork();

}  // namespace rcp::calls
