// The escaping for Java's property reader, read back by an un-escaper that follows Java's rules and
// by the launcher's own reader.
//
// Input: key, value.
#include "fuzz/fuzz.h"
#include "launcher/properties/java_properties.h"
#include "launcher/properties/property_file.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace rcp;
using rcp::fuzz::require;

// One line "key=value" as java.util.Properties reads it.
class JavaLine {
  public:
    explicit JavaLine(std::wstring_view line) : line_(line) {
        skipBlanks();
        while (at_ < line_.size() && !isSeparator(line_[at_]) && !isBlank(line_[at_])) {
            key += character();
        }
        skipBlanks();
        if (at_ < line_.size() && isSeparator(line_[at_])) {
            ++at_;
        }
        skipBlanks();
        while (at_ < line_.size()) {
            value += character();
        }
    }

    std::wstring key;
    std::wstring value;

  private:
    static bool isSeparator(wchar_t c) { return c == L'=' || c == L':'; }
    static bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\f'; }

    void skipBlanks() {
        while (at_ < line_.size() && isBlank(line_[at_])) {
            ++at_;
        }
    }

    wchar_t character() {
        const wchar_t c = line_[at_++];
        if (c != L'\\') {
            return c;
        }
        require(at_ < line_.size(), "no line ends with a lone backslash");
        const wchar_t escaped = line_[at_++];
        require(std::wstring_view(L"tnrf").find(escaped) == std::wstring_view::npos,
                "no letter is escaped");
        if (escaped != L'u') {
            return escaped;
        }
        require(line_.size() - at_ >= 4, "an escaped code has four digits");
        const std::string digits(line_.begin() + static_cast<std::ptrdiff_t>(at_),
                                 line_.begin() + static_cast<std::ptrdiff_t>(at_ + 4));
        char* end = nullptr;
        const long code = std::strtol(digits.c_str(), &end, 16);
        require(*end == '\0', "an escaped code is hexadecimal");
        at_ += 4;
        return static_cast<wchar_t>(code);
    }

    std::wstring_view line_;
    std::size_t at_ = 0;
};

// The format has four digits a character.
std::wstring low(std::wstring text) {
    for (wchar_t& character : text) {
        character &= 0xFFFF;
    }
    return text;
}

// Blanks in front of a value are not protected: no reader gets them back.
std::wstring withoutLeadingBlanks(const std::wstring& text) {
    return text.substr(std::min(text.find_first_not_of(L' '), text.size()));
}

void checkOwnReader(const std::string& lines, const std::wstring& value) {
    PropertyList list;
    getProperties(fuzz::fileWith(lines), list);
    require(list.entries().size() == 1, "what is written is one entry");
    std::wstring expected = withoutLeadingBlanks(low(value)).c_str();
    expected.erase(expected.find_last_not_of(L' ') + 1);
    require(list.entries().front().value == expected, "the launcher reads what it wrote");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const std::wstring key = fields.text();
    const std::wstring value = fields.text();
    const std::wstring line = convWcharTo8859_1_Key(key) + L'=' + convWcharTo8859_1_Value(value);
    require(line.size() <= 6 * (key.size() + value.size()) + 1, "the result has a bound");
    require(std::all_of(line.begin(), line.end(), [](wchar_t c) { return c >= 0x20 && c <= 0x7E; }),
            "the result is printable ASCII");

    const JavaLine read(line);
    require(read.key == low(key), "Java reads the key back");
    require(read.value == withoutLeadingBlanks(low(value)), "Java reads the value back");

    // The launcher drops separators in front of a value, escaped or not.
    const std::wstring own = convWcharTo8859_1_Value(value);
    const std::wstring plain = withoutLeadingBlanks(low(value));
    // The two codes of a character beyond sixteen bits become that character.
    const bool hasHalves = std::any_of(plain.begin(), plain.end(),
                                       [](wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; });
    if (!hasHalves && plain.find_first_of(L"=:") != 0 &&
        plain.find_first_not_of(L' ') != std::wstring::npos) {
        checkOwnReader(propertyLines("k", toNarrow(own)), value);
    }
    fuzz::requireLinearTime(
        value, [](const std::wstring& large) { (void)convWcharTo8859_1_Value(large); });
    return 0;
}
