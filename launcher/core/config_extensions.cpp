#include "launcher/core/config_extensions.h"

#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/vm_arguments.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>

namespace rcp {
namespace {

constexpr wchar_t kVmargs[] = L"-vmargs";

// "-product" stands twice: two passes take out two repetitions.
constexpr const wchar_t* kUniquePairs[] = {
    L"-vm",          L"-data",    L"-plugincustomization",
    L"-application", L"-product", L"-personality",
    L"-product",     L"-nl",      L"-dir",
};
constexpr const wchar_t* kUniqueSingles[] = {CONSOLEARG, DEBUGARG, PB4LARG};

Arguments::iterator findSeparator(Arguments& arguments) {
    const auto first = arguments.empty() ? arguments.begin() : arguments.begin() + 1;
    return std::find(first, arguments.end(), kVmargs);
}

void removeRepeatedSingles(Arguments& arguments) {
    for (const wchar_t* option : kUniqueSingles) {
        removeDuplicateSingles(arguments, option);
    }
}

// While the marker file exists every launch is a debugging one. True when it does.
bool addDebugOptions(Arguments& arguments, const std::wstring& installDir) {
    const std::wstring marker = osPath(installDir + L"/rcp/rcplauncher.debug");
    if (!debugFileExists(marker)) {
        return false;
    }
    const Arguments options = {CONSOLEARG, DEBUGARG, PB4LARG, L"-debugFile", marker};
    arguments.insert(findSeparator(arguments), options.begin(), options.end());
    return true;
}

// The values of the numbered properties up to the first one that is missing, less the empty ones.
Arguments extensionValues(const std::wstring& name, const PropertyList& properties) {
    Arguments values;
    for (int n = 1;; ++n) {
        const std::wstring* value =
            findProperty(L"config." + name + L"." + std::to_wstring(n), properties);
        if (value == nullptr) {
            return values;
        }
        if (!value->empty()) {
            values.push_back(*value);
        }
    }
}

// Without "-vmargs" on the command line the values go to its end as they are. With one, the values
// in front of the extension's own "-vmargs" go in front of it, those behind to the very end:
//
//   arguments | values in front | "-vmargs" | JVM arguments | values behind
void placeExtension(Arguments& arguments, const Arguments& values) {
    const auto separator = findSeparator(arguments);
    if (separator == arguments.end()) {
        arguments.insert(separator, values.begin(), values.end());
        return;
    }
    const auto ownSeparator = std::find(values.begin(), values.end(), kVmargs);
    arguments.insert(separator, values.begin(), ownSeparator);
    std::remove_copy(ownSeparator, values.end(), std::back_inserter(arguments), kVmargs);
}

}  // namespace

void patchWorkspace(const Arguments& extension, PropertyList& properties) {
    const std::wstring* workspace = optionValue(L"-data", extension);
    if (workspace == nullptr) {
        return;
    }
    if (findProperty(L"rcp.data", properties) != nullptr) {
        replaceValue(L"rcp.data", *workspace, properties);
    } else {
        properties.append({L"rcp.data", *workspace, {}});
    }
}

Arguments addConfigExtentionsToArg(const Arguments& arguments, PropertyList& properties,
                                   VmArgumentMap& vmargMap, const std::wstring& installDir) {
    insertArgsToVmargMap(vmargMap, arguments, properties);
    Arguments extended = arguments;
    const std::wstring* name = optionValue(L"-config", arguments);
    if (name == nullptr) {
        if (addDebugOptions(extended, installDir)) {
            removeRepeatedSingles(extended);
        }
        return extended;
    }
    const auto config = extended.begin() + findOption(L"-config", arguments);
    extended.erase(config, config + 2);
    placeExtension(extended, extensionValues(*name, properties));
    addDebugOptions(extended, installDir);
    for (const wchar_t* option : kUniquePairs) {
        removeDuplicatePairs(extended, option);
    }
    removeRepeatedSingles(extended);
    patchWorkspace(extended, properties);
    insertCargsToVmargMap(vmargMap, extended);
    return extended;
}

}  // namespace rcp
