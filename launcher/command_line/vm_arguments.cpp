#include "launcher/command_line/vm_arguments.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/option_values.h"
#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp {
namespace {

constexpr Key VMFIXARG_PROPERTY = keys::kConsoleFix;

// What the user put behind "-vmargs". A "-vm" there is a choice of the launcher's, not a JVM
// option.
void addUserVmargs(CommandLine& line, const Arguments& arguments) {
    const std::size_t separator = endOfOptions(arguments);
    if (separator < arguments.size()) {
        tellLoser(arguments[separator], whys::kOwnJvmPart);
    }
    for (std::size_t i = separator + 1; i < arguments.size(); ++i) {
        if (arguments[i] != options::kVm) {
            line.add(arguments[i], whys::kUsersJvmArgument);
            continue;
        }
        const std::size_t count = i + 1 < arguments.size() && canBeValue(arguments[i + 1]) ? 2 : 1;
        if (findOption(options::kVm, arguments) != i) {
            tellRepeated(arguments, i, count, whys::kRepeats);
        } else {
            tellDropped(arguments, i, count, whys::kOwnJvm);
        }
        i += count - 1;
    }
}

void addConsoleFix(CommandLine& line, const LaunchInputs& inputs) {
    const auto fixes = findProperties(VMFIXARG_PROPERTY, inputs.properties);
    if (fixes.empty()) {
        return;
    }
    Argument fix = argumentFrom(*fixes.front());
    replaceFirst(fix.text, placeholders::kWorkspaceLocation, inputs.workspace);
    convertToOsSeparator(fix.text);
    if (!fix.text.empty()) {
        line.add(fix);
    }
}

// The terminator that setArgProperty leaves at the end is not part of an element.
std::wstring definition(const std::wstring& key, const std::wstring& value) {
    std::wstring item = setArgProperty(key, value);
    item.pop_back();
    return item;
}

void addSystemProperty(CommandLine& line, OptionName key, const Argument& value, const Why& why) {
    line.add({definition(std::wstring(key), value.text), value.origin}, why);
}

void addPropertyDefinitions(CommandLine& line, const PropertyList& properties) {
    for (const Property* property : findProperties(keys::kSystemProperty, properties)) {
        const std::wstring item = definition(property->key, property->value);
        trace(messages.definitionTaken, item);
        line.add({item, property->origin});
    }
}

// The position of the second element equal to `option`.
Arguments::iterator secondOccurrence(Arguments& arguments, std::wstring_view option) {
    const auto first = std::find(arguments.begin(), arguments.end(), option);
    return first == arguments.end() ? first : std::find(first + 1, arguments.end(), option);
}

}  // namespace

void addVmargsToCommandLine(CommandLine& line, const LaunchInputs& inputs, JvmFile jvm) {
    if (!inputs.traits.isDirectJavaShape()) {
        line.add(options::kVmargs, whys::kJvmPart);
    }
    addUserVmargs(line, inputs.arguments);
    const bool hasConsole = hasOption(CONSOLEARG, inputs.arguments) && !isRestart(inputs.arguments);
    if (!hasConsole && jvm == JvmFile::kProgram) {
        addConsoleFix(line, inputs);
    }
    for (const auto& [key, argument] : inputs.vmargMap) {
        if (!argument.text.empty()) {
            line.add(argument, whys::kJvmArgument);
        }
    }
}

void addDashDToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    addSystemProperty(line, options::kRcpHome, inputs.installDir, whys::kTellsHome);
    addSystemProperty(line, options::kRcpData, {inputs.workspace, inputs.workspaceOrigin},
                      whys::kTellsWorkspace);
    if (const Property* splash = inputs.userProperties.find(keys::kSplashPath)) {
        addSystemProperty(line, options::kSplashPath, argumentFrom(*splash), whys::kTellsSplash);
    }
    const Property* installId = inputs.properties.find(keys::kInstallId);
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForDefinitions);
    }
    addSystemProperty(line, options::kInstallId, argumentFrom(*installId), whys::kTellsInstallId);
    const std::wstring configuration = installConfigurationName(inputs.traits.eConfig);
    if (configuration.empty()) {
        fatal(noReason(), messages.configurationUnknown);
    }
    const Property* kind = inputs.properties.find(keys::kInstallConfiguration);
    addSystemProperty(line, options::kInstallConfig,
                      {configuration, kind == nullptr ? Origin() : kind->origin}, whys::kTellsKind);
    addPropertyDefinitions(line, inputs.properties);
    addSystemProperty(line, options::kInstallArea, osPath(inputs.installDir + paths::kPlatform),
                      whys::kTellsInstallArea);
}

void addXargsToCommandLine(CommandLine& line, const PropertyList& properties) {
    for (const Property* property : findProperties(keys::kJvmOption, properties)) {
        line.add({property->key + property->value, property->origin});
    }
    if (const Property* prepend = properties.find(keys::kBootClassPathPrepend)) {
        line.add({options::kBootClassPathPrepend + prepend->value, prepend->origin});
    }
    if (const Property* append = properties.find(keys::kBootClassPathAppend)) {
        line.add({options::kBootClassPathAppend + append->value, append->origin});
    }
}

std::wstring setArgProperty(const std::wstring& key, const std::wstring& value) {
    std::wstring item = key + L"=" + value;
    item += L'\0';
    return item;
}

void removeDuplicateSingles(Arguments& arguments, std::wstring_view option) {
    const auto second = secondOccurrence(arguments, option);
    if (second != arguments.end()) {
        tellRepeated(arguments, static_cast<std::size_t>(second - arguments.begin()), 1,
                     whys::kRepeatsOption);
        arguments.erase(second);
    }
}

void removeDuplicatePairs(Arguments& arguments, std::wstring_view option) {
    const auto second = secondOccurrence(arguments, option);
    if (second != arguments.end()) {
        const auto value = second + 1;
        const int count = value != arguments.end() && canBeValue(*value) ? 2 : 1;
        tellRepeated(arguments, static_cast<std::size_t>(second - arguments.begin()),
                     static_cast<std::size_t>(count), whys::kRepeatsOption);
        arguments.erase(second, second + count);
    }
}

void tellDropped(const Arguments& arguments, std::size_t index, std::size_t count, const Why& why) {
    for (std::size_t i = index; i < index + count; ++i) {
        tellLoser(arguments[i], why);
    }
}

void tellRepeated(const Arguments& arguments, std::size_t repeated, std::size_t count,
                  const Why& why) {
    const auto first = findOption(arguments[repeated].text, arguments);
    for (std::size_t i = 0; observer != nullptr && first && i < count; ++i) {
        const Argument& loser = arguments[repeated + i];
        const Argument& winner = arguments[*first + (canBeValue(arguments[*first + 1]) ? i : 0)];
        const Why& whyItWins = whys::whyItWins(winner);
        const bool isUsers = loser.origin.isCommandLine() || &whyItWins == &whys::kReadFirstWins;
        tellLoser(loser, isUsers ? why : whyItWins, &winner.origin);
    }
}

}  // namespace rcp
