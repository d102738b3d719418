// Put in front of the C library of a launcher, stops it where it sleeps and right before it becomes the
// platform's program.
#include "record.h"

#include <unistd.h>

extern char** environ;

#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))

STANDIN_EXPORT unsigned sleep(unsigned /*seconds*/) {
    standin::hold();
    return 0;
}

STANDIN_EXPORT int execv(const char* path, char* const* argv) {
    standin::hold();
    return execve(path, argv, environ);
}
