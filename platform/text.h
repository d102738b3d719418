// Wide strings and their narrow form. The launcher works in wide strings (32-bit wchar_t) and
// converts only where it calls the system, with the multibyte conversion of the process's
// character-type locale (UTF-8 in practice; mbstowcs(3), wcstombs(3)).
#pragma once

#include <memory>
#include <string>

namespace rcp {

/// Frees a wide buffer; null is ignored.
void freeString(wchar_t* buffer);

struct FreeWideString {
    void operator()(wchar_t* buffer) const { freeString(buffer); }
};

/// An owned, zero-terminated wide buffer.
using WideBuffer = std::unique_ptr<wchar_t[], FreeWideString>;

/// n + 1 wide characters, all zero. Ends the launch with a "ZYPRA0004E" record when there is no
/// memory.
WideBuffer newString(std::size_t n);
/// The same, uninitialised.
WideBuffer mallocString(std::size_t n);

/// Every backslash becomes "/", in place.
void convertBS2S(std::wstring& text);
/// The separators of this operating system: the same as convertBS2S.
void convertToOsSeparator(std::wstring& path);
/// `path` with the separators of this operating system.
std::wstring osPath(std::wstring path);

// The conversions. A string that cannot be converted gives an empty result; text behind an embedded
// NUL is not converted. wstrtocs and wcstochar return the number of bytes.
std::size_t wstrtocs(std::string& out, const std::wstring& text);
std::size_t wcstochar(std::string& out, const wchar_t* text);
const wchar_t* chartowstr(const char* text, std::wstring& out);
WideBuffer chartowcs(const char* text);

/// wstrtocs and chartowstr as functions of their input.
std::string toNarrow(const std::wstring& text);
std::wstring toWide(const std::string& text);

}  // namespace rcp
