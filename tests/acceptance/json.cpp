#include "json.h"

#include <cstdlib>
#include <stdexcept>

namespace acceptance {

namespace {

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    Json document() {
        Json value = parseValue();
        skipSpace();
        if (at_ != text_.size()) {
            fail("text after the value");
        }
        return value;
    }

  private:
    [[noreturn]] void fail(const char* what) const {
        throw std::runtime_error("JSON at byte " + std::to_string(at_) + ": " + what);
    }

    void skipSpace() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

    bool take(char wanted) {
        skipSpace();
        if (at_ == text_.size() || text_[at_] != wanted) {
            return false;
        }
        ++at_;
        return true;
    }

    void expect(char wanted) {
        if (!take(wanted)) {
            fail("another character expected");
        }
    }

    Json parseValue() {
        Json value;
        skipSpace();
        for (const std::string_view word : {"false", "true"}) {
            if (text_.substr(at_).starts_with(word)) {
                at_ += word.size();
                value.kind = Json::Kind::Number;
                value.number = word == "true" ? 1 : 0;
                return value;
            }
        }
        if (text_.substr(at_).starts_with("null")) {
            at_ += 4;
        } else if (take('{')) {
            value.kind = Json::Kind::Object;
            for (bool more = !take('}'); more; more = nextOf('}')) {
                skipSpace();
                std::string name = parseText();
                expect(':');
                value.members[std::move(name)] = parseValue();
            }
        } else if (take('[')) {
            value.kind = Json::Kind::List;
            for (bool more = !take(']'); more; more = nextOf(']')) {
                value.list.push_back(parseValue());
            }
        } else if (at_ < text_.size() && text_[at_] == '"') {
            value.kind = Json::Kind::Text;
            value.text = parseText();
        } else {
            value.kind = Json::Kind::Number;
            const std::string digits(text_.substr(at_, 24));
            char* end = nullptr;
            value.number = std::strtol(digits.c_str(), &end, 10);
            if (end == digits.c_str()) {
                fail("no value");
            }
            at_ += static_cast<size_t>(end - digits.c_str());
        }
        return value;
    }

    // Whether another entry follows before the closing character.
    bool nextOf(char closing) {
        if (take(',')) {
            return true;
        }
        expect(closing);
        return false;
    }

    std::string parseText() {
        expect('"');
        std::string result;
        while (true) {
            if (at_ == text_.size()) {
                fail("text without an end");
            }
            const char c = text_[at_++];
            if (c == '"') {
                return result;
            }
            result += c == '\\' ? parseEscape() : c;
        }
    }

    // Only control characters are written as numbers.
    char parseEscape() {
        if (at_ < text_.size() && text_[at_] == 'u') {
            const std::string digits(text_.substr(at_ + 1, 4));
            at_ += 5;
            return static_cast<char>(std::strtol(digits.c_str(), nullptr, 16));
        }
        if (at_ == text_.size()) {
            fail("text without an end");
        }
        constexpr std::string_view kNames = "bfnrt";
        constexpr std::string_view kCharacters = "\b\f\n\r\t";
        const char c = text_[at_++];
        const size_t named = kNames.find(c);
        return named == std::string_view::npos ? c : kCharacters[named];
    }

    std::string_view text_;
    size_t at_ = 0;
};

}  // namespace

const Json& Json::operator[](const std::string& name) const {
    static const Json nothing;
    const auto found = members.find(name);
    return found == members.end() ? nothing : found->second;
}

std::vector<std::string> Json::texts() const {
    std::vector<std::string> result;
    for (const Json& entry : list) {
        result.push_back(entry.text);
    }
    return result;
}

Json parseJson(std::string_view text) {
    return Parser(text).document();
}

}  // namespace acceptance
