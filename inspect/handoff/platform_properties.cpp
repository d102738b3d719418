#include "inspect/handoff/platform_properties.h"

#include <algorithm>
#include <charconv>

namespace rcp::inspect {
namespace {

constexpr std::string_view kPropertyBlanks = " \t\f";
constexpr std::size_t kHexDigits = 4;

void addCharacter(unsigned character, std::string& text) {
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    if (character < 0x800) {
        text += static_cast<char>(0xC0U | character >> 6U);
    } else {
        text += static_cast<char>(0xE0U | character >> 12U);
        text += static_cast<char>(0x80U | (character >> 6U & 0x3FU));
    }
    text += static_cast<char>(0x80U | (character & 0x3FU));
}

// What stands for the escape at the front of `rest`, behind its backslash; takes it off.
unsigned takeEscape(std::string_view& rest) {
    const char kind = rest.front();
    rest.remove_prefix(1);
    unsigned number = 0;
    if (kind == 'u' && rest.size() >= kHexDigits) {
        std::from_chars(rest.data(), rest.data() + kHexDigits, number, 16);
        rest.remove_prefix(kHexDigits);
        return number;
    }
    constexpr std::string_view kNames = "tnrf";
    constexpr std::string_view kMeant = "\t\n\r\f";
    const std::size_t known = kNames.find(kind);
    return static_cast<unsigned char>(known == std::string_view::npos ? kind : kMeant[known]);
}

std::string withoutEscapes(std::string_view written) {
    std::string text;
    while (!written.empty()) {
        const unsigned char next = static_cast<unsigned char>(written.front());
        written.remove_prefix(1);
        if (next != '\\') {
            addCharacter(next, text);
        } else if (!written.empty()) {
            addCharacter(takeEscape(written), text);
        }
    }
    return text;
}

// Whether the line goes on in the next one: behind a backslash that no other one escapes.
bool goesOn(std::string_view line) {
    const std::size_t other = line.find_last_not_of('\\');
    return (line.size() - (other == std::string_view::npos ? 0 : other + 1)) % 2 == 1;
}

void addEntry(std::string_view entry, std::size_t line, PlatformProperties& all) {
    std::size_t end = 0;
    while (end < entry.size() &&
           std::string_view("=: \t\f").find(entry[end]) == std::string::npos) {
        end += entry[end] == '\\' ? 2 : 1;
    }
    end = std::min(end, entry.size());
    std::size_t value = std::min(entry.find_first_not_of(kPropertyBlanks, end), entry.size());
    if (value < entry.size() && (entry[value] == '=' || entry[value] == ':')) {
        value = std::min(entry.find_first_not_of(kPropertyBlanks, value + 1), entry.size());
    }
    all[withoutEscapes(entry.substr(0, end))] = {withoutEscapes(entry.substr(value)), line};
}

// Whether four hexadecimal digits follow every "\u".
bool isWellFormed(std::string_view entry) {
    for (std::size_t at = entry.find('\\'); at < entry.size(); at = entry.find('\\', at)) {
        if (entry.substr(at).starts_with("\\u")) {
            const std::string_view digits = entry.substr(at + 2, kHexDigits);
            if (digits.size() < kHexDigits ||
                digits.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
                return false;
            }
        }
        at += 2;
    }
    return true;
}

// Each entry in one line, with the number of the line in which it begins.
template <typename Take>
void takeEntries(std::string_view file, Take take) {
    std::string entry;
    std::size_t begin = 0;
    for (std::size_t number = 1; !file.empty(); ++number) {
        const std::size_t end = std::min(file.find_first_of("\r\n"), file.size());
        std::string_view line = file.substr(0, end);
        file.remove_prefix(
            std::min(end + (file.substr(end).starts_with("\r\n") ? 2 : 1), file.size()));
        line.remove_prefix(std::min(line.find_first_not_of(kPropertyBlanks), line.size()));
        if (begin == 0 && (line.empty() || line.front() == '#' || line.front() == '!')) {
            continue;
        }
        begin = begin == 0 ? number : begin;
        const bool isContinued = goesOn(line);
        entry += line.substr(0, line.size() - (isContinued ? 1 : 0));
        if (!isContinued || file.empty()) {
            take(entry, begin);
            entry.clear();
            begin = 0;
        }
    }
}

}  // namespace

PlatformProperties readPlatformProperties(std::string_view file) {
    PlatformProperties all;
    takeEntries(file,
                [&](std::string_view entry, std::size_t line) { addEntry(entry, line, all); });
    return all;
}

std::optional<std::size_t> malformedLine(std::string_view file) {
    std::optional<std::size_t> first;
    takeEntries(file, [&](std::string_view entry, std::size_t line) {
        first = first || isWellFormed(entry) ? first : std::optional(line);
    });
    return first;
}

}  // namespace rcp::inspect
