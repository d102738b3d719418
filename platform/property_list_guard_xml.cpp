// Follows the tags of an XML property list the way a parser would, but only to see how they nest. Where
// two parsers could disagree about what is a tag (a ">" inside quotes, "<!-->", declarations inside the
// document type, an encoding in which half a letter looks like markup) the text is refused instead of
// guessed at; no program writes property lists that way. What one system's parser refuses and the other's
// would put right is refused as well, so that no list is rewritten on one system only.
#include "platform/property_list_guard.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace rcp::platform {

namespace {

using Position = std::optional<std::size_t>;

constexpr std::string_view kXmlBlanks = " \t\r\n";

Position found(std::size_t at) {
    return at == std::string_view::npos ? std::nullopt : Position(at);
}

/// The position behind `end`, looked for from `from` on.
Position behind(std::string_view text, std::string_view end, std::size_t from) {
    const Position at = found(text.find(end, from));
    return at ? Position(*at + end.size()) : std::nullopt;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(kXmlBlanks) == std::string_view::npos;
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kXmlBlanks), text.size()));
    return text;
}

bool equalInAscii(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return a == b || ((a ^ b) == 0x20 && (a | 0x20) >= 'a' && (a | 0x20) <= 'z');
    });
}

/// The encoding that stands behind the word; empty when none does.
std::string_view encodingName(std::string_view text) {
    text = withoutLeadingBlanks(text);
    if (!text.starts_with('=')) {
        return {};
    }
    text = withoutLeadingBlanks(text.substr(1));
    if (!text.starts_with('"') && !text.starts_with('\'')) {
        return {};
    }
    const std::size_t end = text.find(text[0], 1);
    return end == std::string_view::npos ? std::string_view() : text.substr(1, end - 1);
}

/// Whether the instruction declares another encoding than UTF-8.
bool declaresAnother(std::string_view instruction) {
    constexpr std::string_view kWord = "encoding";
    while (const Position next = behind(instruction, kWord, 0)) {
        instruction.remove_prefix(*next);
        if (!equalInAscii(encodingName(instruction), "UTF-8")) {
            return true;
        }
    }
    return false;
}

/// The position of the ">" of the tag that starts at `at`; none when it is missing or when markup
/// characters stand inside the tag.
Position endOfTag(std::string_view text, std::size_t at) {
    char quote = '\0';
    for (std::size_t i = at + 1; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '<' || (c == '>' && quote != '\0')) {
            return std::nullopt;
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
    return std::nullopt;
}

/// One parser knows no empty tag of these.
bool mayBeEmpty(std::string_view element) {
    return element != "key" && element != "data";
}

class Follower {
  public:
    explicit Follower(std::string_view text) : text_(text) {}

    bool run() {
        std::size_t at = 0;
        while (const Position tag = found(text_.find('<', at))) {
            const char kind = *tag + 1 < text_.size() ? text_[*tag + 1] : '\0';
            const bool isRight = !isBetweenElements() || isBlank(text_.substr(at, *tag - at));
            const bool isDeclaration = kind == '!' || kind == '?';
            const Position next = isDeclaration ? behindDeclaration(*tag) : behindTag(*tag);
            if (!isRight || !next) {
                return false;
            }
            at = *next;
        }
        return open_.empty() && isBlank(text_.substr(at));
    }

  private:
    struct Element {
        std::string_view name;
        std::size_t text = 0;  // where it begins, behind the tag
        PropertyListTextRule rule = nullptr;
        std::size_t children = 0;
        bool awaitsValue = false;  // a dictionary behind a key
    };

    [[nodiscard]] bool isBetweenElements() const {
        return open_.empty() || open_.back().rule == nullptr;
    }

    /// Behind the comment, CDATA section, instruction or document type at `at`; none when it is not
    /// closed, of another kind, in the middle of a text or, as a document type, not at the beginning.
    [[nodiscard]] Position behindDeclaration(std::size_t at) const {
        const std::string_view rest = text_.substr(at);
        if (rest.starts_with("<![CDATA[")) {
            return behind(text_, "]]>", at + 9);
        }
        if (rest.starts_with("<!-->") || rest.starts_with("<!--->") || rest.starts_with("<?>") ||
            !isBetweenElements()) {
            return std::nullopt;
        }
        if (rest.starts_with("<!--")) {
            return behind(text_, "-->", at + 4);
        }
        if (rest.starts_with("<?")) {
            const Position end = behind(text_, "?>", at + 2);
            const bool isRefused = end && declaresAnother(text_.substr(at, *end - at));
            return isRefused ? std::nullopt : end;
        }
        if (rest.starts_with("<!DOCTYPE") && !hasRoot_) {
            const std::size_t end = text_.find_first_of("[<>", at + 1);
            return end != std::string_view::npos && text_[end] == '>' ? Position(end + 1)
                                                                      : std::nullopt;
        }
        return std::nullopt;
    }

    /// Behind the tag at `at`; none when it cannot stand there.
    Position behindTag(std::size_t at) {
        const Position end = endOfTag(text_, at);
        if (!end) {
            return std::nullopt;
        }
        std::string_view tag = text_.substr(at + 1, *end - at - 1);
        const bool closes = tag.starts_with('/');
        const bool isEmpty = !closes && tag.ends_with('/');
        tag.remove_prefix(closes ? 1 : 0);
        tag.remove_suffix(isEmpty ? 1 : 0);
        const std::string_view name = tag.substr(0, tag.find_first_of(kXmlBlanks));
        const bool isRight = closes ? name.size() == tag.size() || isBlank(tag.substr(name.size()))
                             : isEmpty ? mayBeEmpty(name)
                                       : true;
        return isRight && (closes || enter(name, *end + 1)) &&
                       (!(closes || isEmpty) || leave(name, closes ? at : *end + 1))
                   ? Position(*end + 1)
                   : std::nullopt;
    }

    bool enter(std::string_view name, std::size_t text) {
        if (open_.empty() ? hasRoot_ : !mayHold(open_.back(), name)) {
            return false;
        }
        hasRoot_ = true;
        open_.push_back({name, text, propertyListTextRule(name)});
        // The element around every list that is written is none of the list's own levels.
        const std::size_t wrapper = open_.front().name == "plist" ? 1 : 0;
        return open_.size() - wrapper <= std::size_t{kMaxPropertyListDepth};
    }

    static bool mayHold(Element& parent, std::string_view name) {
        if (parent.name == "plist") {
            return ++parent.children == 1;
        }
        if (parent.name == "dict") {
            parent.awaitsValue = !parent.awaitsValue;
            return (name == "key") == parent.awaitsValue;
        }
        return parent.rule == nullptr;
    }

    bool leave(std::string_view name, std::size_t end) {
        if (open_.empty() || open_.back().name != name || open_.back().awaitsValue) {
            return false;
        }
        const Element& element = open_.back();
        if (element.rule != nullptr &&
            !element.rule(text_.substr(element.text, end - element.text))) {
            return false;
        }
        open_.pop_back();
        return true;
    }

    std::string_view text_;
    std::vector<Element> open_;
    bool hasRoot_ = false;
};

}  // namespace

bool isSafeXmlPropertyList(std::string_view text) {
    return text.find('\0') == std::string_view::npos && Follower(text).run();
}

}  // namespace rcp::platform
