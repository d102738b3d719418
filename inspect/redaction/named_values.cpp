#include "inspect/redaction/named_values.h"

#include <algorithm>
#include <charconv>

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
        return firstOf(text, at, endOfLine(text, at), {kOriginBehind});
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

// "-Ddb.password is a key": what rcpinspect says of a name.
bool isOwnSentence(std::string_view behind) {
    constexpr std::string_view kSentences[] = {" is a key", " is not set", " is removed"};
    return isOneOf(kSentences, behind.substr(0, endOfLine(behind, 0)));
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
            findQuoted(at);
            break;
        default:
            if (at > 0 && !isAt(text_, at - 1, " \t\n")) {  // there is no name otherwise
                findOption(at);
                findAfterBlank(at);
                findQuoted(at);
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
    if (const std::string_view key = keyBeside(name); !key.empty() && names_.isSecret(key)) {
        const std::size_t quote = std::min(text_.find_first_not_of(kBlanks, at + 1), text_.size());
        add(quote, endOfValue(text_, name, quote, false), key);
        return;
    }
    const bool isColon = text_[at] == ':';
    if (word.empty() && !isColon) {
        findPlaceholder(at);
        return;
    }
    if (!isColon && isUserOption(word) && name.end == at) {
        const std::size_t end = firstOf(text_, at, endOfLine(text_, at), {" ", "\"", ", "});
        if (hasPassword(text_.substr(at + 1, end - at - 1))) {
            add(at + 1, end, "user-info of an option");
        }
        return;
    }
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

// <property name="NAME" value="VALUE"/>, {"key": "NAME", "value": "VALUE"}
std::string_view NamedValues::keyBeside(const Name& value) const {
    const std::string_view front = text_.substr(line_, std::max(value.begin, line_) - line_);
    const std::size_t quote = front.find_last_not_of(" \t,\"'");
    if (value.in(text_) != "value" || quote == kNone) {
        return {};
    }
    const Name key = nameBefore(front, quote + 1);
    const std::size_t separator = front.substr(0, key.begin).find_last_not_of(" \t\"'");
    const std::string_view what = separator != kNone && isAt(front, separator, "=:")
                                      ? nameBefore(front, separator).in(front)
                                      : "";
    return what == "name" || what == "key" ? key.in(front) : std::string_view();
}

// '"NAME" is "VALUE" in the user's copy, "VALUE" in its master', as the findings say it.
void NamedValues::findQuoted(std::size_t at) {
    const Name name = nameBefore(text_, at);
    if (!text_.substr(0, at).ends_with('"') || name.begin == 0 || text_[name.begin - 1] != '"' ||
        !names_.isSecret(name.in(text_))) {
        return;
    }
    const std::size_t line = endOfLine(text_, at);
    for (const std::string_view front : {" is \"", " has \"", ", \"", ", the value \""}) {
        const std::size_t found = text_.substr(0, line).find(front, at);
        if (found != kNone) {
            const std::size_t begin = found + front.size();
            add(begin, std::min(text_.find('"', begin), line), name.in(text_));
        }
    }
}

// ${NAME} = VALUE, ${NAME,DEFAULT} = VALUE: ... is not set, ...
void NamedValues::findPlaceholder(std::size_t at) {
    const std::string_view front = text_.substr(line_, at - line_);
    const std::size_t end = front.find_last_not_of(kBlanks);
    if (end == kNone || front[end] != '}') {
        return;
    }
    const std::size_t begin = front.rfind("${");
    const std::string_view inside = front.substr(std::min(begin, end), end - std::min(begin, end));
    const std::string_view name = inside.substr(std::min<std::size_t>(2, inside.size()));
    if (!names_.isSecret(name.substr(0, name.find(',')))) {
        return;
    }
    at += isAt(text_, at + 1, ">") ? 1 : 0;  // a log has an arrow there
    const std::string_view value = text_.substr(at, endOfLine(text_, at) - at);
    const std::size_t told = value.find(" is not set, its default");
    const std::size_t colon = told == kNone ? kNone : value.rfind(": ", told);
    // "-Dx=<redacted:...>" is what "-Dx=${NAME}" became.
    const std::string_view word = front.substr(front.find_last_of(kBlanks, begin) + 1);
    const std::string known = std::string(word.substr(0, word.find("${"))).append(kMark);
    const std::size_t from = std::min(text_.find_first_not_of(kBlanks, at + 1), text_.size());
    const std::size_t head =
        text_.substr(from).starts_with(known) ? known.size() - kMark.size() : 0;
    add(from + head, at + std::min(colon, value.size()), name.substr(0, name.find(',')));
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

// <NAME ATTRIBUTE="...">VALUE</NAME>, <entry key="NAME">VALUE</entry>
void NamedValues::findElement(std::size_t at) {
    constexpr std::size_t kLongest = 1024;
    const std::size_t from = at - std::min(at, kLongest);
    const std::string_view front = text_.substr(from, at - from);
    const std::string_view tag = front.substr(front.rfind('<') + 1);
    std::string_view name = tag.substr(0, tag.find_first_of(kBlanks));
    for (const std::string_view attribute : {" key=\"", " name=\""}) {
        if (const std::size_t found = tag.find(attribute); found != kNone) {
            const std::string_view value = tag.substr(found + attribute.size());
            name = names_.isSecret(name) ? name : value.substr(0, value.find('"'));
        }
    }
    const bool isBeginning = tag.size() < front.size() && !tag.starts_with('/') &&
                             !tag.ends_with('/') && tag.find('>') == kNone;
    if (isBeginning && names_.isSecret(name)) {
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

// Where the line of the argument behind that one begins. In lists it has the next number: "  5  VALUE" behind
// "  4  -NAME", "arg5=VALUE" behind "arg4=-NAME".
std::size_t NamedValues::beginOfNext(const Name& option) const {
    constexpr int kMostLines = 16;  // that tell more of one
    const std::string_view front = text_.substr(line_, option.begin - line_);
    const std::size_t last = front.find_last_of("0123456789");
    std::size_t at = endOfLine(text_, option.end);
    if (last == kNone) {
        return front.find_first_not_of(kBlanks) == kNone ? std::min(at + 1, text_.size())
                                                         : text_.size();
    }
    const std::size_t digits = front.find_last_not_of("0123456789", last) + 1;
    const bool hasKey = digits > 0 && isNameCharacter(front[digits - 1]);
    const std::size_t key = hasKey ? nameBefore(front, digits).begin : digits;
    unsigned number = 0;
    std::from_chars(front.data() + digits, front.data() + last + 1, number);
    const std::string next = std::string(front.substr(key, digits - key)) +
                             std::to_string(number + 1) + std::string(front.substr(last + 1));
    for (int i = 0; i < kMostLines && at < text_.size(); ++i) {
        const std::string_view line = text_.substr(at + 1, endOfLine(text_, at + 1) - at - 1);
        const std::size_t found = line.find(next);
        if (found != kNone && isFirstBehind(line.substr(0, found))) {
            return at + 1 + found + next.size();
        }
        at = endOfLine(text_, at + 1);
    }
    return text_.size();
}

// "-NAME, VALUE", "-NAME VALUE", and on two lines.
void NamedValues::findOption(std::size_t at) {
    const Name name = nameBefore(text_, at);
    const std::string_view option = name.in(text_);
    const bool hasUser = isUserOption(option);
    if (name.end != at || !option.starts_with('-') || (!hasUser && !names_.isSecret(option)) ||
        isOwnSentence(text_.substr(at))) {
        return;
    }
    const bool isList = text_.substr(at).starts_with(", ");
    if (text_[at] == ',' && !isList) {
        return;
    }
    const bool isLine = text_[at] == '\n' || text_.substr(at).starts_with(kOriginBehind);
    const std::size_t begin = isLine ? beginOfNext(name) : at + (isList ? 2 : 1);
    const std::size_t line = endOfLine(text_, begin);
    const std::size_t end = isLine   ? firstOf(text_, begin, line, {kOriginBehind})
                            : isList ? firstOf(text_, begin, line, {", ", "\""})
                                     : firstOf(text_, begin, line, {" ", "\"", ", "});
    const std::string_view value = text_.substr(begin, end - begin);
    if (hasUser ? hasPassword(value) : !isOption(value)) {
        add(begin, end, hasUser ? "user-info of an option" : option);
    }
}

// A line of "NAME VALUE"
void NamedValues::findAfterBlank(std::size_t at) {
    const Name name = nameBefore(text_, at);
    if (text_[at] == ' ' && name.end == at && name.begin < at && text_[name.begin] != '-' &&
        !isAt(text_, at + 1, "=:") && isFirstInLine(name.begin) &&
        !isOwnSentence(text_.substr(at)) && SecretNames::isPlainlySecret(name.in(text_))) {
        add(at + 1, firstOf(text_, at, endOfEntry(text_, at), {kOriginBehind}), name.in(text_));
    }
}

}  // namespace rcp::inspect
