#include "launcher/properties/java_properties.h"

#include <algorithm>

namespace rcp {
namespace {

void appendEscaped(wchar_t character, std::wstring_view specials, std::wstring& out) {
    if (character < 0x20 || character > 0x7E) {
        out += L"\\u";
        addHexDigits(out, static_cast<std::uint32_t>(character));
        return;
    }
    if (specials.find(character) != std::wstring_view::npos) {
        out += L'\\';
    }
    out += character;
}

std::wstring escaped(std::wstring_view text, std::wstring_view specials) {
    std::wstring out;
    for (const wchar_t character : text) {
        appendEscaped(character, specials, out);
    }
    return out;
}

constexpr std::size_t kLongestLine = 2000;
constexpr std::size_t kNearEnd = 32;  // where a line may end early, at a place that needs no escape
constexpr std::size_t kLongestCharacter = 4;

// What of a written value must stay together: an escape, or the bytes of a character.
std::string_view firstUnit(std::string_view text) {
    std::size_t length = 1;
    if (text.front() == '\\') {
        length = text.substr(1).starts_with('u') ? 6 : 2;
    }
    const std::size_t most = std::min(length + kLongestCharacter - 1, text.size());
    while (length < most && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80) {
        ++length;
    }
    return text.substr(0, length);
}

// The character that decides what a reader makes of a unit at the beginning of a line.
char decisiveCharacter(std::string_view unit) {
    return unit.size() > 1 && unit.front() == '\\' ? unit[1] : unit.front();
}

// Readers skip blanks at the beginning of a line, take a separator for the key's end, escaped or
// not, and "#" and "!" for a comment.
bool canBeginLine(std::string_view unit) {
    const char character = decisiveCharacter(unit);
    return static_cast<unsigned char>(character) > ' ' &&
           std::string_view("=:#!").find(character) == std::string_view::npos;
}

// A unit that cannot begin a line, in a form that can. All of them are ASCII.
std::string numbered(std::string_view unit) {
    std::wstring digits;
    addHexDigits(digits, static_cast<unsigned char>(decisiveCharacter(unit)));
    return "\\u" + std::string(digits.begin(), digits.end());
}

}  // namespace

void addHexDigits(std::wstring& out, std::uint32_t codePoint) {
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        out += kDigits[(codePoint >> shift) & 0xFU];
    }
}

std::wstring convWcharTo8859_1_Key(std::wstring_view key) {
    return escaped(key, L"#!=:\\ ");
}

std::wstring convWcharTo8859_1_Value(std::wstring_view value) {
    return escaped(value, L"#!=:\\");
}

std::string propertyLines(std::string_view key, std::string_view value) {
    std::string lines = std::string(key) + "=";
    if (lines.size() + value.size() <= kLongestLine) {
        return lines.append(value) + "\n";
    }
    std::size_t lineBegin = 0;
    bool beginsLine = true;  // the value behind its separator, too
    while (!value.empty()) {
        const std::string_view unit = firstUnit(value);
        const std::size_t length = lines.size() - lineBegin;
        if (length + unit.size() >= kLongestLine ||
            (length + kNearEnd >= kLongestLine && canBeginLine(unit))) {
            lines += "\\\n";
            lineBegin = lines.size();
            beginsLine = true;
        }
        lines += beginsLine && !canBeginLine(unit) ? numbered(unit) : std::string(unit);
        beginsLine = false;
        value.remove_prefix(unit.size());
    }
    return lines + "\n";
}

}  // namespace rcp
