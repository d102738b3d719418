#include "launcher/command_line/vm_arguments.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/whys.h"
#include "launcher/inputs/option_values.h"
#include "launcher/properties/placeholders.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp {
namespace {

constexpr wchar_t VMFIXARG_PROPERTY[] = L"vmfix.noconsole";

// What the user put behind "-vmargs". A "-vm" there is a choice of the launcher's, not a JVM
// option.
void addUserVmargs(CommandLine& line, const Arguments& arguments) {
    for (std::size_t i = endOfOptions(arguments) + 1; i < arguments.size(); ++i) {
        if (arguments[i] == L"-vm") {
            const Why& why = findOption(L"-vm", arguments) == i ? whys::kOwnJvm : whys::kRepeats;
            line.drop(arguments[i], why);
            if (i + 1 < arguments.size() && canBeValue(arguments[i + 1])) {
                line.drop(arguments[++i], why);
            }
        } else {
            line.add(arguments[i]);
        }
    }
}

void addConsoleFix(CommandLine& line, const LaunchInputs& inputs) {
    const auto fixes = findProperties(VMFIXARG_PROPERTY, inputs.properties);
    if (fixes.empty()) {
        return;
    }
    Argument fix = argumentFrom(*fixes.front());
    replaceFirst(fix.text, L"${workspace.location}", inputs.workspace);
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

void addSystemProperty(CommandLine& line, const std::wstring& key, const Argument& value,
                       const Why& why) {
    line.add({definition(key, value.text), value.origin}, why);
}

void addPropertyDefinitions(CommandLine& line, const PropertyList& properties) {
    for (const Property* property : findProperties(L"-D", properties)) {
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
        line.add(L"-vmargs", whys::kJvmPart);
    }
    addUserVmargs(line, inputs.arguments);
    const bool hasConsole = hasOption(CONSOLEARG, inputs.arguments) && !isRestart(inputs.arguments);
    if (!hasConsole && jvm == JvmFile::kProgram) {
        addConsoleFix(line, inputs);
    }
    for (const auto& [key, argument] : inputs.vmargMap) {
        if (!argument.text.empty()) {
            line.add(argument);
        }
    }
}

void addDashDToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    addSystemProperty(line, L"-Drcp.home", inputs.installDir, whys::kTellsHome);
    addSystemProperty(line, L"-Drcp.data", inputs.workspace, whys::kTellsWorkspace);
    if (const Property* splash = inputs.userProperties.find(L"osgi.splashPath")) {
        addSystemProperty(line, L"-Dosgi.splashPath", argumentFrom(*splash), whys::kTellsSplash);
    }
    const Property* installId = inputs.properties.find(L"rcp.install.id");
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForDefinitions);
    }
    addSystemProperty(line, L"-Dcom.ovr.rcp.install.id", argumentFrom(*installId),
                      whys::kTellsInstallId);
    const std::wstring configuration = installConfigurationName(inputs.traits.eConfig);
    if (configuration.empty()) {
        fatal(noReason(), messages.configurationUnknown);
    }
    addSystemProperty(line, L"-Drcp.install.config", configuration, whys::kTellsKind);
    addPropertyDefinitions(line, inputs.properties);
    addSystemProperty(line, L"-Drcp.osgi.install.area", osPath(inputs.installDir + L"/rcp/eclipse"),
                      whys::kTellsInstallArea);
}

void addXargsToCommandLine(CommandLine& line, const PropertyList& properties) {
    for (const Property* property : findProperties(L"-X", properties)) {
        line.add({property->key + property->value, property->origin});
    }
    if (const Property* prepend = properties.find(L"Xbootclasspath.prepend")) {
        line.add({L"-Xbootclasspath/p:" + prepend->value, prepend->origin});
    }
    if (const Property* append = properties.find(L"Xbootclasspath.append")) {
        line.add({L"-Xbootclasspath/a:" + append->value, append->origin});
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
        arguments.erase(second);
    }
}

void removeDuplicatePairs(Arguments& arguments, std::wstring_view option) {
    const auto second = secondOccurrence(arguments, option);
    if (second != arguments.end()) {
        const auto value = second + 1;
        const bool hasValue = value != arguments.end() && canBeValue(*value);
        arguments.erase(second, hasValue ? value + 1 : value);
    }
}

}  // namespace rcp
