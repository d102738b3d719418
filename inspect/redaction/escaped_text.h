// Texts as they stand in property files beside what they mean: the launcher's own writer and reader tell it.
#pragma once

#include "inspect/redaction/text_rules.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// What a text says when its escapes and the ends of lines that go on are taken away, to look for names and
/// separators. Numbers of characters that have a meaning of their own there ("\u0022") stay; a lone backslash goes, and
/// what is behind it ("\"") may look like a value's end that it is not. Of entries partOfEntry() knows better.
struct PlainText {
    std::string text;
    std::vector<std::size_t> places;  // of its characters in the escaped text, and the end
};
PlainText plainText(std::string_view escaped);

/// Where in an entry, as it stands in a property file, that part of its value is; when in doubt more than it.
SecretPart partOfEntry(std::string_view entry, std::string_view value, SecretPart part);

/// A value as the launcher writes it into a property file; the same when it cannot be written.
std::string writtenForm(std::string_view value);
/// What the launcher reads where that is written; the same when it cannot be read.
std::string readForm(std::string_view written);

}  // namespace rcp::inspect
