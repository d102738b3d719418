// readFile: the launcher's line scanner. It reads as the C library would with the same scan format,
// but never stalls on an empty line and never splits a character.
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/text.h"

#include <stdio.h>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

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
bool isBlank(int byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

void skipBlanks(std::FILE& stream, LinePosition& position) {
    int byte = getc_unlocked(&stream);
    while (isBlank(byte)) {
        position.lineFeeds += byte == '\n' ? 1 : 0;
        byte = getc_unlocked(&stream);
    }
    if (byte != EOF) {
        (void)ungetc(byte, &stream);
    }
}

constexpr std::size_t kLongestCharacter = 4;

// Bytes of the UTF-8 character that `lead` begins; 1 for everything that begins none.
std::size_t characterLength(int lead) {
    if (lead < 0xC0) {
        return 1;
    }
    if (lead < 0xE0) {
        return 2;
    }
    return lead < 0xF0 ? 3 : kLongestCharacter;
}

// Whether a line of `length` bytes takes the character that `lead` begins. The first always, or a
// limit below its length would stop the reader; most without a look at it.
bool hasRoomFor(int lead, std::size_t length, std::size_t limit) {
    return length + kLongestCharacter <= limit || length == 0 ||
           length + characterLength(lead) <= limit;
}

}  // namespace

bool readFile(std::FILE& stream, std::wstring_view format, std::wstring& out,
              LinePosition* position) {
    const ScanFormat scan = parseFormat(format);
    LinePosition unused;
    LinePosition& passed = position == nullptr ? unused : *position;
    out.clear();
    if (scan.skipsLeadingBlanks) {
        skipBlanks(stream, passed);
    }
    int byte = getc_unlocked(&stream);
    if (byte == '\n') {
        ++passed.lineFeeds;
        skipBlanks(stream, passed);
        byte = getc_unlocked(&stream);
    }
    if (byte == EOF) {
        return false;
    }
    passed.line = passed.lineFeeds + 1;
    std::string line;
    std::array<char, 256> piece;  // most lines are one: collecting them needs no memory
    std::size_t inPiece = 0;
    for (std::size_t length = 0;
         byte != EOF && byte != '\n' && hasRoomFor(byte, length, scan.limit); ++length) {
        if (inPiece == piece.size()) {
            line.append(piece.data(), std::exchange(inPiece, 0));
        }
        piece[inPiece++] = static_cast<char>(byte);
        byte = getc_unlocked(&stream);
    }
    line.append(piece.data(), inPiece);
    if (byte != EOF) {
        (void)ungetc(byte, &stream);
    }
    skipBlanks(stream, passed);
    chartowstr(line.c_str(), out);
    return true;
}

void reportUnreadableLine(const std::wstring& path, std::size_t line) {
    static std::set<std::wstring> reported;
    if (reported.insert(path).second) {
        report(noReason(), messages.lineNoText, path, line);
    }
}

}  // namespace rcp
