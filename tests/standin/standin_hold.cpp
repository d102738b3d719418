// Put in front of the C library of a launcher, stops it right before it becomes the platform's
// program.
#include "record.h"

#include <unistd.h>

extern char** environ;

extern "C" __attribute__((visibility("default"))) int execv(const char* path, char* const* argv) {
    standin::hold();
    return execve(path, argv, environ);
}
