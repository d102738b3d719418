#include "launcher/command_line/config_extensions.h"

#include "diagnostics/observer.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace rcp {
namespace {

Arguments::iterator findSeparator(Arguments& arguments) {
    const auto first = arguments.empty() ? arguments.begin() : arguments.begin() + 1;
    return std::find(first, arguments.end(), options::kVmargs);
}

void removeRepeatedSingles(Arguments& arguments) {
    for (const OptionName option : kUniqueSingles) {
        removeDuplicateSingles(arguments, option);
    }
}

// In front of "-vmargs".
void addDebugOptions(Arguments& arguments, const std::wstring& marker) {
    const Origin origin = wholeFile(marker);
    Arguments added;
    for (const std::wstring_view option :
         {std::wstring_view(CONSOLEARG), std::wstring_view(DEBUGARG), std::wstring_view(PB4LARG),
          std::wstring_view(options::kDebugFile), std::wstring_view(marker)}) {
        added.emplace_back(std::wstring(option), origin);
        added.back().why = &whys::kDebugMarker;
    }
    arguments.insert(findSeparator(arguments), added.begin(), added.end());
}

// The values of the numbered properties up to the first one that is missing, less the empty ones.
Arguments extensionValues(const std::wstring& name, const PropertyList& properties) {
    Arguments values;
    for (std::size_t n = 1;; ++n) {
        const Property* property = properties.find(keys::extensionArgument(name, n));
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
    const auto ownSeparator = std::find(values.begin(), values.end(), options::kVmargs);
    const auto last = std::remove(ownSeparator, values.end(), options::kVmargs);
    arguments.insert(separator, std::make_move_iterator(values.begin()),
                     std::make_move_iterator(ownSeparator));
    arguments.insert(arguments.end(), std::make_move_iterator(ownSeparator),
                     std::make_move_iterator(last));
}

}  // namespace

void patchWorkspace(const Arguments& extension, PropertyList& properties) {
    const Argument* workspace = optionValue(options::kData, extension);
    if (workspace == nullptr) {
        return;
    }
    if (findProperty(keys::kData, properties) != nullptr) {
        replaceValue(keys::kData, workspace->text, properties);
    } else {
        // Its filter would take a backslash for an escape.
        pushBackProperty(properties, keys::kData, osPath(workspace->text));
    }
}

Arguments addConfigExtentionsToArg(const Arguments& arguments, PropertyList& properties,
                                   VmArgumentMap& vmargMap,
                                   const std::optional<std::wstring>& debugFile) {
    insertArgsToVmargMap(vmargMap, arguments, properties);
    Arguments extended = arguments;
    const Argument* name = optionValue(options::kConfig, arguments);
    if (name == nullptr) {
        if (debugFile) {
            addDebugOptions(extended, *debugFile);
            removeRepeatedSingles(extended);
        }
        return extended;
    }
    const auto config = std::find(extended.begin() + 1, extended.end(), options::kConfig);
    tellLoser(config[0], whys::kExtensionOption);
    tellLoser(config[1], whys::kExtensionName);
    extended.erase(config, config + 2);
    placeExtension(extended, extensionValues(name->text, properties));
    if (debugFile) {
        addDebugOptions(extended, *debugFile);
    }
    for (const OptionName option : kUniquePairs) {
        removeDuplicatePairs(extended, option);
    }
    removeRepeatedSingles(extended);
    patchWorkspace(extended, properties);
    insertCargsToVmargMap(vmargMap, extended);
    return extended;
}

}  // namespace rcp
