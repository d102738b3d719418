// A property file as the platform reads it: unlike the launcher's reader, java.util.Properties takes a
// line of any length and replaces every escape.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace rcp::inspect {

struct PlatformProperty {
    std::string value;
    std::size_t line = 0;
};

/// Of a key that stands there twice the last counts.
using PlatformProperties = std::map<std::string, PlatformProperty>;

/// The bytes of the file are ISO 8859-1; keys and values are UTF-8.
PlatformProperties readPlatformProperties(std::string_view file);

/// The line of the first entry with a "\u" that four hexadecimal digits do not follow: the platform refuses
/// the file for it.
std::optional<std::size_t> malformedLine(std::string_view file);

}  // namespace rcp::inspect
