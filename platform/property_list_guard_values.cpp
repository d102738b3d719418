// The text of the elements of XML property lists. One system's parser refuses the list for a wrong one, the
// other's makes something of it; only what both read alike, and read again as they write it, is let through.
#include "platform/property_list_guard.h"
#include "platform/utf8.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace rcp::platform {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isOneOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

/// The number that is the whole text; none for any other text.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text, int base) {
    Number value = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, value, base);
    return error == std::errc() && behind == end ? std::optional(value) : std::nullopt;
}

/// Whether XML has the character and every parser, also one that keeps 16 bits of the number, takes it for that.
bool mayBeReferredTo(std::uint32_t c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c < 0xD800) ||
           (c >= 0xE000 && c < 0xFFFE);
}

/// Whether that stands between "&" and ";" of a reference.
bool isReference(std::string_view name) {
    // What may stand behind the "#" of the one parser that takes less.
    constexpr std::size_t kMostBehindHash = 7;
    constexpr std::string_view kNames[] = {"amp", "lt", "gt", "quot", "apos"};
    if (!name.starts_with('#') || name.size() > kMostBehindHash + 1) {
        return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
    }
    const bool isHex = name.starts_with("#x");
    const auto c = wholeNumber<std::uint32_t>(name.substr(isHex ? 2 : 1), isHex ? 16 : 10);
    return c && mayBeReferredTo(*c);
}

/// The text of a string: the only markup in it are CDATA sections.
bool isText(std::string_view text) {
    for (std::size_t at = text.find_first_of("&<"); at != std::string_view::npos;
         at = text.find_first_of("&<", at)) {
        const bool isSection = text[at] == '<';
        const std::size_t end = text.find(isSection ? "]]>" : ";", at);
        if (end == std::string_view::npos ||
            (!isSection && !isReference(text.substr(at + 1, end - at - 1)))) {
            return false;
        }
        at = end;
    }
    return decodeUtf8(text).has_value();
}

/// Not the key that makes a reference of a dictionary for one parser, in whichever way it is written.
bool isKey(std::string_view text) {
    return text != "CF$UID" && text.find('<') == std::string_view::npos &&
           text.find("&#") == std::string_view::npos && isText(text);
}

/// Takes the digits at the front away; how many there were.
std::size_t takeDigits(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count;
}

bool takeSign(std::string_view& text) {
    const bool hasSign = text.starts_with('+') || text.starts_with('-');
    text.remove_prefix(hasSign ? 1 : 0);
    return hasSign;
}

bool isInteger(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    takeSign(text);
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (!isHex && text.size() > 1 && text.starts_with('0')) {
        return false;  // octal to one of them
    }
    const auto value = wholeNumber<std::uint64_t>(text.substr(isHex ? 2 : 0), isHex ? 16 : 10);
    constexpr std::uint64_t kLowest = std::uint64_t{1} << 63U;
    return value && (!isNegative || *value <= kLowest);
}

bool isReal(std::string_view text) {
    const bool hasSign = takeSign(text);
    if (text == "inf" || text == "infinity" || (text == "nan" && !hasSign)) {
        return true;
    }
    std::size_t digits = takeDigits(text);
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        digits += takeDigits(text);
    }
    if (digits > 0 && (text.starts_with('e') || text.starts_with('E'))) {
        text.remove_prefix(1);
        takeSign(text);
        return takeDigits(text) > 0 && text.empty();
    }
    return digits > 0 && text.empty();
}

/// Such as "2026-11-21T23:59:59Z". A year of less digits, or one behind the last of four, is not written
/// as it is read.
bool isDate(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    const bool hasForm =
        std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                   [](char c, char form) { return form == '0' ? isDigit(c) : c == form; });
    if (!hasForm || text.starts_with('0')) {
        return false;
    }
    const auto at = [&](std::size_t i) { return 10 * (text[i] - '0') + (text[i + 1] - '0'); };
    return at(5) >= 1 && at(5) <= 12 && at(8) >= 1 && at(8) <= 31 && at(11) <= 23 && at(14) <= 59 &&
           at(17) <= 59;
}

/// Whole groups of base64, with blanks wherever they like.
bool isData(std::string_view text) {
    constexpr std::string_view kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::size_t letters = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        if (c == '=') {
            ++padding;
        } else if (!isOneOf(" \t\r\n", c)) {
            if (padding > 0 || !isOneOf(kLetters, c)) {
                return false;
            }
            ++letters;
        }
    }
    return padding <= 2 && (letters + padding) % 4 == 0;
}

bool isNothing(std::string_view text) {
    return text.empty();
}

struct Rule {
    std::string_view element;
    PropertyListTextRule isRight;
};

constexpr Rule kRules[] = {
    {"key", isKey},   {"string", isText}, {"integer", isInteger}, {"real", isReal},
    {"date", isDate}, {"data", isData},   {"true", isNothing},    {"false", isNothing},
};

}  // namespace

PropertyListTextRule propertyListTextRule(std::string_view element) {
    const auto* const rule = std::find_if(std::begin(kRules), std::end(kRules),
                                          [&](const Rule& one) { return one.element == element; });
    return rule == std::end(kRules) ? nullptr : rule->isRight;
}

}  // namespace rcp::platform
