#include "launcher/core/launch_arguments.h"

#include "launcher/core/launch_state.h"

namespace rcp {

Arguments launchArgs;
std::wstring eclipseSoPath;

void addArgToCommandLine(const Argument& argument, bool /*isValue*/) {
    if (bRestart && (argument == DEBUGARG || argument == CONSOLEARG)) {
        return;
    }
    launchArgs.push_back(argument);
}

void addPathToCommandLine(const Argument& path) {
    launchArgs.assign(1, path);
}

void setEclipseSoPath(const std::wstring& path) {
    eclipseSoPath = path;
}

}  // namespace rcp
