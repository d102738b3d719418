// Tells the form of a property list and checks the nesting of the XML form. Where two parsers could
// disagree about what is a tag (a ">" inside quotes, "<!-->", declarations inside the document
// type) the text is refused instead of guessed at; no program writes property lists that way.
#include "platform/property_list_guard.h"

#include <cstddef>
#include <string>

namespace rcp::platform {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{1} << 20;
constexpr std::string_view kBinaryMagic = "bplist00";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";

/// The text of a UTF-16 list (with its byte order mark) reduced to one byte a unit. What is not
/// ASCII becomes "x": it cannot be markup.
std::string narrowedUtf16(std::string_view data) {
    const bool bigEndian = data[0] == '\xFE';
    std::string text;
    text.reserve(data.size() / 2);
    for (std::size_t i = 2; i + 1 < data.size(); i += 2) {
        const auto high = static_cast<unsigned char>(data[bigEndian ? i : i + 1]);
        const auto low = static_cast<unsigned char>(data[bigEndian ? i + 1 : i]);
        text += high == 0 && low < 0x80 ? static_cast<char>(low) : 'x';
    }
    return text;
}

/// The position behind `end`, looked for from `from` on; npos when it does not come.
std::size_t behind(std::string_view text, std::string_view end, std::size_t from) {
    const std::size_t at = text.find(end, from);
    return at == std::string_view::npos ? at : at + end.size();
}

/// The position behind the comment, CDATA section, instruction or document type that starts at
/// `at`; npos when it is not closed or of another kind.
std::size_t behindDeclaration(std::string_view text, std::size_t at) {
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("<!-->") || rest.starts_with("<!--->") || rest.starts_with("<?>")) {
        return std::string_view::npos;
    }
    if (rest.starts_with("<!--")) {
        return behind(text, "-->", at + 4);
    }
    if (rest.starts_with("<![CDATA[")) {
        return behind(text, "]]>", at + 9);
    }
    if (rest.starts_with("<?")) {
        return behind(text, "?>", at + 2);
    }
    if (rest.starts_with("<!DOCTYPE")) {
        const std::size_t end = text.find_first_of("[<>", at + 1);
        return end != std::string_view::npos && text[end] == '>' ? end + 1 : std::string_view::npos;
    }
    return std::string_view::npos;
}

/// The position of the ">" of the tag that starts at `at`; npos when it is missing or when markup
/// characters stand inside the tag.
std::size_t endOfTag(std::string_view text, std::size_t at) {
    char quote = '\0';
    for (std::size_t i = at + 1; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '<' || (c == '>' && quote != '\0')) {
            return std::string_view::npos;
        }
        if (c == '>') {
            return i;
        }
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        }
    }
    return std::string_view::npos;
}

}  // namespace

bool isSafeXmlPropertyList(std::string_view text) {
    int depth = 0;
    std::size_t at = text.find('<');
    while (at != std::string_view::npos) {
        const char kind = at + 1 < text.size() ? text[at + 1] : '\0';
        std::size_t next = std::string_view::npos;
        if (kind == '!' || kind == '?') {
            next = behindDeclaration(text, at);
            if (next == std::string_view::npos) {
                return false;
            }
        } else {
            const std::size_t end = endOfTag(text, at);
            if (end == std::string_view::npos) {
                return false;
            }
            if (kind == '/') {
                --depth;
            } else if (text[end - 1] != '/') {
                ++depth;
            }
            if (depth < 0 || depth > kMaxPropertyListDepth) {
                return false;
            }
            next = end + 1;
        }
        at = text.find('<', next);
    }
    return true;
}

PropertyListForm guardPropertyList(std::string_view data) {
    if (data.size() > kMaxBytes) {
        return PropertyListForm::kRefused;
    }
    if (data.starts_with(kBinaryMagic)) {
        return isSafeBinaryPropertyList(data) ? PropertyListForm::kBinary
                                              : PropertyListForm::kRefused;
    }
    std::string narrowed;
    std::string_view text = data;
    if (data.starts_with("\xFE\xFF") || data.starts_with("\xFF\xFE")) {
        narrowed = narrowedUtf16(data);
        text = narrowed;
    } else if (data.starts_with(kUtf8Mark)) {
        text.remove_prefix(kUtf8Mark.size());
    }
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos || text[first] != '<') {
        return PropertyListForm::kRefused;
    }
    return isSafeXmlPropertyList(text) ? PropertyListForm::kXml : PropertyListForm::kRefused;
}

}  // namespace rcp::platform
