// Names that the launcher asks for. Whoever looks one up takes a type of this file, and a literal is
// none: what a user can write stands in this folder, and nowhere else.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace rcp {

template <typename Kind>
class Name : public std::wstring_view {
  public:
    /// For the vocabulary's constants, and a name that is cut out of a longer text.
    explicit constexpr Name(std::wstring_view text) : std::wstring_view(text) {}
    /// A name that was put together or read.
    template <std::same_as<std::wstring> Text>
    Name(const Text& text) : std::wstring_view(text) {}

    friend std::wstring operator+(Name name, std::wstring_view text) {
        return std::wstring(name).append(text);
    }
};

using Key = Name<struct KeyKind>;                // of a property, or the beginning of several
using OptionName = Name<struct OptionKind>;      // of the command line
using VariableName = Name<struct VariableKind>;  // of the environment

}  // namespace rcp
