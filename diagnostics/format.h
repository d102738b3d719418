// Message formatting that cannot read what was not passed: a directive without an argument of its
// kind stays as it is written, whatever text serves as the format.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace rcp {

/// One argument of a message. Wide text is written as UTF-8.
using FormatArgument = std::variant<std::string_view, std::wstring_view, long, unsigned long>;

/// `format` with its printf(3) directives (%s, %ls, %S; %d, %i, %u, %x, %X with flags, width, precision
/// and length) replaced by `arguments` in order and "%%" by "%". A directive for which no
/// argument is left, or whose argument is of the other kind, stays as written.
std::string expandFormat(std::string_view format, std::span<const FormatArgument> arguments = {});

/// `text` as UTF-8, independent of the locale. Code points that UTF-8 does not have (surrogates,
/// values beyond U+10FFFF) become U+FFFD, so that a record is never lost to one bad character.
std::string toUtf8(std::wstring_view text);

/// The longest beginning of `text` that has at most `limit` bytes and does not end inside a UTF-8
/// character.
std::string_view cutAtCharacter(std::string_view text, std::size_t limit);

}  // namespace rcp
