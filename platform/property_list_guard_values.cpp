// Numbers and dates in XML property lists. One system's parser refuses the list for a wrong one, the other's
// makes something of it; only what both read alike is let through.
#include "platform/property_list_guard.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace rcp::platform {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// Takes the digits at the front away; how many there were.
std::size_t takeDigits(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count;
}

void takeSign(std::string_view& text) {
    text.remove_prefix(text.starts_with('+') || text.starts_with('-') ? 1 : 0);
}

bool isInteger(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    takeSign(text);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, value, base);
    constexpr std::uint64_t kLowest = std::uint64_t{1} << 63U;
    return error == std::errc() && behind == end && (!isNegative || value <= kLowest);
}

bool isReal(std::string_view text) {
    takeSign(text);
    if (text == "nan" || text == "inf" || text == "infinity") {
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

/// Such as "2026-11-21T23:59:60Z".
bool isDate(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    const bool hasForm =
        std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                   [](char c, char form) { return form == '0' ? isDigit(c) : c == form; });
    if (!hasForm) {
        return false;
    }
    const auto at = [&](std::size_t i) { return 10 * (text[i] - '0') + (text[i + 1] - '0'); };
    return at(5) >= 1 && at(5) <= 12 && at(8) >= 1 && at(8) <= 31 && at(11) <= 23 && at(14) <= 59 &&
           at(17) <= 60;
}

}  // namespace

bool isSafePropertyListValue(std::string_view element, std::string_view text) {
    text = withoutBlanks(text);
    return element == "integer" ? isInteger(text)
           : element == "real"  ? isReal(text)
           : element == "date"  ? isDate(text)
                                : true;
}

}  // namespace rcp::platform
