#include "launcher/properties/property_text.h"

#include "launcher/vocabulary/keys.h"
#include "platform/environment.h"

#include <algorithm>
#include <string_view>

namespace rcp {
namespace {

int hexDigit(wchar_t character) {
    if (character >= L'0' && character <= L'9') {
        return character - L'0';
    }
    const wchar_t lower = character | 0x20;
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

// The number at the beginning of `digits`; 0 without digits.
wchar_t readHex(std::wstring_view digits) {
    int code = 0;
    for (const wchar_t character : digits) {
        const int digit = hexDigit(character);
        if (digit < 0) {
            break;
        }
        code = code * 16 + digit;
    }
    return static_cast<wchar_t>(code);
}

// Java writes a character beyond sixteen bits as two codes, one escape each.
void appendCode(wchar_t code, std::wstring& out) {
    const wchar_t before = out.empty() ? L'\0' : out.back();
    if (before >= 0xD800 && before <= 0xDBFF && code >= 0xDC00 && code <= 0xDFFF) {
        out.back() = 0x10000 + ((before - 0xD800) << 10) + (code - 0xDC00);
    } else {
        out += code;
    }
}

std::wstring unescape(std::wstring_view value) {
    std::wstring out;
    out.reserve(value.size());
    std::size_t at = 0;
    while (at < value.size()) {
        const std::size_t backslash = value.find(L'\\', at);
        out += value.substr(at, backslash - at);
        if (backslash == std::wstring_view::npos) {
            break;
        }
        const std::wstring_view behind = value.substr(backslash + 1);
        if (behind.starts_with(L'\\')) {
            out += L'\\';
            at = backslash + 2;
        } else if (behind.starts_with(L'u')) {
            const std::wstring_view digits = behind.substr(1, 4);
            appendCode(readHex(digits), out);
            at = backslash + 2 + digits.size();
        } else {
            at = backslash + 1;
        }
    }
    return out;
}

constexpr std::wstring_view kSystems[] = {L"win32", L"linux", L"macosx"};

}  // namespace

void trimString(std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring::npos) {
        return;
    }
    text.erase(text.find_last_not_of(L' ') + 1);
    text.erase(0, first);
}

void FilterProp(std::wstring& key) {
    trimString(key);
}

void FilterValue(std::wstring& value) {
    if (value.find(L'\\') != std::wstring::npos) {
        value = unescape(value);
    }
    value.resize(std::min(value.find(L'\0'), value.size()));
    trimString(value);
}

bool isComment(const std::wstring& line) {
    return line.starts_with(L'#') || line.starts_with(L'!');
}

bool isContinuationLine(const std::wstring& line) {
    if (line.empty()) {
        return true;
    }
    std::size_t first = line.size();
    while (first > 1 && line[first - 1] == L'\\') {
        --first;
    }
    return (line.size() - first) % 2 == 1;
}

bool processFilterKey(std::wstring& line) {
    line.erase(0, std::min(line.find_first_not_of(L' '), line.size()));
    if (line.starts_with(keys::kSystemProperty)) {
        return false;
    }
    const std::size_t keyEnd = std::min(line.find_first_of(L" :="), line.size());
    const std::wstring_view key = std::wstring_view(line).substr(0, keyEnd);
    const std::size_t dot = key.rfind(L'.');
    if (dot == std::wstring_view::npos) {
        return false;
    }
    const std::wstring_view suffix = key.substr(dot + 1);
    const bool isQualified =
        std::any_of(std::begin(kSystems), std::end(kSystems),
                    [suffix](std::wstring_view system) { return suffix.starts_with(system); });
    if (!isQualified) {
        return false;
    }
    if (!suffix.starts_with(getOS())) {
        return true;
    }
    line.erase(dot, keyEnd - dot);
    return false;
}

}  // namespace rcp
