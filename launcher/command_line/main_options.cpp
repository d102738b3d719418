#include "launcher/command_line/main_options.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
#include "launcher/inputs/option_values.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>

#include <algorithm>
#include <iterator>

namespace rcp {
namespace {

// Why an option is dropped, and what stands behind it.
struct DroppedOption {
    OptionName option;
    const Why* why;
    const Why* whyValue;
};

constexpr DroppedOption kDroppedOptions[] = {
    {options::kData, &whys::kOwnWorkspace, &whys::kOwnWorkspace},
    {options::kConfiguration, &whys::kOwnConfiguration, &whys::kOwnConfiguration},
    {options::kVm, &whys::kOwnJvm, &whys::kOwnJvm},
    {options::kOldPid, &whys::kOldPlatform, &whys::kOldPlatformsId},
    {options::kRestart, &whys::kRestart, nullptr},
    {options::kResetConfig, &whys::kReset, nullptr},
};

constexpr const DroppedOption* findDropped(OptionName option) {
    const auto* const found =
        std::find_if(std::begin(kDroppedOptions), std::end(kDroppedOptions),
                     [&](const DroppedOption& one) { return one.option == option; });
    return found == std::end(kDroppedOptions) ? nullptr : found;
}

// Every option that is dropped says why, and of its value where that goes with it.
static_assert(std::all_of(std::begin(kOptions), std::end(kOptions), [](const Option& option) {
    const DroppedOption* const row = findDropped(option.name);
    const bool takesValue = option.rule == CopyRule::kDropWithValue;
    return row == nullptr ? option.rule != CopyRule::kDrop && !takesValue
                          : (takesValue || option.rule == CopyRule::kDrop) &&
                                (row->whyValue != nullptr) == takesValue;
}));

// The JVM and the workspace are those that are named first.
bool isRepeated(const Arguments& arguments, std::size_t index) {
    const bool isNamedOnce = arguments[index] == options::kData || arguments[index] == options::kVm;
    return isNamedOnce && findOption(OptionName(arguments[index].text), arguments) != index;
}

// `count`: of the option and, where it has one, its value.
void tellOption(const Arguments& arguments, std::size_t index, std::size_t count) {
    const DroppedOption* const dropped = findDropped(arguments[index].text);
    const bool takesValue = dropped->whyValue != nullptr;
    if (isRepeated(arguments, index)) {
        tellRepeated(arguments, index, count, whys::kRepeats);
    } else if (takesValue && count == 1) {
        tellDropped(arguments, index, 1, whys::kLacksValue);
    } else {
        tellDropped(arguments, index, 1, *dropped->why);
        if (takesValue) {
            tellDropped(arguments, index + 1, 1, *dropped->whyValue);
        }
    }
}

// The user's arguments in front of "-vmargs", which is never taken for an option's value.
void copyUserOptions(CommandLine& line, const Arguments& arguments) {
    const std::size_t end = endOfOptions(arguments);
    for (std::size_t i = 1; i < end; ++i) {
        const std::size_t count = i + 1 < end && canBeValue(arguments[i + 1]) ? 2 : 1;
        switch (copyRuleFor(arguments[i].text)) {
            case CopyRule::kCopy:
                line.add(arguments[i], whys::kUsersArgument);
                break;
            case CopyRule::kCopyWithValue:
                line.add(arguments[i], whys::kUsersArgument);
                if (count == 2) {
                    line.add(arguments[++i], whys::kUsersArgument);
                }
                break;
            case CopyRule::kDrop:
                tellOption(arguments, i, 1);
                break;
            case CopyRule::kDropWithValue:
                tellOption(arguments, i, count);
                i += count - 1;
                break;
        }
    }
}

// An option that the user gave anywhere, behind "-vmargs" too, keeps its property out.
bool isGiven(OptionName option, const Property* property, const Arguments& arguments) {
    const auto index = findOption(option, arguments);
    if (index && property != nullptr) {
        const Argument* value = optionValue(option, arguments);
        const Argument& winner = value == nullptr ? arguments[*index] : *value;
        tellLoser(property->value, property->origin, whys::whyItWins(winner), &winner.origin);
    }
    return index.has_value();
}

void addFromProperty(CommandLine& line, OptionName option, const Property* property,
                     const Arguments& arguments, const Why& why) {
    if (!isGiven(option, property, arguments) && property != nullptr) {
        line.add(option, why);
        line.add(argumentFrom(*property));
    }
}

void addPluginCustomization(CommandLine& line, const LaunchInputs& inputs) {
    const Property* property = inputs.properties.find(keys::kPluginCustomization);
    if (isGiven(options::kPluginCustomization, property, inputs.arguments)) {
        return;
    }
    const Argument value = property == nullptr ? Argument() : argumentFrom(*property);
    const Argument path(osPath(value.text), value.origin);
    if (!exists(path.text)) {
        // That it is missing the text says itself.
        const Reason reason = errno == ENOENT ? noReason() : because(errno);
        fatal(reason.at(placeOf(std::wstring(keys::kPluginCustomization), value.origin))
                  .from(value.origin),
              messages.preferencesMissing, value.text);
    }
    line.add(options::kPluginCustomization, whys::kPreferences);
    line.add(path);
}

const Property* productOf(const LaunchInputs& inputs) {
    const Property* users = inputs.userProperties.find(keys::kProduct);
    const Property* installations =
        users == nullptr || observer != nullptr ? inputs.properties.find(keys::kProduct) : nullptr;
    if (users != nullptr && installations != nullptr) {
        tellLoser(installations->value, installations->origin, whys::kUsersFileWins,
                  &users->origin);
    }
    return users == nullptr ? installations : users;
}

}  // namespace

void addMainOptionsToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    const Arguments& arguments = inputs.arguments;
    if (inputs.traits.isDirectJavaShape()) {
        line.add(options::kNoSplash, whys::kNoSplash);
    }
    if (!isDebug(arguments)) {
        line.add(options::kSuppressErrors, whys::kNoErrorWindows);
    }
    copyUserOptions(line, arguments);
    if (findProperty(keys::kInstallId, inputs.properties) == nullptr) {
        fatal(noReason(), messages.noInstallIdForOptions);
    }
    line.add(options::kData, {inputs.workspace, inputs.workspaceOrigin}, whys::kWorkspace);
    line.add(options::kConfiguration, {inputs.configuration, inputs.workspaceOrigin},
             whys::kConfiguration);
    addFromProperty(line, options::kApplication, inputs.properties.find(keys::kApplication),
                    arguments, whys::kApplication);
    addPluginCustomization(line, inputs);
    addFromProperty(line, options::kProduct, productOf(inputs), arguments, whys::kProduct);
    addFromProperty(line, options::kPersonality, inputs.properties.find(keys::kPersonality),
                    arguments, whys::kPersonality);
}

const Property* provisioningApplication(const PropertyList& properties) {
    return properties.find(keys::kProvisioningApplication);
}

void addProvisioningApplication(CommandLine& line, const PropertyList& properties,
                                LaunchKind kind) {
    const Property* application = provisioningApplication(properties);
    if (application == nullptr) {
        const Property* enabled = properties.find(keys::kProvisioning);
        fatal(noReason().from(enabled == nullptr ? Origin() : enabled->origin),
              messages.provisioningApplicationMissing);
    }
    line.add(options::kApplication, whys::kProvisioning);
    line.add(argumentFrom(*application));
    if (kind == LaunchKind::kUserProvisioning) {
        line.add(options::kUserProvLaunch, whys::kUsersProvisioning);
    }
}

void addUseDaemonToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    if (inputs.runningPlatform) {
        line.add(options::kUseDaemon, std::to_wstring(*inputs.runningPlatform), whys::kDaemon);
    }
}

}  // namespace rcp
