#include "launcher/command_line/main_options.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/option_values.h"
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
void copyUserOptions(CommandLine& line, const Arguments& arguments) {
    const int separator = findOption(L"-vmargs", arguments);
    const std::size_t end = separator < 0 ? arguments.size() : static_cast<std::size_t>(separator);
    for (std::size_t i = 1; i < end; ++i) {
        const bool hasValue = i + 1 < end && canBeValue(arguments[i + 1]);
        switch (copyRuleFor(arguments[i])) {
            case CopyRule::kCopy:
                line.add(arguments[i]);
                break;
            case CopyRule::kCopyWithValue:
                line.add(arguments[i]);
                if (hasValue) {
                    line.add(arguments[++i]);
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

// An option that the user gave anywhere, behind "-vmargs" too, is not added again.
void addFromProperty(CommandLine& line, const std::wstring& option, const Property* property,
                     const Arguments& arguments) {
    if (property != nullptr && !hasOption(option, arguments)) {
        line.add(option, argumentFrom(*property));
    }
}

void addPluginCustomization(CommandLine& line, const LaunchInputs& inputs) {
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
    line.add(L"-plugincustomization", path);
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

void addMainOptionsToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    const Arguments& arguments = inputs.arguments;
    if (inputs.traits.isDirectJavaShape()) {
        line.add(L"-nosplash");
    }
    if (!isDebug(arguments)) {
        line.add(L"--launcher.suppressErrors");
    }
    copyUserOptions(line, arguments);
    if (findProperty(L"rcp.install.id", inputs.properties) == nullptr) {
        fatal(noReason(), "ZYPRA0005E: Couldn't find the rcp.install.id property!");
    }
    line.add(L"-data", inputs.workspace);
    line.add(L"-configuration", inputs.configuration);
    addFromProperty(line, L"-application", inputs.properties.find(L"application"), arguments);
    addPluginCustomization(line, inputs);
    const Property* product = inputs.userProperties.find(L"product");
    if (product == nullptr) {
        product = inputs.properties.find(L"product");
    }
    addFromProperty(line, L"-product", product, arguments);
    addFromProperty(line, L"-personality", inputs.properties.find(L"personality"), arguments);
}

void addProvisioningApplication(CommandLine& line, const PropertyList& properties,
                                LaunchKind kind) {
    const Property* application = properties.find(L"provisioning.application");
    if (application == nullptr) {
        fatal(noReason(),
              "Error: checkForProvisioning: provisioning is due, but the provisioning.application "
              "property is missing.");
    }
    line.add(L"-application", argumentFrom(*application));
    if (kind == LaunchKind::kUserProvisioning) {
        line.add(L"-userProvLaunch");
    }
}

void addUseDaemonToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    if (inputs.runningPlatform) {
        line.add(L"-useDaemon", std::to_wstring(*inputs.runningPlatform));
    }
}

}  // namespace rcp
