#include "platform/text.h"

#include "diagnostics/svc_debug.h"

#include <errno.h>
#include <stdlib.h>
#include <wchar.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace rcp {
namespace {

constexpr auto kNotConvertible = static_cast<std::size_t>(-1);

// ASCII is the same in every character set that a locale can have here, and nearly every text is
// ASCII: it need not go through the C library's converters. Both loops go over several characters at
// a time, so neither stops early.
template <typename Char>
bool isAscii(std::basic_string_view<Char> text) {
    std::make_unsigned_t<Char> bits = 0;
    for (const Char character : text) {
        bits |= static_cast<std::make_unsigned_t<Char>>(character);
    }
    return bits < 0x80;
}

template <typename From, typename To>
void copyAscii(std::basic_string_view<From> text, To* target) {
    std::transform(text.begin(), text.end(), target,
                   [](From character) { return static_cast<To>(character); });
}

}  // namespace

void freeString(wchar_t* buffer) {
    free(buffer);
}

WideBuffer newString(std::size_t n) {
    WideBuffer buffer(static_cast<wchar_t*>(calloc(n + 1, sizeof(wchar_t))));
    if (!buffer) {
        fatal(because(ENOMEM), messages.newStringFailed, GetLastErrorMsg());
    }
    return buffer;
}

WideBuffer mallocString(std::size_t n) {
    WideBuffer buffer;
    if (n < SIZE_MAX / sizeof(wchar_t)) {
        buffer.reset(static_cast<wchar_t*>(malloc((n + 1) * sizeof(wchar_t))));
    }
    if (!buffer) {
        fatal(because(ENOMEM), messages.mallocStringFailed);
    }
    return buffer;
}

void convertBS2S(std::wstring& text) {
    std::replace(text.begin(), text.end(), L'\\', L'/');
}

void convertToOsSeparator(std::wstring& path) {
    convertBS2S(path);
}

std::wstring osPath(std::wstring path) {
    convertToOsSeparator(path);
    return path;
}

std::size_t wcstochar(std::string& out, const wchar_t* text) {
    if (const std::wstring_view view = text; isAscii(view)) {
        out.resize(view.size());
        copyAscii(view, out.data());
        return out.size();
    }
    const std::size_t length = wcstombs(nullptr, text, 0);
    if (length == kNotConvertible) {
        out.clear();
        return 0;
    }
    std::string converted(length, '\0');
    (void)wcstombs(converted.data(), text, length);
    out = std::move(converted);
    return length;
}

std::size_t wstrtocs(std::string& out, const std::wstring& text) {
    return wcstochar(out, text.c_str());
}

WideBuffer chartowcs(const char* text) {
    if (const std::string_view view = text; isAscii(view)) {
        WideBuffer buffer = newString(view.size());
        copyAscii(view, buffer.get());
        return buffer;
    }
    const std::size_t measured = mbstowcs(nullptr, text, 0);
    const std::size_t length = measured == kNotConvertible ? 0 : measured;
    WideBuffer buffer = newString(length);
    (void)mbstowcs(buffer.get(), text, length);
    return buffer;
}

const wchar_t* chartowstr(const char* text, std::wstring& out) {
    if (const std::string_view view = text; isAscii(view)) {
        out.resize(view.size());
        copyAscii(view, out.data());
        return out.c_str();
    }
    const std::size_t measured = mbstowcs(nullptr, text, 0);
    const std::size_t length = measured == kNotConvertible ? 0 : measured;
    const WideBuffer buffer = mallocString(length);
    (void)mbstowcs(buffer.get(), text, length);
    buffer[length] = L'\0';
    out.assign(buffer.get(), length);
    return out.c_str();
}

std::string toNarrow(const std::wstring& text) {
    std::string out;
    wstrtocs(out, text);
    return out;
}

std::wstring toWide(const std::string& text) {
    std::wstring out;
    chartowstr(text.c_str(), out);
    return out;
}

}  // namespace rcp
