#include "inspect/redaction/bare_secrets.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// Of a block without end: as far as there is nothing but a key, behind the heading and in the lines below.
std::size_t endOfKeyLines(std::string_view block) {
    constexpr std::string_view kKey =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=-\\\r";
    const std::size_t heading = block.find("-----", std::string_view("-----BEGIN ").size());
    std::size_t end = std::min(block.find_first_of(" \n", heading), block.size());
    while (isAt(block, end, "\n")) {
        const std::size_t begin = block.find_first_not_of(" \t#!", end + 1);
        const std::size_t line = begin == kNone ? begin : endOfLine(block, begin);
        if (line == kNone || line == begin ||
            block.substr(begin, line - begin).find_first_not_of(kKey) != kNone) {
            break;
        }
        end = line;
    }
    return end;
}

}  // namespace

// A password that is not encoded as it should be may hold a slash.
void findUserInfo(std::string_view text, std::size_t at, std::vector<SecretPart>& parts) {
    constexpr std::size_t kLongest = 2048;
    const std::size_t from = at - std::min(at, kLongest);
    const std::size_t scheme = text.substr(from, at - from).rfind("://");
    if (scheme == kNone) {
        return;
    }
    const std::size_t begin = from + scheme + 3;
    const std::string_view info = text.substr(begin, at - begin);
    const std::string_view first = info.substr(0, info.find('/'));
    const std::size_t colon = first.find(':');
    const bool hasPassword =
        colon != kNone && first.find_first_not_of("0123456789", colon + 1) != kNone;
    if (info.find_first_of(" \t\n\"'<>") == kNone && (first.size() == info.size() || hasPassword)) {
        addPart(parts, text, {begin, at, "user-info of a URL"});
    }
}

void findPem(std::string_view text, std::size_t at, std::vector<SecretPart>& parts) {
    constexpr std::string_view kBegin = "-----BEGIN ";
    constexpr std::string_view kEnd = "-----END ";
    constexpr std::string_view kDashes = "-----";
    constexpr std::size_t kLongest = std::size_t{64} << 10U;
    if (!text.substr(at).starts_with(kBegin)) {
        return;
    }
    const std::string_view block = text.substr(at, kLongest);
    const std::size_t last = block.find(kEnd, kBegin.size());
    const bool isAnothers = block.find(kBegin, kBegin.size()) < last;
    const std::size_t dashes =
        last == kNone || isAnothers ? kNone : block.find(kDashes, last + kEnd.size());
    addPart(
        parts, text,
        {at, at + (dashes == kNone ? endOfKeyLines(block) : dashes + kDashes.size()), "PEM block"});
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
