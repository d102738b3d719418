#include "launcher/command_line/argument_checks.h"

#include "diagnostics/svc_debug.h"

#include <wchar.h>

#include <string_view>

namespace rcp {
namespace {

struct ForbiddenText {
    std::wstring_view text;
    const char* message;
};

// The search paths of the JVM decide which code runs; only the installation may set them.
constexpr ForbiddenText kForbiddenTexts[] = {
    {L"jvm.library.path",
     "ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not allowed."},
    {L"java.library.path",
     "ZYPRA0191E: rcplauncher invoked with arg containing \"java.library.path\" - not allowed."},
    {L"java.home",
     "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not allowed."},
};

}  // namespace

void validateIfUrlHandlerLaunch(const Arguments& arguments) {
    if (!hasOption(L"-maxargcnt", arguments)) {
        return;
    }
    const std::size_t count = arguments.size() - (isRestart(arguments) ? 1 : 0);
    const Argument* expected = optionValue(L"-maxargcnt", arguments);
    if ((expected == nullptr ? 0 : wcstoul(expected->text.c_str(), nullptr, 10)) != count) {
        fatal(noReason(),
              "ZYPRA0069E: rcplauncher invoked with an invalid URL handler action - bad argument "
              "count.");
    }
}

void validateThatDoubleQuotesNotUsed(const Arguments& arguments) {
    for (const Argument& argument : arguments) {
        if (argument.text.find(L'"') != std::wstring::npos) {
            fatal(noReason(),
                  "ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument.");
        }
    }
}

void validateNoJavaLibraryPath(const Arguments& arguments) {
    for (const Argument& argument : arguments) {
        for (const ForbiddenText& forbidden : kForbiddenTexts) {
            if (argument.text.find(forbidden.text) != std::wstring::npos) {
                fatal(noReason(), forbidden.message);
            }
        }
    }
}

void validateJvmArguments(const Arguments& arguments, const VmArgumentMap& vmargMap) {
    Arguments chosen;
    if (const std::optional<std::size_t> separator = findOption(L"-vmargs", arguments)) {
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
    if (hasOption(L"-provManifest", inputs.arguments) && inputs.runningPlatform) {
        fatal(noReason(), "ZYPRA0122E: Attempting to install while process %ls is running.",
              std::to_wstring(*inputs.runningPlatform));
    }
}

}  // namespace rcp
