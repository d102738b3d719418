// Texts as they stand in property files beside what they mean: the launcher's own writer and reader tell it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// What a text says when its escapes and the ends of lines that go on are taken away, to look for names and
/// separators. Escapes of what has a meaning of its own there, as blanks, quotes and line feeds, stay.
struct PlainText {
    std::string text;
    std::vector<std::size_t> places;  // of its characters in the escaped text, and the end
};
PlainText plainText(std::string_view escaped);

/// A value as the launcher writes it into a property file; the same when it cannot be written.
std::string writtenForm(std::string_view value);
/// What the launcher reads where that is written; the same when it cannot be read.
std::string readForm(std::string_view written);

}  // namespace rcp::inspect
