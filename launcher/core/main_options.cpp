#include "launcher/core/main_options.h"

#include "diagnostics/svc_debug.h"
#include "launcher/core/install_configuration.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/option_values.h"
#include "launcher/core/platform_lock.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>

#include <algorithm>
#include <string_view>

namespace rcp {
namespace {

struct OptionRule {
    std::wstring_view option;
    CopyRule rule;
};

// Every other argument is copied as it stands.
constexpr OptionRule kOptionRules[] = {
    {L"-data", CopyRule::kDropWithValue},  // the launcher writes its own
    {L"-configuration", CopyRule::kDropWithValue},
    {L"-plugincustomization", CopyRule::kCopyWithValue},
    {L"-application", CopyRule::kCopyWithValue},
    {L"-product", CopyRule::kCopyWithValue},
    {L"-personality", CopyRule::kCopyWithValue},
    {L"-vm", CopyRule::kDropWithValue},
    {L"-rcp_old_pid", CopyRule::kDropWithValue},
    {L"-restart", CopyRule::kDrop},
    {L"-resetconfig", CopyRule::kDrop},
};

// The user's arguments in front of "-vmargs", which is never taken for an option's value.
void copyUserOptions(const Arguments& arguments) {
    const int separator = findOption(L"-vmargs", arguments);
    const std::size_t end = separator < 0 ? arguments.size() : static_cast<std::size_t>(separator);
    for (std::size_t i = 1; i < end; ++i) {
        const bool hasValue = i + 1 < end && canBeValue(arguments[i + 1]);
        switch (copyRuleFor(arguments[i])) {
            case CopyRule::kCopy:
                addArgToCommandLine(arguments[i], true);
                break;
            case CopyRule::kCopyWithValue:
                addArgToCommandLine(arguments[i], false);
                if (hasValue) {
                    addArgToCommandLine(arguments[++i], true);
                }
                break;
            case CopyRule::kDrop:
                break;
            case CopyRule::kDropWithValue:
                i += hasValue ? 1 : 0;
                break;
        }
    }
}

void addOption(const std::wstring& option, const Argument& value) {
    addArgToCommandLine(option, false);
    addArgToCommandLine(value, true);
}

// An option that the user gave anywhere, behind "-vmargs" too, is not added again.
void addFromProperty(const std::wstring& option, const Property* property,
                     const Arguments& arguments) {
    if (property != nullptr && !hasOption(option, arguments)) {
        addOption(option, argumentFrom(*property));
    }
}

void addPluginCustomization(const LaunchInputs& inputs) {
    if (hasOption(L"-plugincustomization", inputs.arguments)) {
        return;
    }
    const std::wstring key = L"plugincustomization";
    const Property* property = inputs.properties.find(key);
    const Argument value = property == nullptr ? Argument() : argumentFrom(*property);
    const Argument path(osPath(value), value.origin);
    if (!exists(path)) {
        // That it is missing the text says itself.
        const Reason reason = errno == ENOENT ? noReason() : because(errno);
        fatal(reason.at(placeOf(key, value.origin)),
              "ZYPRA0050E:  plugin_customization.ini is missing from %ls", value);
    }
    addOption(L"-plugincustomization", path);
}

}  // namespace

CopyRule copyRuleFor(std::wstring_view argument) {
    for (const OptionRule& rule : kOptionRules) {
        if (rule.option == argument) {
            return rule.rule;
        }
    }
    return CopyRule::kCopy;
}

void addMainOptionsToCommandLine(const LaunchInputs& inputs) {
    const Arguments& arguments = inputs.arguments;
    if (isDirectJavaShape()) {
        addArgToCommandLine(L"-nosplash", false);
    }
    if (!isDebug(arguments)) {
        addArgToCommandLine(L"--launcher.suppressErrors", false);
    }
    copyUserOptions(arguments);
    if (findProperty(L"rcp.install.id", inputs.properties) == nullptr) {
        fatal(noReason(), "ZYPRA0005E: Couldn't find the rcp.install.id property!");
    }
    addOption(L"-data", inputs.workspace);
    addOption(L"-configuration", inputs.configuration);
    addFromProperty(L"-application", inputs.properties.find(L"application"), arguments);
    addPluginCustomization(inputs);
    const Property* product = inputs.userProperties.find(L"product");
    if (product == nullptr) {
        product = inputs.properties.find(L"product");
    }
    addFromProperty(L"-product", product, arguments);
    addFromProperty(L"-personality", inputs.properties.find(L"personality"), arguments);
}

void addUseDaemonToCommandLine() {
    if (!isMainProcess()) {
        addOption(L"-useDaemon", std::to_wstring(pid));
    }
}

}  // namespace rcp
