// Escaping for the property files that the Java side reads. A java.util.Properties reader gets back
// the launcher's own text from printable ASCII.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace rcp {

/// Appends the four lowest hexadecimal digits of `codePoint`, lower-case. Higher ones are dropped:
/// there is no surrogate-pair encoding.
void addHexDigits(std::wstring& out, std::uint32_t codePoint);
/// The escaped form of a key or value. Only keys escape blanks.
std::wstring convWcharTo8859_1_Key(std::wstring_view key);
std::wstring convWcharTo8859_1_Value(std::wstring_view value);

/// An entry as it stands in a file, with its line feeds. `key` and `value` are in their written form.
/// The launcher's reader takes a line in pieces, and what stands behind the first would be an entry
/// of its own; so nothing the launcher writes has a line longer than 2,000 bytes. A longer one goes
/// on behind a backslash, cut where this reader and java.util.Properties join the lines to the
/// value that was meant. Shorter entries stay as they are.
std::string propertyLines(std::string_view key, std::string_view value);

}  // namespace rcp
