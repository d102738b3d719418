// Placeholders: "${", a name, and the first "}" behind it. Three standard ones stand for locations
// of this launch; user placeholders name an environment variable ("env.VAR" or "env.VAR,default")
// or a property ("prop.KEY").
#pragma once

#include "launcher/properties/property_list.h"
#include "launcher/properties/vm_argument_map.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace rcp {

/// What the standard placeholders stand for. "${rcp.data}" and "${workspace.location}" are the
/// same.
struct StandardLocations {
    std::wstring workspace;
    std::wstring installDir;
};

/// Replaces every `placeholder` in `text`. The search goes on behind the inserted text, so a value
/// that holds its own placeholder cannot loop.
void replaceEvery(std::wstring& text, std::wstring_view placeholder, const std::wstring& value);

/// Replaces the first `placeholder` in `text`.
void replaceFirst(std::wstring& text, std::wstring_view placeholder, const std::wstring& value);
/// Replaces the first "${rcp.home}" in `text`; the rule of single paths.
void replaceFirstRcpHome(std::wstring& text, const std::wstring& installDir);

/// Replaces every standard placeholder in `text`. Inserted text is not searched again.
void replaceStdPlaceholders(const StandardLocations& locations, std::wstring& text);

/// Where a placeholder stands in a text.
struct Placeholder {
    std::size_t begin = 0;   // of "${"
    std::size_t end = 0;     // of "}"
    std::wstring_view name;  // between the two, as long as the text stays
};

/// The last "${" at or before `limit`, if a "}" stands behind it. "The last one first" resolves nested
/// placeholders from the inside out.
std::optional<Placeholder> findLastPlaceholder(std::wstring_view text, std::size_t limit);

/// The value of a user placeholder's name; none when it cannot be resolved.
std::optional<std::wstring> getPlaceholderValue(std::wstring_view name,
                                                const PropertyList& properties);

/// Replaces the user placeholders in `text`, inserted values included; true when all resolved. One
/// that keeps bringing itself back is given up after a bounded number of replacements and length
/// and counts as unresolved.
bool replaceUserPlaceholders(std::wstring& text, const PropertyList& properties);

/// Standard, then user placeholders. False when one cannot be resolved: `text` then is the one
/// behind the standard step.
bool replaceAllPlaceholders(const StandardLocations& locations, std::wstring& text,
                            const PropertyList& properties);
/// Ends the launch over the placeholders of `text`, which `key` at `origin` has brought.
[[noreturn]] void refusePlaceholders(const std::wstring& text, const std::wstring& key,
                                     const Origin& origin);

/// replaceAllPlaceholders for every value of the per-user list, resolved against the list itself.
/// One that cannot be resolved ends the launch.
void replacePlaceholdersInRcpInstallProp(StandardLocations locations, PropertyList& properties);
/// The same for every value of the map, resolved against `properties`.
void replacePlaceholdersInVmargMap(StandardLocations locations, const PropertyList& properties,
                                   VmArgumentMap& vmargMap);
/// Only the standard placeholders: user placeholders in arguments are passed on unchanged.
void replacePlaceholdersInArgv(StandardLocations locations, Arguments& arguments);

}  // namespace rcp
