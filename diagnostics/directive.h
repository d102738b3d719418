// One printf(3) directive, as far as it can be read without knowing the argument:
//
//   '%' --> flags "-+ #0" --> width --> '.' precision --> length "hlLqjzt" --> conversion "sSdiuxX"
//
// Anything else after '%' is no directive and stays in the text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace rcp {

struct Directive {
    std::string_view text;   // from '%' to the conversion character
    std::string_view shape;  // flags, width and precision only
    char conversion = 0;

    [[nodiscard]] constexpr bool isText() const { return conversion == 's' || conversion == 'S'; }
};

constexpr std::size_t skipAny(std::string_view text, std::size_t at, std::string_view set) {
    const std::size_t end = text.find_first_not_of(set, at);
    return end == std::string_view::npos ? text.size() : end;
}

/// The directive at the beginning of `text`, which begins with '%'.
constexpr std::optional<Directive> readDirective(std::string_view text) {
    std::size_t at = skipAny(text, 1, "-+ #0");
    at = skipAny(text, at, "0123456789");
    if (at < text.size() && text[at] == '.') {
        at = skipAny(text, at + 1, "0123456789");
    }
    const std::size_t shapeEnd = at;
    at = skipAny(text, at, "hlLqjzt");
    if (at >= text.size() || std::string_view("sSdiuxX").find(text[at]) == std::string_view::npos) {
        return std::nullopt;
    }
    return Directive{text.substr(0, at + 1), text.substr(1, shapeEnd - 1), text[at]};
}

}  // namespace rcp
