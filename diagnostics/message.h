// A message whose directives are checked where it is written down, and its arguments where it is reported.
#pragma once

#include "diagnostics/directive.h"

#include <concepts>
#include <optional>
#include <string_view>

namespace rcp {

/// The kinds of arguments.
struct Text {};    // "%s" and "%ls"
struct Number {};  // "%d" and "%lu"

/// A message as people are told of it.
struct MessageRow {
    const char* format;  // of the record, its number included
    const char* step;    // empty for a message without a number
    const char* remedy;  // its cause, and what helps
};

namespace detail {

/// Whether the format's directives are for a text or a number, in order, and there are no others.
template <typename... Kinds>
constexpr bool takes(std::string_view format) {
    constexpr std::size_t kCount = sizeof...(Kinds);
    constexpr bool kIsText[kCount + 1] = {std::same_as<Kinds, Text>...};
    std::size_t count = 0;
    for (std::size_t at = format.find('%'); at != std::string_view::npos;
         at = format.find('%', at)) {
        const std::optional<Directive> directive = readDirective(format.substr(at));
        if (!directive || count == kCount || directive->isText() != kIsText[count]) {
            return false;
        }
        ++count;
        at += directive->text.size();
    }
    return count == kCount;
}

template <typename Kind, typename Value>
inline constexpr bool isOfKind =
    std::same_as<Kind, Text> ? std::convertible_to<const Value&, std::string_view> ||
                                   std::convertible_to<const Value&, std::wstring_view>
                             : std::integral<Value>;

// No constant expression calls it: the compiler names it for a message that does not fit.
inline void directivesAreNotOfTheseKinds() {}

}  // namespace detail

template <typename... Kinds>
struct Message : MessageRow {
    /// Does not compile when the directives of `text` are not of these kinds.
    consteval Message(const char* text, const char* whichStep, const char* whatHelps)
        : MessageRow{text, whichStep, whatHelps} {
        if (!detail::takes<Kinds...>(text)) {
            detail::directivesAreNotOfTheseKinds();
        }
    }

    /// Whether it can be given these arguments.
    template <typename... Values>
    static constexpr bool fits() {
        if constexpr (sizeof...(Kinds) == sizeof...(Values)) {
            return (detail::isOfKind<Kinds, Values> && ...);
        } else {
            return false;
        }
    }
};

}  // namespace rcp
