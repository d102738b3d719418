#include "launcher/command_line/config_extensions.h"

#include "diagnostics/observer.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
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

// In front of "-vmargs".
void addDebugOptions(Arguments& arguments, const std::wstring& marker) {
    const Origin origin{std::make_shared<const std::wstring>(marker)};
    Arguments options;
    for (const std::wstring& option :
         {std::wstring(CONSOLEARG), std::wstring(DEBUGARG), std::wstring(PB4LARG),
          std::wstring(L"-debugFile"), marker}) {
        options.emplace_back(option, origin);
        options.back().why = &whys::kDebugMarker;
    }
    arguments.insert(findSeparator(arguments), options.begin(), options.end());
}

// The values of the numbered properties up to the first one that is missing, less the empty ones.
Arguments extensionValues(const std::wstring& name, const PropertyList& properties) {
    Arguments values;
    for (int n = 1;; ++n) {
        const Property* property = properties.find(L"config." + name + L"." + std::to_wstring(n));
        if (property == nullptr) {
            return values;
        }
        if (!property->value.empty()) {
            values.push_back(argumentFrom(*property));
            values.back().why = &whys::kExtension;
        }
    }
}

// Without "-vmargs" on the command line the values go to its end as they are. With one, the values
// in front of the extension's own "-vmargs" go in front of it, those behind to the very end:
//
//   arguments | values in front | "-vmargs" | JVM arguments | values behind
void placeExtension(Arguments& arguments, Arguments values) {
    const auto separator = findSeparator(arguments);
    if (separator == arguments.end()) {
        arguments.insert(separator, std::make_move_iterator(values.begin()),
                         std::make_move_iterator(values.end()));
        return;
    }
    const auto ownSeparator = std::find(values.begin(), values.end(), kVmargs);
    const auto last = std::remove(ownSeparator, values.end(), kVmargs);
    arguments.insert(separator, std::make_move_iterator(values.begin()),
                     std::make_move_iterator(ownSeparator));
    arguments.insert(arguments.end(), std::make_move_iterator(ownSeparator),
                     std::make_move_iterator(last));
}

}  // namespace

void patchWorkspace(const Arguments& extension, PropertyList& properties) {
    const Argument* workspace = optionValue(L"-data", extension);
    if (workspace == nullptr) {
        return;
    }
    if (findProperty(L"rcp.data", properties) != nullptr) {
        replaceValue(L"rcp.data", workspace->text, properties);
    } else {
        // Its filter would take a backslash for an escape.
        pushBackProperty(properties, L"rcp.data", osPath(workspace->text));
    }
}

Arguments addConfigExtentionsToArg(const Arguments& arguments, PropertyList& properties,
                                   VmArgumentMap& vmargMap,
                                   const std::optional<std::wstring>& debugFile) {
    insertArgsToVmargMap(vmargMap, arguments, properties);
    Arguments extended = arguments;
    const Argument* name = optionValue(L"-config", arguments);
    if (name == nullptr) {
        if (debugFile) {
            addDebugOptions(extended, *debugFile);
            removeRepeatedSingles(extended);
        }
        return extended;
    }
    const auto config = std::find(extended.begin() + 1, extended.end(), L"-config");
    tellLoser(config[0], whys::kExtensionOption);
    tellLoser(config[1], whys::kExtensionName);
    extended.erase(config, config + 2);
    placeExtension(extended, extensionValues(name->text, properties));
    if (debugFile) {
        addDebugOptions(extended, *debugFile);
    }
    for (const wchar_t* option : kUniquePairs) {
        removeDuplicatePairs(extended, option);
    }
    removeRepeatedSingles(extended);
    patchWorkspace(extended, properties);
    insertCargsToVmargMap(vmargMap, extended);
    return extended;
}

}  // namespace rcp
