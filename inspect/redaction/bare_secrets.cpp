#include "inspect/redaction/bare_secrets.h"

#include <algorithm>
#include <cctype>

namespace rcp::inspect {
namespace {

constexpr std::size_t kLineOfKey = 16;  // what is shorter is a word

constexpr std::string_view kKey =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
constexpr std::string_view kKeyInLine =  // with the signs of its lines' ends
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/\\";

// Of a block without end: as far as there is nothing but a key, behind the heading and in the lines below.
std::size_t endOfKeyLines(std::string_view block) {
    const std::size_t heading = block.find("-----", std::string_view("-----BEGIN ").size());
    std::size_t end = std::min(block.find_first_of(" \n", heading), block.size());
    while (isAt(block, end, "\n")) {
        const std::size_t line = endOfLine(block, end + 1);
        if (keyIn(block.substr(end + 1, line - end - 1)).empty()) {
            break;
        }
        end = line;
    }
    return end;
}

// Of an end without a block: the lines of a key above.
std::size_t beginOfKeyLines(std::string_view text, std::size_t at) {
    std::size_t first = at;
    std::size_t end = text.rfind('\n', at);
    while (end != kNone && end > 0) {
        const std::size_t above = text.rfind('\n', end - 1);
        const std::size_t line = above == kNone ? 0 : above + 1;
        const std::string_view key = keyIn(text.substr(line, end - line));
        if (key.empty() || (first < at && key.size() < kLineOfKey)) {  // only its last is short
            break;
        }
        first = static_cast<std::size_t>(key.data() - text.data());
        end = above;
    }
    return first;
}

// The same where its lines are parts of one value: "...MIIE\nabcd\n".
std::size_t beginOfKeyInLine(std::string_view text, std::size_t at) {
    std::size_t begin = at;
    for (const std::string_view sign : {"\\n", "\\r", "\\", "="}) {
        while (text.substr(0, begin).ends_with(sign)) {
            begin -= sign.size();
        }
    }
    while (begin > 0 && isAt(text, begin - 1, kKeyInLine)) {
        --begin;
    }
    return begin;
}

bool hasLetter(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](unsigned char character) { return std::isalpha(character) != 0; });
}

bool isNumber(std::string_view text) {
    return text.find_first_not_of("0123456789") == kNone;
}

// "[SCHEME:]//USER:PASSWORD" at the end. A password that is not encoded as it should be may hold a slash or a blank.
std::size_t sizeOfInfoBehindSlashes(std::string_view front, bool isBeforeHost) {
    const std::size_t slashes = front.rfind("//");
    if (slashes == kNone) {
        return 0;
    }
    const std::string_view info = front.substr(slashes + 2);
    const std::string_view first = info.substr(0, info.find('/'));
    const std::size_t colon = first.find(':');
    const std::size_t blank = info.find_first_of(kBlanks);
    const bool hasPassword = colon != kNone && !isNumber(first.substr(colon + 1));
    if (blank != kNone) {
        const bool isInPassword = hasPassword && colon + 1 < blank && blank < first.size();
        // "http://host:80 of joe" is a sentence
        const bool isSentence = isInPassword &&
                                isNumber(info.substr(colon + 1, blank - colon - 1)) &&
                                hasLetter(info.substr(blank));
        return isBeforeHost && isInPassword && !isSentence ? info.size() : 0;
    }
    const bool hasScheme = slashes > 0 && front[slashes - 1] == ':';
    const bool isWhole = first.size() == info.size() && (hasScheme || colon != kNone);
    return isWhole || hasPassword ? info.size() : 0;
}

// "jdbc:oracle:thin:USER/PASSWORD" at the end.
std::size_t sizeOfDatabaseInfo(std::string_view front) {
    std::size_t colon = front.rfind("jdbc:");
    for (int i = 0; i < 3 && colon != kNone; ++i) {
        colon = front.find(':', colon + 1 - (i == 0 ? 1 : 0));
    }
    const std::string_view info = colon == kNone ? "" : front.substr(colon + 1);
    return info.starts_with('/') || info.find('/') == kNone ? 0 : info.size();
}

// "USER:PASSWORD" at the end; what is no user says what kind of address follows.
std::size_t sizeOfBareInfo(std::string_view front) {
    constexpr std::string_view kNoUsers[] = {"mailto", "mail", "email",     "sip",    "xmpp",
                                             "file",   "jar",  "reference", "initial"};
    front.remove_prefix(front.find_last_of(" \t,;()[]{}|") + 1);
    front.remove_prefix(front.substr(0, front.find(':')).find_last_of('=') + 1);
    const std::size_t colon = std::min(front.find(':'), front.size());
    const std::string_view user = front.substr(0, colon);
    const std::string_view password = front.substr(std::min(colon + 1, front.size()));
    const bool isUser =
        !user.empty() && std::isalpha(static_cast<unsigned char>(user.front())) != 0 &&
        std::all_of(user.begin(), user.end(), isNameCharacter) && !isOneOf(kNoUsers, user);
    return isUser && !password.empty() && password.find('/') == kNone ? front.size() : 0;
}

}  // namespace

std::string_view keyIn(std::string_view line) {
    const auto trimmed = [](std::string_view text) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t#!\"'"), text.size()));
        return text.substr(0, text.find_last_not_of(" \t\r\\\"'") + 1);
    };
    line = trimmed(line);
    if (line.find_first_not_of(kKey) == kNone && line.find('=') >= line.find_last_not_of('=')) {
        return line;
    }
    const std::size_t separator = line.find_first_of("=:");
    const std::string_view value = separator == kNone ? "" : trimmed(line.substr(separator + 1));
    return value.size() < kLineOfKey || value.find_first_not_of(kKey) != kNone ? "" : value;
}

void findUserInfo(std::string_view text, std::size_t at, std::vector<SecretPart>& parts) {
    constexpr std::size_t kLongest = 2048;
    const std::size_t from = at - std::min(at, kLongest);
    std::string_view front = text.substr(from, at - from);
    front.remove_prefix(front.find_last_of("\n\"'<>") + 1);
    const bool isBeforeHost =
        at + 1 < text.size() && std::isalnum(static_cast<unsigned char>(text[at + 1])) != 0;
    std::size_t size = sizeOfInfoBehindSlashes(front, isBeforeHost);
    size = size > 0 ? size : sizeOfDatabaseInfo(front);
    size = size > 0 || !isBeforeHost ? size : sizeOfBareInfo(front);
    if (size > 0) {
        addPart(parts, text, {at - size, at, "user-info of a URL"});
    }
}

void findPem(std::string_view text, std::size_t at, std::vector<SecretPart>& parts) {
    constexpr std::string_view kBegin = "-----BEGIN ";
    constexpr std::string_view kEnd = "-----END ";
    constexpr std::string_view kDashes = "-----";
    constexpr std::size_t kLongest = std::size_t{64} << 10U;
    const std::string_view block = text.substr(at, kLongest);
    if (block.starts_with(kEnd)) {
        const std::size_t inLine = beginOfKeyInLine(text, at);
        const std::size_t begin = inLine < at ? inLine : beginOfKeyLines(text, at);
        addPart(parts, text, {begin, at, "PEM block"});
        return;
    }
    if (!block.starts_with(kBegin)) {
        return;
    }
    const std::size_t last = block.find(kEnd, kBegin.size());
    const bool isAnothers = block.find(kBegin, kBegin.size()) < last;
    const std::size_t dashes =
        last == kNone || isAnothers ? kNone : block.find(kDashes, last + kEnd.size());
    addPart(
        parts, text,
        {at, at + (dashes == kNone ? endOfKeyLines(block) : dashes + kDashes.size()), "PEM block"});
}

void findBareKeys(std::string_view text, std::vector<SecretPart>& parts) {
    constexpr std::string_view kBeginnings[] = {"MII", "LS0tLS1CRUdJTi"};
    constexpr std::size_t kShortest = 24;
    for (const std::string_view beginning : kBeginnings) {
        for (std::size_t at = text.find(beginning); at != kNone;) {
            const std::size_t end = std::min(text.find_first_not_of(kKey, at), text.size());
            if (end - at >= kShortest && (at == 0 || !isAt(text, at - 1, kKeyInLine))) {
                addPart(parts, text, {at, end, "key"});
            }
            at = text.find(beginning, end);
        }
    }
}

void findPrefixed(std::string_view text, std::string_view prefix, const char* name,
                  std::vector<SecretPart>& parts) {
    constexpr std::size_t kShortest = 8;
    for (std::size_t at = text.find(prefix); at != kNone; at = text.find(prefix, at + 1)) {
        const std::size_t begin = at + prefix.size();
        const std::size_t end = std::min(text.find_first_of(" \t\n\"',<>)", begin), text.size());
        if (end - begin >= kShortest) {
            addPart(parts, text, {begin, end, name});
        }
    }
}

}  // namespace rcp::inspect
