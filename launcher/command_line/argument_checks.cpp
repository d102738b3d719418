#include "launcher/command_line/argument_checks.h"

#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"

#include <wchar.h>

#include <string_view>

namespace rcp {
namespace {

struct ForbiddenText {
    std::wstring_view text;
    Message<> message;
};

// The search paths of the JVM decide which code runs; only the installation may set them.
constexpr ForbiddenText kForbiddenTexts[] = {
    {keys::kJvmLibraryPath, messages.jvmLibraryPathForbidden},
    {keys::kJavaLibraryPath, messages.javaLibraryPathForbidden},
    {keys::kJavaHome, messages.javaHomeForbidden},
};

}  // namespace

void validateIfUrlHandlerLaunch(const Arguments& arguments) {
    if (!hasOption(options::kMaxArgCount, arguments)) {
        return;
    }
    const std::size_t count = arguments.size() - (isRestart(arguments) ? 1 : 0);
    const Argument* expected = optionValue(options::kMaxArgCount, arguments);
    if ((expected == nullptr ? 0 : wcstoul(expected->text.c_str(), nullptr, 10)) != count) {
        fatal(noReason().from(expected == nullptr ? Origin() : expected->origin),
              messages.argumentCountWrong);
    }
}

void validateThatDoubleQuotesNotUsed(const Arguments& arguments) {
    for (const Argument& argument : arguments) {
        if (argument.text.find(L'"') != std::wstring::npos) {
            fatal(noReason().from(argument.origin), messages.doubleQuoteForbidden);
        }
    }
}

void validateNoJavaLibraryPath(const Arguments& arguments) {
    for (const Argument& argument : arguments) {
        for (const ForbiddenText& forbidden : kForbiddenTexts) {
            if (argument.text.find(forbidden.text) != std::wstring::npos) {
                fatal(noReason().from(argument.origin), forbidden.message);
            }
        }
    }
}

void validateJvmArguments(const Arguments& arguments, const VmArgumentMap& vmargMap) {
    Arguments chosen;
    if (const std::optional<std::size_t> separator = findOption(options::kVmargs, arguments)) {
        chosen.assign(arguments.begin() + static_cast<std::ptrdiff_t>(*separator) + 1,
                      arguments.end());
    }
    for (const auto& [name, argument] : vmargMap) {
        chosen.push_back(argument);
    }
    std::erase_if(chosen, [](const Argument& one) { return !one.origin.isCommandLine(); });
    validateThatDoubleQuotesNotUsed(chosen);
    validateNoJavaLibraryPath(chosen);
}

void validateInstallerState(const LaunchInputs& inputs) {
    const auto manifest = findOption(options::kProvManifest, inputs.arguments);
    if (manifest && inputs.runningPlatform) {
        fatal(noReason().from(inputs.arguments[*manifest].origin), messages.installingWhileRunning,
              std::to_wstring(*inputs.runningPlatform));
    }
}

}  // namespace rcp
