#include "launcher/hand_off.h"

#include "base/system_calls.h"
#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/platform_lock.h"
#include "platform/install_location.h"
#include "platform/platform.h"
#include "platform/signals.h"
#include "platform/text.h"

#include <dlfcn.h>
#include <errno.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

namespace rcp {

char** userVMarg = nullptr;

namespace {

using SetInitialArgs = void (*)(int argc, char** argv, char* library);
using Run = int (*)(int argc, char** argv, char** vmArgs);

[[noreturn]] void libraryFailed(const std::string& path, const char* reason) {
    fatal(noReason(), "Error: invokeEclipseDylib: %s cannot be used: %s", path,
          reason == nullptr ? "" : reason);
}

void* entryPoint(void* library, const char* name, const std::string& path) {
    void* symbol = dlsym(library, name);
    if (symbol == nullptr) {
        libraryFailed(path, dlerror());
    }
    return symbol;
}

// The child: the only holder of the lock from the hand-off on. The parent's id was taken before the
// fork: asked for afterwards, that of a parent that has died already would be process 1's.
void watchHandOff(const Arguments& arguments, const NarrowArguments& launchArguments, pid_t parent,
                  Gate& gate) {
    populateLockFile(parent);
    gate.wait();
    unlockLockFile();
    if (hasOption(L"-rcpLauncherWait", arguments) ||
        haveLaunchOption("-console", launchArguments.texts())) {
        // Asked for by those who wait for the platform. The parent is no child of this process, so
        // the answer comes at once; the callers have come to rely on that.
        waitpid(parent, nullptr, 0);
    }
}

// The parent. In the direct Java shape there is no library, whatever the hand-off.
void becomePlatform(const std::wstring& library, NarrowArguments& launchArguments, Gate& gate) {
    closeLockFile();
    if (invokeDylib && !library.empty()) {
        invokeEclipseDylib(library, launchArguments, gate);
        return;
    }
    becomeProgram(launchArguments);
}

}  // namespace

void launchEclipse(const Arguments& arguments, const CommandLine& line) {
    if (observer != nullptr) {
        observer->handedOff(line);
    }
    NarrowArguments launchArguments(line.arguments());
    logLaunchArguments("ZYPRA0132I: ===== Begin Launch Parameters =====", launchArguments,
                       "ZYPRA0133I: ===== End Launch Parameters =====");
    Gate gate;
    const pid_t self = getpid();
    const pid_t child = calls::fork();
    if (child == 0) {
        watchHandOff(arguments, launchArguments, self, gate);
        return;
    }
    if (child < 0) {
        report(because(errno), "Error: fork: the platform's process id is not recorded");
        unlockLockFile();  // nobody else will
    }
    becomePlatform(line.library(), launchArguments, gate);
}

void invokeEclipseDylib(const std::wstring& libraryPath, NarrowArguments& arguments, Gate& gate) {
    std::string path = toNarrow(libraryPath);
    void* library = dlopen(path.c_str(), RTLD_NOW);
    if (library == nullptr) {
        libraryFailed(path, dlerror());
    }
    const auto setInitialArgs =
        reinterpret_cast<SetInitialArgs>(entryPoint(library, "setInitialArgs", path));
    const auto run = reinterpret_cast<Run>(entryPoint(library, "run", path));

    restoreFileSizeSignal();
    // The library keeps the first list, to start the program again if it must, and takes options
    // out of the second: each gets an array of its own.
    std::vector<char*> initial(arguments.data(), arguments.data() + arguments.count() + 1);
    setInitialArgs(arguments.count(), initial.data(), path.data());
    int count = arguments.count();
    parseArgs(count, arguments.data(), 1);
    gate.open();
    run(count, arguments.data(), userVMarg);
}

void parseArgs(int& argc, char** argv, int mode) {
    argv[argc] = nullptr;
    for (int i = 0; i < argc; ++i) {
        if (strcasecmp(argv[i], "-vmargs") == 0) {
            if (mode == 1) {
                userVMarg = &argv[i + 1];
            }
            argv[i] = nullptr;
            argc = i;
        }
    }
}

bool haveLaunchOption(const std::string& option, const std::vector<std::string>& arguments) {
    return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
}

void initInvokeDylib(const PropertyList& properties) {
    const std::string path = launcherExecutable();
    if (path.substr(path.rfind('/') + 1) != "rcplauncher") {
        invokeDylib = true;
        return;
    }
    if (const std::wstring* value = findProperty(L"invoke.eclipse.dylib", properties)) {
        invokeDylib = *value == L"1";
        return;
    }
    invokeDylib = isInProcessVersion(platform::productVersion());
}

bool isInProcessVersion(const std::string& version) {
    const char* const end = version.data() + version.size();
    unsigned major = 0;
    unsigned minor = 0;
    const char* dot = std::from_chars(version.data(), end, major).ptr;
    if (dot != end && *dot == '.') {
        std::from_chars(dot + 1, end, minor);
    }
    return major == 10 && minor == 15;
}

}  // namespace rcp
