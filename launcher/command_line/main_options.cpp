#include "launcher/command_line/main_options.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
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

void tellOption(const Arguments& arguments, std::size_t index, bool hasValue) {
    const OptionRule& rule = *ruleFor(arguments[index].text);
    const bool takesValue = rule.rule == CopyRule::kDropWithValue;
    if (isRepeated(arguments, index)) {
        tellRepeated(arguments, index, hasValue ? 2 : 1, whys::kRepeats);
    } else if (takesValue && !hasValue) {
        tellDropped(arguments, index, 1, whys::kLacksValue);
    } else {
        tellDropped(arguments, index, 1, *rule.why);
        if (takesValue) {
            tellDropped(arguments, index + 1, 1, *rule.whyValue);
        }
    }
}

// The user's arguments in front of "-vmargs", which is never taken for an option's value.
void copyUserOptions(CommandLine& line, const Arguments& arguments) {
    const std::size_t end = endOfOptions(arguments);
    for (std::size_t i = 1; i < end; ++i) {
        const bool hasValue = i + 1 < end && canBeValue(arguments[i + 1]);
        switch (copyRuleFor(arguments[i].text)) {
            case CopyRule::kCopy:
                line.add(arguments[i], whys::kUsersArgument);
                break;
            case CopyRule::kCopyWithValue:
                line.add(arguments[i], whys::kUsersArgument);
                if (hasValue) {
                    line.add(arguments[++i], whys::kUsersArgument);
                }
                break;
            case CopyRule::kDrop:
                tellOption(arguments, i, false);
                break;
            case CopyRule::kDropWithValue:
                tellOption(arguments, i, hasValue);
                i += hasValue ? 1 : 0;
                break;
        }
    }
}

// An option that the user gave anywhere, behind "-vmargs" too, keeps its property out.
bool isGiven(const std::wstring& option, const Property* property, const Arguments& arguments) {
    const auto index = findOption(option, arguments);
    if (index && property != nullptr) {
        const Argument* value = optionValue(option, arguments);
        const Argument& winner = value == nullptr ? arguments[*index] : *value;
        tellLoser(property->value, property->origin, whys::whyItWins(winner), &winner.origin);
    }
    return index.has_value();
}

void addFromProperty(CommandLine& line, const std::wstring& option, const Property* property,
                     const Arguments& arguments, const Why& why) {
    if (!isGiven(option, property, arguments) && property != nullptr) {
        line.add(option, why);
        line.add(argumentFrom(*property));
    }
}

void addPluginCustomization(CommandLine& line, const LaunchInputs& inputs) {
    const std::wstring key = L"plugincustomization";
    const Property* property = inputs.properties.find(key);
    if (isGiven(L"-plugincustomization", property, inputs.arguments)) {
        return;
    }
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

const Property* productOf(const LaunchInputs& inputs) {
    const Property* users = inputs.userProperties.find(L"product");
    const Property* installations =
        users == nullptr || observer != nullptr ? inputs.properties.find(L"product") : nullptr;
    if (users != nullptr && installations != nullptr) {
        tellLoser(installations->value, installations->origin, whys::kUsersFileWins,
                  &users->origin);
    }
    return users == nullptr ? installations : users;
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
    line.add(L"-data", {inputs.workspace, inputs.workspaceOrigin}, whys::kWorkspace);
    line.add(L"-configuration", {inputs.configuration, inputs.workspaceOrigin},
             whys::kConfiguration);
    addFromProperty(line, L"-application", inputs.properties.find(L"application"), arguments,
                    whys::kApplication);
    addPluginCustomization(line, inputs);
    addFromProperty(line, L"-product", productOf(inputs), arguments, whys::kProduct);
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
