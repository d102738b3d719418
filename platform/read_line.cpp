// readFile: the launcher's line scanner. It reads as the C library would with the same scan format,
// but never stalls on an empty line and never splits a character.
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace rcp {
namespace {

// What a format asks for: a leading blank, and the number in "%<N>[^\n]\n".
struct ScanFormat {
    bool skipsLeadingBlanks = false;
    std::size_t limit = 0;
};

ScanFormat parseFormat(std::wstring_view format) {
    ScanFormat parsed;
    parsed.skipsLeadingBlanks = format.starts_with(L' ');
    for (const wchar_t character : format.substr(std::min(format.find(L'%') + 1, format.size()))) {
        if (character < L'0' || character > L'9') {
            break;
        }
        parsed.limit = parsed.limit * 10 + static_cast<std::size_t>(character - L'0');
    }
    return parsed;
}

// isspace(3) for bytes below 128 and false for all others, which belong to UTF-8 characters.
bool isBlank(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

void skipBlanks(TextLines& text) {
    std::size_t count = 0;
    while (count < text.rest.size() && isBlank(text.rest[count])) {
        text.lineFeeds += text.rest[count++] == '\n' ? 1 : 0;
    }
    text.rest.remove_prefix(count);
}

constexpr std::size_t kLongestCharacter = 4;

// Bytes of the UTF-8 character that `lead` begins; 1 for everything that begins none.
std::size_t characterLength(char first) {
    const auto lead = static_cast<unsigned char>(first);
    if (lead < 0xC0) {
        return 1;
    }
    if (lead < 0xE0) {
        return 2;
    }
    return lead < 0xF0 ? 3 : kLongestCharacter;
}

// The bytes of the line at the beginning of `text`, cut in front of the first character that does not fit
// into `limit`. One character is always taken, or a limit below its length would stop the reader.
std::size_t lineLength(std::string_view text, std::size_t limit) {
    // A long line is not searched for every piece of it.
    text = text.substr(0, limit + kLongestCharacter);
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::size_t length = limit < kLongestCharacter ? 0 : limit - kLongestCharacter + 1;
    length = std::min(length, end);  // all of these fit, whatever they are
    while (length < end && (length == 0 || length + characterLength(text[length]) <= limit)) {
        ++length;
    }
    return length;
}

}  // namespace

bool readFile(TextLines& text, std::wstring_view format, std::wstring& out) {
    const ScanFormat scan = parseFormat(format);
    out.clear();
    if (scan.skipsLeadingBlanks || text.rest.starts_with('\n')) {
        skipBlanks(text);
    }
    if (text.rest.empty()) {
        return false;
    }
    text.line = text.lineFeeds + 1;
    const std::size_t length = lineLength(text.rest, scan.limit);
    chartowstr(std::string(text.rest.substr(0, length)).c_str(), out);
    text.rest.remove_prefix(length);
    skipBlanks(text);
    return true;
}

void reportUnreadableLine(const std::wstring& path, std::size_t line) {
    static std::set<std::wstring> reported;
    if (reported.insert(path).second) {
        report(noReason(), messages.lineNoText, path, line);
    }
}

}  // namespace rcp
