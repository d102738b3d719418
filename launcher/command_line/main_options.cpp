#include "launcher/command_line/main_options.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/whys.h"
#include "launcher/inputs/option_values.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace rcp {
namespace {

struct OptionRule {
    std::wstring_view option;
    CopyRule rule;
    const Why* why = nullptr;       // it is dropped
    const Why* whyValue = nullptr;  // and what stands behind it
};

// Every other argument is copied as it stands.
constexpr OptionRule kOptionRules[] = {
    {L"-data", CopyRule::kDropWithValue, &whys::kOwnWorkspace, &whys::kOwnWorkspace},
    {L"-configuration", CopyRule::kDropWithValue, &whys::kOwnConfiguration,
     &whys::kOwnConfiguration},
    {L"-plugincustomization", CopyRule::kCopyWithValue},
    {L"-application", CopyRule::kCopyWithValue},
    {L"-product", CopyRule::kCopyWithValue},
    {L"-personality", CopyRule::kCopyWithValue},
    {L"-vm", CopyRule::kDropWithValue, &whys::kOwnJvm, &whys::kOwnJvm},
    {L"-rcp_old_pid", CopyRule::kDropWithValue, &whys::kOldPlatform, &whys::kOldPlatformsId},
    {L"-restart", CopyRule::kDrop, &whys::kRestart},
    {L"-resetconfig", CopyRule::kDrop, &whys::kReset},
};

const OptionRule* ruleFor(std::wstring_view argument) {
    const auto* const found =
        std::find_if(std::begin(kOptionRules), std::end(kOptionRules),
                     [&](const OptionRule& rule) { return rule.option == argument; });
    return found == std::end(kOptionRules) ? nullptr : found;
}

// The JVM and the workspace are those that are named first.
bool isRepeated(const Arguments& arguments, std::size_t index) {
    const bool isNamedOnce = arguments[index] == L"-data" || arguments[index] == L"-vm";
    return isNamedOnce && findOption(arguments[index].text, arguments) != index;
}

void dropOption(CommandLine& line, const Arguments& arguments, std::size_t index, bool hasValue) {
    const OptionRule& rule = *ruleFor(arguments[index].text);
    const bool takesValue = rule.rule == CopyRule::kDropWithValue;
    const Why* const instead = isRepeated(arguments, index) ? &whys::kRepeats
                               : takesValue && !hasValue    ? &whys::kLacksValue
                                                            : nullptr;
    line.drop(arguments[index], instead == nullptr ? *rule.why : *instead);
    if (takesValue && hasValue) {
        line.drop(arguments[index + 1], instead == nullptr ? *rule.whyValue : *instead);
    }
}

// The user's arguments in front of "-vmargs", which is never taken for an option's value.
void copyUserOptions(CommandLine& line, const Arguments& arguments) {
    const std::size_t end = endOfOptions(arguments);
    for (std::size_t i = 1; i < end; ++i) {
        const bool hasValue = i + 1 < end && canBeValue(arguments[i + 1]);
        switch (copyRuleFor(arguments[i].text)) {
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
                dropOption(line, arguments, i, false);
                break;
            case CopyRule::kDropWithValue:
                dropOption(line, arguments, i, hasValue);
                i += hasValue ? 1 : 0;
                break;
        }
    }
}

// An option that the user gave anywhere, behind "-vmargs" too, is not added again.
void addFromProperty(CommandLine& line, const std::wstring& option, const Property* property,
                     const Arguments& arguments, const Why& why) {
    if (property != nullptr && !hasOption(option, arguments)) {
        line.add(option, why);
        line.add(argumentFrom(*property));
    }
}

void addPluginCustomization(CommandLine& line, const LaunchInputs& inputs) {
    if (hasOption(L"-plugincustomization", inputs.arguments)) {
        return;
    }
    const std::wstring key = L"plugincustomization";
    const Property* property = inputs.properties.find(key);
    const Argument value = property == nullptr ? Argument() : argumentFrom(*property);
    const Argument path(osPath(value.text), value.origin);
    if (!exists(path.text)) {
        // That it is missing the text says itself.
        const Reason reason = errno == ENOENT ? noReason() : because(errno);
        fatal(reason.at(placeOf(key, value.origin)), messages.preferencesMissing, value.text);
    }
    line.add(L"-plugincustomization", whys::kPreferences);
    line.add(path);
}

}  // namespace

CopyRule copyRuleFor(std::wstring_view argument) {
    const OptionRule* const rule = ruleFor(argument);
    return rule == nullptr ? CopyRule::kCopy : rule->rule;
}

void addMainOptionsToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    const Arguments& arguments = inputs.arguments;
    if (inputs.traits.isDirectJavaShape()) {
        line.add(L"-nosplash", whys::kNoSplash);
    }
    if (!isDebug(arguments)) {
        line.add(L"--launcher.suppressErrors", whys::kNoErrorWindows);
    }
    copyUserOptions(line, arguments);
    if (findProperty(L"rcp.install.id", inputs.properties) == nullptr) {
        fatal(noReason(), messages.noInstallIdForOptions);
    }
    line.add(L"-data", inputs.workspace, whys::kWorkspace);
    line.add(L"-configuration", inputs.configuration, whys::kConfiguration);
    addFromProperty(line, L"-application", inputs.properties.find(L"application"), arguments,
                    whys::kApplication);
    addPluginCustomization(line, inputs);
    const Property* product = inputs.userProperties.find(L"product");
    if (product == nullptr) {
        product = inputs.properties.find(L"product");
    }
    addFromProperty(line, L"-product", product, arguments, whys::kProduct);
    addFromProperty(line, L"-personality", inputs.properties.find(L"personality"), arguments,
                    whys::kPersonality);
}

void addProvisioningApplication(CommandLine& line, const PropertyList& properties,
                                LaunchKind kind) {
    const Property* application = properties.find(L"provisioning.application");
    if (application == nullptr) {
        fatal(noReason(), messages.provisioningApplicationMissing);
    }
    line.add(L"-application", whys::kProvisioning);
    line.add(argumentFrom(*application));
    if (kind == LaunchKind::kUserProvisioning) {
        line.add(L"-userProvLaunch", whys::kUsersProvisioning);
    }
}

void addUseDaemonToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    if (inputs.runningPlatform) {
        line.add(L"-useDaemon", std::to_wstring(*inputs.runningPlatform), whys::kDaemon);
    }
}

}  // namespace rcp
