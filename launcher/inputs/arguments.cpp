#include "launcher/inputs/arguments.h"

#include "launcher/inputs/option_values.h"

#include <algorithm>
#include <iterator>

namespace rcp {
namespace {

constexpr std::wstring_view kValueOptions[] = {L"-application",
                                               L"-bundleIdentifier",
                                               L"-config",
                                               L"-configuration",
                                               L"-data",
                                               L"-dir",
                                               L"-maxargcnt",
                                               L"-nl",
                                               L"-perfJar",
                                               L"-personality",
                                               L"-plugincustomization",
                                               L"-product",
                                               L"-rcp_old_pid",
                                               L"-vm"};

bool isAppendedVm(const Argument& argument) {
    return argument == L"-vm" && !argument.origin.file && argument.origin.line == 0;
}

}  // namespace

std::optional<std::size_t> findOption(std::wstring_view option, const Arguments& arguments) {
    if (arguments.empty()) {
        return std::nullopt;
    }
    const auto found = std::find(arguments.begin() + 1, arguments.end(), option);
    return found == arguments.end() ? std::nullopt
                                    : std::optional<std::size_t>(found - arguments.begin());
}

bool hasOption(std::wstring_view option, const Arguments& arguments) {
    return findOption(option, arguments).has_value();
}

std::size_t endOfOptions(const Arguments& arguments) {
    return findOption(L"-vmargs", arguments).value_or(arguments.size());
}

const Argument* optionValue(std::wstring_view option, const Arguments& arguments) {
    const std::optional<std::size_t> index = findOption(option, arguments);
    const bool hasValue =
        index && *index + 1 < arguments.size() && canBeValue(arguments[*index + 1]);
    return hasValue ? &arguments[*index + 1] : nullptr;
}

bool canBeValue(const Argument& argument) {
    return argument != L"-vmargs" && !isAppendedVm(argument);
}

bool lacksValue(const Arguments& arguments, std::size_t index) {
    const bool isLast = index + 1 == arguments.size() || isAppendedVm(arguments[index + 1]);
    return index > 0 && isLast &&
           std::find(std::begin(kValueOptions), std::end(kValueOptions), arguments[index]) !=
               std::end(kValueOptions);
}

const Argument* getBundleIdentifier(const Arguments& arguments) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == L"-bundleIdentifier" && canBeValue(arguments[i + 1])) {
            return &arguments[i + 1];
        }
    }
    return nullptr;
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

bool isWaitMode(const Arguments& arguments) {
    return hasOption(L"-rcpLauncherWait", arguments);
}

}  // namespace rcp
