#include "launcher/core/arguments.h"

#include <algorithm>

namespace rcp {

int findOption(std::wstring_view option, const Arguments& arguments) {
    if (arguments.empty()) {
        return -1;
    }
    const auto found = std::find(arguments.begin() + 1, arguments.end(), option);
    return found == arguments.end() ? -1 : static_cast<int>(found - arguments.begin());
}

bool hasOption(std::wstring_view option, const Arguments& arguments) {
    return findOption(option, arguments) >= 0;
}

const Argument* optionValue(std::wstring_view option, const Arguments& arguments) {
    const int index = findOption(option, arguments);
    if (index < 0) {
        return nullptr;
    }
    const std::size_t value = static_cast<std::size_t>(index) + 1;
    if (value == arguments.size() || arguments[value] == L"-vmargs") {
        return nullptr;
    }
    return &arguments[value];
}

bool isRestart(const Arguments& arguments) {
    return hasOption(L"-restart", arguments);
}

bool isResetConfig(const Arguments& arguments) {
    return hasOption(L"-resetconfig", arguments);
}

bool isDebug(const Arguments& arguments) {
    return !isRestart(arguments) && hasOption(L"-debug", arguments);
}

bool isInitMUService(const Arguments& arguments) {
    return hasOption(L"-initMUService", arguments);
}

bool isDCommandOnly(const Arguments& arguments) {
    return hasOption(L"-dcommand_only", arguments);
}

bool isPipeDaemonCommand() {
    return false;
}

}  // namespace rcp
