#include "launcher/core/java_properties.h"

#include <array>
#include <string_view>

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

}  // namespace

void addHexDigits(std::wstring& out, std::uint32_t codePoint) {
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        out += kDigits[(codePoint >> shift) & 0xFU];
    }
}

void convWcharTo8859_1_Key(const std::wstring& key, std::wstring& out) {
    for (const wchar_t character : key) {
        appendEscaped(character, L"#!=:\\ ", out);
    }
}

void convWcharTo8859_1_Value(const std::wstring& value, std::wstring& out) {
    for (const wchar_t character : value) {
        appendEscaped(character, L"#!=:\\", out);
    }
}

void convWcharTo8859_1(const std::wstring& key, const std::wstring& value, std::wstring& out) {
    convWcharTo8859_1_Key(key, out);
    out += L'=';
    convWcharTo8859_1_Value(value, out);
}

}  // namespace rcp
