#include "launcher/user_area/workspace.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/text.h"

namespace rcp {
namespace {

constexpr wchar_t kDefaultFolder[] = L"/OVR/RCP/";

void dropTrailingSeparator(std::wstring& path) {
    if (path.ends_with(L'/') || path.ends_with(L'\\')) {
        path.pop_back();
        path = path.empty() ? L"/" : path;
    }
}

[[noreturn]] void refuse(const std::wstring& value, const Origin& origin) {
    fatal(noReason().from(origin), messages.dataInvalid, value);
}

// The user's area must not lie among the system's folders, whichever way leads there. What is not
// there yet is no link.
std::wstring notTheRoot(const std::wstring& workspace, const std::wstring& value,
                        const Origin& origin) {
    const std::string path = toNarrow(osPath(workspace));
    if (lexicalPath(path) == "/" || isRoot(path)) {
        refuse(value, origin);
    }
    return workspace;
}

Argument workspaceFromArgument(const Argument& argument, const PropertyList& properties,
                               const std::wstring& rcpHome) {
    std::wstring value = argument.text;
    dropTrailingSeparator(value);
    replaceFirstRcpHome(value, rcpHome);
    replaceUserPlaceholders(value, properties);
    const std::wstring path = convert_from_relative_location(value, argument.origin);
    return {notTheRoot(path, argument.text, argument.origin), argument.origin};
}

// Whether "${rcp.home}" is all that is left in a text whose user placeholders were replaced.
bool onlyRcpHomeIsLeft(std::wstring text, const PropertyList& properties) {
    replaceStdPlaceholders({.workspace = placeholders::kWorkspaceLocation, .installDir = L"/"},
                           text);
    return replaceUserPlaceholders(text, properties);
}

Argument workspaceFromProperty(const Property& property, const PropertyList& properties,
                               const std::wstring& rcpHome) {
    std::wstring value = property.value;
    const bool resolved = replaceUserPlaceholders(value, properties);
    const bool valid = resolved || onlyRcpHomeIsLeft(value, properties);
    std::wstring path = value;
    dropTrailingSeparator(path);
    // An empty path would put the user's area below the root of the file system.
    if (!valid || path.empty()) {
        refuse(value, property.origin);
    }
    replaceFirstRcpHome(path, rcpHome);
    replaceUserPlaceholders(path, properties);
    return {notTheRoot(path, value, property.origin), property.origin};
}

std::wstring defaultWorkspace(const PropertyList& properties) {
    const std::wstring* installId = findProperty(keys::kInstallId, properties);
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForWorkspace);
    }
    const std::optional<std::wstring> user = getEnv(variables::kUser);
    if (!user) {
        fatal(noReason(), messages.noUserForWorkspace);
    }
    const std::wstring home = getUserHome();
    if (!home.starts_with(L'/')) {
        fatal(noReason().from({nullptr, Origin::kHome}), messages.homeInvalid, home);
    }
    return home + kDefaultFolder + *installId + L"/" + *user;
}

}  // namespace

Argument getWorkspaceLocation(const LaunchInputs& inputs) {
    switch (inputs.traits.eConfig) {
        case InstallConfiguration::kService:
            return inputs.installDir + paths::kServiceWorkspace;
        case InstallConfiguration::kMultiuserServiceInit:
            return inputs.installDir + paths::kMuServiceWorkspace;
        default:
            break;
    }
    const Property* property = inputs.properties.find(keys::kData);
    if (const Argument* argument = optionValue(options::kData, inputs.arguments)) {
        if (property != nullptr) {
            tellLoser(property->value, property->origin, whys::whyItWins(*argument),
                      &argument->origin);
        }
        return workspaceFromArgument(*argument, inputs.properties, inputs.installDir);
    }
    if (property != nullptr) {
        return workspaceFromProperty(*property, inputs.properties, inputs.installDir);
    }
    return {defaultWorkspace(inputs.properties), Origin{nullptr, Origin::kHome}};
}

std::wstring getConfigurationLocation(const LaunchInputs& inputs) {
    switch (inputs.traits.eConfig) {
        case InstallConfiguration::kService:
            return inputs.installDir + paths::kServiceConfiguration;
        case InstallConfiguration::kMultiuserServiceInit:
            return inputs.installDir + paths::kMuServiceConfiguration;
        default:
            return inputs.workspace + paths::kConfiguration;
    }
}

std::wstring getLogLocation(const std::wstring& workspace) {
    return osPath(workspace + paths::kLogs);
}

}  // namespace rcp
