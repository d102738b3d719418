#include "launcher/inputs/arguments.h"

#include "launcher/inputs/option_values.h"
#include "launcher/vocabulary/options.h"

#include <algorithm>

namespace rcp {
namespace {

bool isAppendedVm(const Argument& argument) {
    return argument == options::kVm && argument.origin.isComputed();
}

}  // namespace

std::optional<std::size_t> findOption(OptionName option, const Arguments& arguments) {
    if (arguments.empty()) {
        return std::nullopt;
    }
    const auto found = std::find(arguments.begin() + 1, arguments.end(), option);
    return found == arguments.end() ? std::nullopt
                                    : std::optional<std::size_t>(found - arguments.begin());
}

bool hasOption(OptionName option, const Arguments& arguments) {
    return findOption(option, arguments).has_value();
}

std::size_t endOfOptions(const Arguments& arguments) {
    return findOption(options::kVmargs, arguments).value_or(arguments.size());
}

const Argument* optionValue(OptionName option, const Arguments& arguments) {
    const std::optional<std::size_t> index = findOption(option, arguments);
    const bool hasValue =
        index && *index + 1 < arguments.size() && canBeValue(arguments[*index + 1]);
    return hasValue ? &arguments[*index + 1] : nullptr;
}

bool canBeValue(const Argument& argument) {
    return argument != options::kVmargs && !isAppendedVm(argument);
}

bool lacksValue(const Arguments& arguments, std::size_t index) {
    const bool isLast = index + 1 == arguments.size() || isAppendedVm(arguments[index + 1]);
    return index > 0 && isLast && takesValue(arguments[index].text);
}

const Argument* getBundleIdentifier(const Arguments& arguments) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == options::kBundleIdentifier && canBeValue(arguments[i + 1])) {
            return &arguments[i + 1];
        }
    }
    return nullptr;
}

bool isRestart(const Arguments& arguments) {
    return hasOption(options::kRestart, arguments);
}

bool isResetConfig(const Arguments& arguments) {
    return hasOption(options::kResetConfig, arguments);
}

bool isDebug(const Arguments& arguments) {
    return !isRestart(arguments) && hasOption(options::kDebug, arguments);
}

bool isWaitMode(const Arguments& arguments) {
    return hasOption(options::kLauncherWait, arguments);
}

}  // namespace rcp
