#include "launcher/command_line/vm_choice.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/properties/placeholders.h"
#include "launcher/properties/property_file.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace rcp {
namespace {

constexpr std::wstring_view kPluginFolder = L"/eclipse/plugins/";

void traceAlways(Message<Text> message, std::wstring_view argument) {
    const ForcedTracing forced;
    trace(message, argument);
}

// The JVM's path; empty when the launcher library is to find one itself, or "-vm" has no value.
Argument givenVm(const PropertyList& properties, const Arguments& arguments) {
    if (isVmOverride(arguments)) {
        const Argument* value = optionValue(options::kVm, arguments);
        return value == nullptr ? Argument() : *value;
    }
    const Property* property = properties.find(keys::kVm);
    return property == nullptr ? Argument() : argumentFrom(*property);
}

// The same. `missing` tells where it was asked for.
Argument chosenVm(const PropertyList& properties, const Arguments& arguments, Message<> missing) {
    Argument vm = givenVm(properties, arguments);
    if (vm.text.empty() && isVmOverride(arguments)) {
        fatal(noReason().from(vm.origin), missing);
    }
    return vm;
}

// "-vm" keeps the property out; the last one of an ordinary start is the launcher's own.
void tellOtherVm(const LaunchInputs& inputs, const Argument& vm) {
    const Property* property = observer == nullptr ? nullptr : inputs.properties.find(keys::kVm);
    if (property != nullptr && isVmOverride(inputs.arguments)) {
        const Why& why = whys::whyItWins(vm);
        tellLoser(property->value, property->origin,
                  &why == &whys::kReadFirstWins ? whys::kInstallationsJvmWins : why, &vm.origin);
    }
}

void settleJavaHome(PropertyList& properties, const JvmPropertyLocation& location) {
    const std::optional<std::wstring> home = getJvmHome(location.jvm);
    if (const std::wstring* given = findProperty(keys::kJavaHome, properties)) {
        replaceValue(keys::kJavaHome, home.value_or(*given), properties);
    } else if (location.isDefault && home && !home->empty()) {
        pushBackProperty(properties, keys::kJavaHome, *home);
    }
}

void settleLibraryPath(PropertyList& properties) {
    const std::wstring* given = findProperty(keys::kJvmLibraryPath, properties);
    if (given != nullptr && !given->empty()) {
        replaceValue(keys::kJvmLibraryPath, fixUpJvmLibPath(*given), properties);
    }
}

// "/eclipse/plugins/NAME/" around the JVM.
std::optional<std::wstring> pluginAround(const std::wstring& jvm) {
    const std::size_t folder = jvm.find(kPluginFolder);
    const std::size_t end =
        folder == std::wstring::npos ? folder : jvm.find(L'/', folder + kPluginFolder.size());
    return end == std::wstring::npos ? std::nullopt : std::optional(jvm.substr(0, end + 1));
}

// "/jre/" of "/jre/bin/java".
std::optional<std::wstring> secondFolderAbove(const std::wstring& jvm) {
    const std::size_t last = jvm.rfind(L'/');
    if (last == std::wstring::npos || last == 0) {
        return std::nullopt;
    }
    const std::size_t second = jvm.rfind(L'/', last - 1);
    return second == std::wstring::npos ? std::nullopt : std::optional(jvm.substr(0, second + 1));
}

std::optional<JvmPropertyRoot> rootWithProperties(std::optional<std::wstring> root) {
    UniqueFd properties = root ? jvmPropExists(*root) : UniqueFd();
    return properties ? std::optional(JvmPropertyRoot{*std::move(root), std::move(properties)})
                      : std::nullopt;
}

}  // namespace

Argument vmProgram(const LaunchInputs& inputs) {
    Argument vm = givenVm(inputs.properties, inputs.arguments);
    replaceFirstRcpHome(vm.text, inputs.installDir);
    return vm;
}

JvmFile addVmToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    Argument vm = chosenVm(inputs.properties, inputs.arguments, messages.noVm);
    replaceFirstRcpHome(vm.text, inputs.installDir);
    tellOtherVm(inputs, vm);
    if (vm.text.empty()) {
        if (inputs.traits.isDirectJavaShape()) {
            fatal(noReason().from(vm.origin),
                  messages.noVm);  // or an option would become the program
        }
        return JvmFile::kProgram;
    }
    if (inputs.traits.isDirectJavaShape()) {
        line.setProgram(vm, whys::kJvmProgram);
    } else {
        line.add(options::kVm, whys::kJvm);
        if (vm.origin.isCommandLine()) {
            line.add(vm, whys::kUsersJvm);
        } else if (vm.origin.file) {
            line.add(vm);
        } else {
            line.add(vm, whys::kJvm);
        }
    }
    return endsIn(vm.text, L".ee") || endsIn(vm.text, L".dll") ? JvmFile::kEeOrDll
                                                               : JvmFile::kProgram;
}

JvmPropertyLocation getJvmPropertyLocation(PropertyList& properties, const Arguments& arguments,
                                           const std::wstring& installDir) {
    JvmPropertyLocation location;
    std::optional<JvmPropertyRoot> root;
    location.jvm = chosenVm(properties, arguments, messages.noVmPath).text;
    if (location.jvm.empty()) {
        traceAlways(messages.externalJvm, L"external JVM");
    } else {
        replaceFirstRcpHome(location.jvm, installDir);
        convertBS2S(location.jvm);
        traceAlways(messages.chosenJvm, location.jvm);
        root = getStandardJvmPropertyRoot(location.jvm);
        root = root ? std::move(root) : getInstallJvmPropertyRoot(location.jvm);
    }
    location.isDefault = !root;
    if (!root) {
        root = JvmPropertyRoot{osPath(installDir + paths::kJvmFolder), {}};
    }
    pushBackProperty(properties, keys::kJvmRoot, root->path);
    location.file = root->path + paths::kJvmProperties;
    location.opened = std::move(root->properties);
    return location;
}

std::optional<JvmPropertyRoot> getStandardJvmPropertyRoot(const std::wstring& jvm) {
    return rootWithProperties(pluginAround(jvm));
}

std::optional<JvmPropertyRoot> getInstallJvmPropertyRoot(const std::wstring& jvm) {
    return rootWithProperties(secondFolderAbove(jvm));
}

std::vector<std::wstring> jvmPropertyRoots(const std::wstring& jvm) {
    std::vector<std::wstring> roots;
    for (const std::optional<std::wstring>& root : {pluginAround(jvm), secondFolderAbove(jvm)}) {
        roots.insert(roots.end(), root ? 1 : 0, root.value_or(std::wstring()));
    }
    return roots;
}

UniqueFd jvmPropExists(const std::wstring& root) {
    return openExisting(osPath(root + paths::kJvmProperties));
}

void loadJvmProperties(LaunchInputs& inputs, const JvmPropertyLocation& location) {
    traceAlways(messages.jvmPropertiesLoaded, location.file);
    if (location.opened) {
        getProperties(location.opened, location.file, inputs.properties);
        insertPropToVmargMap(inputs.vmargMap, inputs.properties);
    } else if (getPropertiesIfThere(location.file, inputs.properties)) {
        insertPropToVmargMap(inputs.vmargMap, inputs.properties);
    } else {
        traceAlways(messages.jvmPropertiesMissing, L"${rcp.home}/rcp/deploy");
    }
    settleJavaHome(inputs.properties, location);
    settleLibraryPath(inputs.properties);
}

std::optional<std::wstring> getJvmHome(const std::wstring& jvm) {
    const std::size_t found = jvm.find(L"jvm/bin");
    return found == std::wstring::npos || found == 0 ? std::nullopt
                                                     : std::optional(jvm.substr(0, found - 1));
}

std::wstring fixUpJvmLibPath(const std::wstring& libraryPath) {
    std::wstring path = libraryPath;
    convertBS2S(path);
    std::wstring fixed;
    std::size_t at = 0;
    while (at < path.size()) {
        const std::size_t end = std::min(path.find(L':', at), path.size());
        const std::wstring element = path.substr(at, end - at);
        at = end + 1;
        if (element.empty()) {
            continue;
        }
        if (!fixed.empty()) {
            fixed += L':';
        }
        if (element.find(placeholders::kJavaHome) == std::wstring::npos) {
            fixed += placeholders::kJavaHome;
            fixed += L'/';
        }
        fixed += element;
    }
    return fixed;
}

bool endsIn(std::wstring_view text, std::wstring_view suffix) {
    const std::size_t position = text.size() - suffix.size();
    return text.find(suffix, position) == position;
}

bool isVmOverride(const Arguments& arguments) {
    return hasOption(options::kVm, arguments);
}

}  // namespace rcp
