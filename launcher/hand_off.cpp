#include "launcher/hand_off.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "launcher/instance/running_provisioning.h"
#include "launcher/vocabulary/options.h"
#include "platform/signals.h"
#include "platform/text.h"

#include <dlfcn.h>
#include <errno.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

namespace rcp {

namespace {

using SetInitialArgs = void (*)(int argc, char** argv, char* library);
using Run = int (*)(int argc, char** argv, char** vmArgs);

[[noreturn]] void libraryFailed(const std::string& path, const char* reason) {
    fatal(noReason(), messages.libraryNotUsable, path, reason == nullptr ? "" : reason);
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
void watchHandOff(const Launch& launch, const NarrowArguments& launchArguments, pid_t parent,
                  Gate& gate) {
    launch.lock->record(parent);
    gate.wait();
    launch.lock->release();
    if (isWaitMode(launch.arguments) || haveLaunchOption(CONSOLEARG, launchArguments.texts())) {
        // Asked for by those who wait for the platform. The parent is no child of this process, so
        // the answer comes at once; the callers have come to rely on that.
        waitpid(parent, nullptr, 0);
    }
}

// The parent. In the direct Java shape there is no library, whatever the hand-off.
void becomePlatform(Launch& launch, NarrowArguments& launchArguments, Gate& gate) {
    launch.lock->leaveToChild();
    const std::wstring& library = launch.plan->line.library();
    if (launch.inputs.traits.invokeDylib && !library.empty()) {
        invokeEclipseDylib(library, launchArguments, gate);
        return;
    }
    becomeProgram(launchArguments);
}

}  // namespace

void handOff(Launch& launch) {
    if (launch.plan->kind == LaunchKind::kPlatform) {
        launch.note.reset();  // nothing is written under a temporary name any more
        launchEclipse(launch);
        return;
    }
    doProvisioning(launch);
    launch.lock->release();
    endLaunch(0);
}

void launchEclipse(Launch& launch) {
    NarrowArguments launchArguments(launch.plan->line.arguments());
    logLaunchArguments(messages.launchParametersBegin, launchArguments,
                       messages.launchParametersEnd);
    Gate gate;
    const pid_t self = getpid();
    const pid_t child = calls::fork();
    if (child == 0) {
        watchHandOff(launch, launchArguments, self, gate);
        return;
    }
    if (child < 0) {
        report(because(errno), messages.platformIdNotRecorded);
        launch.lock->release();  // nobody else will
    }
    becomePlatform(launch, launchArguments, gate);
}

void doProvisioning(Launch& launch) {
    NarrowArguments command(launch.plan->line.arguments());
    logLaunchArguments(messages.provisioningParametersBegin, command,
                       messages.provisioningParametersEnd);
    recordProvisioning(provisioningFileOf(launch.inputs.workspace));
    launch.note.reset();
    Gate gate;
    const pid_t child = calls::fork();
    if (child == 0) {
        // Holds the lock until the parent has recorded the id: only then may the next launcher
        // look.
        waitpid(getpid(), nullptr, 0);
        gate.wait();
        return;
    }
    launch.lock->record(child);
    gate.open();
    becomeProgram(command);
    if (child > 0) {
        // It runs this launcher's executable: as long as it is there, its recorded id is a platform's.
        waitpid(child, nullptr, 0);
    }
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
    char** const vmArguments = parseArgs(count, arguments.data());
    gate.open();
    run(count, arguments.data(), vmArguments);
}

char** parseArgs(int& argc, char** argv) {
    argv[argc] = nullptr;
    char** const end = argv + argc;
    const std::string option = toNarrow(std::wstring(options::kVmargs));
    char** const separator = std::find_if(
        argv, end, [&](const char* text) { return strcasecmp(text, option.c_str()) == 0; });
    if (separator == end) {
        return nullptr;
    }
    *separator = nullptr;
    argc = static_cast<int>(separator - argv);
    return separator + 1;
}

bool haveLaunchOption(OptionName option, const std::vector<std::string>& arguments) {
    const std::string text = toNarrow(std::wstring(option));
    return std::find(arguments.begin(), arguments.end(), text) != arguments.end();
}

}  // namespace rcp
