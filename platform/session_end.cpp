// logoff and shutdown: for a locked-down deployment. No step of a launch calls them.
#include "platform/preload.h"
#include "platform/process.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace rcp {
namespace {

constexpr char kDeploymentLibrary[] = "./lockdown.so";
constexpr char kRequestFile[] = "/tmp/obx_shutdown";

// The request is one record of two fixed fields, the rest of each filled with zeros.
struct ShutdownRequest {
    char command[256];
    char argument[256];
};

[[noreturn]] void endDesktopSession() {
    runProgram({"killall", "gnome-session"});
    exit(1);
}

// Everybody can write in /tmp, so a link planted under the name is never followed.
bool writeShutdownRequest() {
    const ShutdownRequest request{"shutdown", "1"};
    const int descriptor = open(
        kRequestFile, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return false;
    }
    const bool written = write(descriptor, &request, sizeof request) == ssize_t{sizeof request};
    return close(descriptor) == 0 && written;
}

}  // namespace

bool logoff() {
    void* library = dlopen(kDeploymentLibrary, RTLD_LAZY);
    if (library == nullptr) {
        endDesktopSession();
    }
    const auto entryPoint = reinterpret_cast<bool (*)()>(dlsym(library, "logoff"));
    if (entryPoint == nullptr) {
        endDesktopSession();
    }
    const bool result = entryPoint();
    dlclose(library);
    return result;
}

bool shutdown() {
    return writeShutdownRequest() && logoff();
}

}  // namespace rcp
