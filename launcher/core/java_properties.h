// Escaping for the property files that the Java side reads. A java.util.Properties reader gets back
// the launcher's own text from printable ASCII.
#pragma once

#include <cstdint>
#include <string>

namespace rcp {

/// Appends the four lowest hexadecimal digits of `codePoint`, lower-case. Higher ones are dropped:
/// there is no surrogate-pair encoding.
void addHexDigits(std::wstring& out, std::uint32_t codePoint);
/// Append the escaped form of a key or value. Only keys escape blanks.
void convWcharTo8859_1_Key(const std::wstring& key, std::wstring& out);
void convWcharTo8859_1_Value(const std::wstring& value, std::wstring& out);
/// Appends escaped key, "=", escaped value.
void convWcharTo8859_1(const std::wstring& key, const std::wstring& value, std::wstring& out);

}  // namespace rcp
