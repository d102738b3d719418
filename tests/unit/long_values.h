// Values that do not fit a line, of everything that could go wrong where a line ends.
#pragma once

#include "launcher/properties/java_properties.h"

#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::test {

inline std::wstring escapedValue(const std::wstring& value) {
    return convWcharTo8859_1_Value(value);
}

/// A text whose written form has `length` bytes. `density` in ten of its characters are special.
inline std::wstring longValue(std::mt19937& random, std::size_t length, unsigned density) {
    static constexpr std::wstring_view kSpecials = L"   \t\n=:#!\\\u00E9\u65E5u";
    std::wstring text;
    std::size_t written = 0;
    while (written < length) {
        wchar_t next = static_cast<wchar_t>(L'a' + random() % 26);
        if (random() % 10 < density) {
            next = kSpecials[random() % kSpecials.size()];
        }
        const std::size_t size = next >= L'a' && next <= L'z' ? 1 : escapedValue({next}).size();
        if (written + size > length) {
            next = L'z';
        }
        text += next;
        written += next == L'z' ? 1 : size;
    }
    return text;
}

/// The lengths at which the ends of lines lie, and some far beyond.
inline std::vector<std::size_t> longLengths() {
    std::vector<std::size_t> lengths;
    for (std::size_t length = 1990; length <= 2060; ++length) {
        lengths.push_back(length);
    }
    for (std::size_t length = 4030; length <= 4060; ++length) {
        lengths.push_back(length);
    }
    std::mt19937 random(4);  // NOLINT: the same lengths in every run
    for (int i = 0; i < 6; ++i) {
        lengths.push_back(random() % 100'000);
    }
    return lengths;
}

/// Values of all these lengths, from hardly any to nothing but special characters, and runs of one
/// special character.
inline std::vector<std::wstring> longValues() {
    std::mt19937 random(5);  // NOLINT: the same values in every run
    std::vector<std::wstring> values;
    for (const std::size_t length : longLengths()) {
        for (const unsigned density : {1U, 5U, 10U}) {
            values.push_back(longValue(random, length, density));
        }
        for (const wchar_t run : std::wstring_view(L" =\\\u00E9")) {
            values.push_back(L"a" + std::wstring(length / escapedValue({run}).size(), run) + L"z");
            values.push_back(std::wstring(length, run) + L"z");
        }
    }
    return values;
}

/// The same as an administrator writes them: not escaped, or escaped in ways of his own.
inline std::string longRawValue(std::mt19937& random, std::size_t length) {
    static constexpr std::string_view kParts[] = {
        "\xC3\xA9", "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "\\t", "\\:", "\\=", "\\#", "\\!", "\\\\",
        "\\ ",      "\\u00e9",      "\\u0041",          " ",   "=",   ":",   "#",   "!",   "abc"};
    std::string text = "a";
    while (text.size() < length) {
        text += kParts[random() % std::size(kParts)];
    }
    return text + "z";
}

}  // namespace rcp::test
