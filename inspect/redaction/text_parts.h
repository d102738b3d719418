// What the rules for secrets in a text share: where its lines, entries, names and quoted values begin and end.
#pragma once

#include "inspect/redaction/text_rules.h"

#include <initializer_list>
#include <string_view>
#include <vector>

namespace rcp::inspect {

inline constexpr std::string_view kBlanks = " \t";
inline constexpr std::string_view kOriginBehind = "    (";  // as the texts of rcpinspect write it

struct Name {
    std::size_t begin = 0;
    std::size_t end = 0;
    [[nodiscard]] std::string_view in(std::string_view text) const {
        return text.substr(begin, end - begin);
    }
};

bool isNameCharacter(char character);
bool isAt(std::string_view text, std::size_t at, std::string_view characters);
std::size_t endOfLine(std::string_view text, std::size_t at);
/// The end of a property's value, which goes on behind a backslash.
std::size_t endOfEntry(std::string_view text, std::size_t at);
/// Where the first of them begins between `at` and `end`; `end` without one.
std::size_t firstOf(std::string_view text, std::size_t at, std::size_t end,
                    std::initializer_list<std::string_view> ends);
/// The quote that ends what the one at `at` begins, or the line's end.
std::size_t endOfQuoted(std::string_view text, std::size_t at);
/// The name that ends at `end`, blanks and a quote between.
Name nameBefore(std::string_view text, std::size_t end);
/// Whether a line, an entry or a comment begins behind that part of it; "FILE:12:" and an element's number may be it.
bool isFirstBehind(std::string_view front);
/// Whether an argument is an option and not, though it begins with "-", a value: "-clean", "-Xmx1g", "--a=b". With one
/// dash it is one that the launcher, the platform or the JVM know, or the name of a secret.
bool isOption(std::string_view argument);
/// Of an argument under a key "vmarg.NAME" what is behind its own name, of a placeholder its default.
SecretPart narrowed(std::string_view text, SecretPart part);
/// Adds such a part without the quote in front and what belongs to the line.
void addPart(std::vector<SecretPart>& parts, std::string_view text, SecretPart part);

}  // namespace rcp::inspect
