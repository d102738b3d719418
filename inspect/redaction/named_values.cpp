#include "inspect/redaction/named_values.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

constexpr std::string_view kRecord = "ZYPRA";

// Of such a field all that stands in its line is secret.
bool isField(std::string_view word) {
    const std::vector<std::string> words = wordsOf(word);
    return !words.empty() && (words.back() == "authorization" || words.back() == "cookie");
}

std::size_t endOfValue(std::string_view text, const Name& name, std::size_t at, bool isFirst) {
    if (isAt(text, at, "\"'")) {
        return endOfQuoted(text, at);
    }
    if (text[name.end] == ':' && isField(name.in(text))) {
        return endOfLine(text, at);
    }
    if (name.begin > 0 && isAt(text, name.begin - 1, "?&")) {  // of a URL
        return std::min(text.find_first_of("&;# \t\n\"'<>)", at), text.size());
    }
    if (isFirst) {
        return firstOf(text, at, endOfEntry(text, at), {kOriginBehind});
    }
    const bool isOption = text[name.begin] == '-';
    return firstOf(text, at, endOfLine(text, at),
                   {", ", "\"", kOriginBehind, isOption ? " -" : ", "});
}

}  // namespace

void NamedValues::findAt(std::size_t at) {
    switch (text_[at]) {
        case '=':
        case ':':
            findValue(at);
            break;
        case '>':
            findElement(at);
            break;
        case ',':
            findDefault(at);
            findOption(at);
            break;
        default:
            if (at > 0 && !isAt(text_, at - 1, " \t\n")) {  // there is no name otherwise
                findOption(at);
                findAfterBlank(at);
            }
    }
    if (text_[at] == '\n') {
        before_ = text_.substr(line_, at - line_);
        line_ = at + 1;
    }
}

bool NamedValues::isFirstInLine(std::size_t at) const {
    return isFirstBehind(text_.substr(line_, at - line_));
}

void NamedValues::add(std::size_t begin, std::size_t end, std::string_view name) {
    addPart(parts_, text_, {begin, end, std::string(name)});
}

// NAME=VALUE, NAME: VALUE
void NamedValues::findValue(std::size_t at) {
    const Name name = nameBefore(text_, at);
    const std::string_view word = name.in(text_);
    if (text_.substr(line_).starts_with(kRecord)) {
        const std::string_view key = keyOfRecord(name);
        if (!key.empty() || word == "key") {
            addQuoted(at, key);
            return;
        }
    }
    const bool isColon = text_[at] == ':';
    if (word.empty() || (isColon && text_.substr(at).starts_with("://")) ||
        !names_.isSecret(word)) {
        return;
    }
    const bool isSentence =
        (word == "key" || word == "keys" || word == "pass") && !isAt(text_, name.end, "\"'");
    const bool isFirst = isFirstInLine(name.begin);
    if (isColon && isSentence && !isFirst) {
        return;
    }
    std::size_t begin = at + 1;
    while (isAt(text_, begin, kBlanks)) {
        ++begin;
    }
    add(begin, endOfValue(text_, name, begin, isFirst), word);
}

// A full log tells an entry in two records: 'attrib = "NAME"', or "key", then 'value = "VALUE"'.
std::string_view NamedValues::keyOfRecord(const Name& name) const {
    if (name.in(text_) != "value" || !before_.starts_with(kRecord)) {
        return {};
    }
    const std::size_t quote = before_.find("= \"");
    return quote == kNone ? std::string_view()
                          : before_.substr(quote + 3, before_.rfind('"') - quote - 3);
}

void NamedValues::addQuoted(std::size_t at, std::string_view key) {
    const std::size_t quote = text_.find('"', at);
    const std::size_t end = text_.rfind('"', endOfLine(text_, at));
    if (names_.isSecret(key) && quote < end) {
        add(quote + 1, end, key);
    }
}

// <NAME ATTRIBUTE="...">VALUE</NAME>
void NamedValues::findElement(std::size_t at) {
    constexpr std::size_t kLongest = 1024;
    const std::size_t from = at - std::min(at, kLongest);
    const std::string_view front = text_.substr(from, at - from);
    const std::string_view tag = front.substr(front.rfind('<') + 1);
    const std::string_view name = tag.substr(0, tag.find_first_of(kBlanks));
    if (tag.size() < front.size() && names_.isSecret(name)) {
        add(at + 1, std::min(text_.find('<', at), text_.size()), name);
    }
}

// ${env.NAME,DEFAULT}
void NamedValues::findDefault(std::size_t at) {
    const Name name = nameBefore(text_, at);
    const std::string_view word = name.in(text_);
    if (word.starts_with("env.") && names_.isSecret(word)) {
        add(at + 1, std::min(text_.find_first_of("}\n", at), text_.size()), word);
    }
}

// "-NAME, VALUE", "-NAME VALUE", and on two lines.
void NamedValues::findOption(std::size_t at) {
    const Name name = nameBefore(text_, at);
    if (name.end != at || name.begin == at || text_[name.begin] != '-' ||
        !names_.isSecret(name.in(text_))) {
        return;
    }
    const bool isList = text_.substr(at).starts_with(", ");
    const bool isLine = text_[at] == '\n';
    const std::size_t begin = at + (isList ? 2 : 1);
    if ((text_[at] == ',' && !isList) || isAt(text_, begin, "-")) {
        return;
    }
    const std::size_t line = endOfLine(text_, begin);
    add(begin,
        isLine   ? line
        : isList ? firstOf(text_, begin, line, {", ", "\""})
                 : firstOf(text_, begin, line, {" ", "\"", ", "}),
        name.in(text_));
}

// A line of "NAME VALUE"
void NamedValues::findAfterBlank(std::size_t at) {
    const Name name = nameBefore(text_, at);
    if (text_[at] == ' ' && name.end == at && name.begin < at && text_[name.begin] != '-' &&
        !isAt(text_, at + 1, "=:") && isFirstInLine(name.begin) &&
        SecretNames::isPlainlySecret(name.in(text_))) {
        add(at + 1, firstOf(text_, at, endOfEntry(text_, at), {kOriginBehind}), name.in(text_));
    }
}

}  // namespace rcp::inspect
