#include "launcher/properties/java_properties.h"

#include "launcher/properties/property_file.h"
#include "launcher/properties/property_text.h"
#include "platform/text.h"
#include "tests/unit/fixture.h"
#include "tests/unit/long_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

namespace rcp {
namespace {

std::wstring key(const std::wstring& text) {
    return convWcharTo8859_1_Key(text);
}

std::wstring value(const std::wstring& text) {
    return convWcharTo8859_1_Value(text);
}

std::wstring digits(std::uint32_t codePoint) {
    std::wstring out;
    addHexDigits(out, codePoint);
    return out;
}

TEST(HexDigits, AreFourInLowerCase) {
    EXPECT_EQ(digits(0), L"0000");
    EXPECT_EQ(digits(9), L"0009");
    EXPECT_EQ(digits(0xE9), L"00e9");
    EXPECT_EQ(digits(0xABC), L"0abc");
    EXPECT_EQ(digits(0xFFFF), L"ffff");
}

TEST(HexDigits, AreTheLowestFourOfLargerNumbers) {
    EXPECT_EQ(digits(0x10000), L"0000");
    EXPECT_EQ(digits(0x1F600), L"f600");
    EXPECT_EQ(digits(0x10FFFF), L"ffff");
    EXPECT_EQ(digits(0x7FFFFFFF), L"ffff");
    EXPECT_EQ(digits(0x80000000), L"0000");
    EXPECT_EQ(digits(0xFEDCBA98), L"ba98");
    EXPECT_EQ(digits(0xFFFFFFFF), L"ffff");
}

TEST(HexDigits, AreAppended) {
    std::wstring out = L"deleteme";
    addHexDigits(out, 1);
    EXPECT_EQ(out, L"deleteme0001");
}

TEST(JavaProperties, SpecialCharactersAreEscapedInKeysAndValues) {
    EXPECT_EQ(key(L"#!=:\\"), L"\\#\\!\\=\\:\\\\");
    EXPECT_EQ(value(L"#!=:\\"), L"\\#\\!\\=\\:\\\\");
}

TEST(JavaProperties, OnlyKeysEscapeBlanks) {
    EXPECT_EQ(key(L"  a b "), L"\\ \\ a\\ b\\ ");
    EXPECT_EQ(value(L"  a b "), L"  a b ");
}

TEST(JavaProperties, EveryOtherPrintableAsciiCharacterStaysAsItIs) {
    for (wchar_t c = L'!'; c <= L'~'; ++c) {
        if (std::wstring(L"#!=:\\").find(c) == std::wstring::npos) {
            EXPECT_EQ(key({c}), std::wstring(1, c));
            EXPECT_EQ(value({c}), std::wstring(1, c));
        }
    }
}

TEST(JavaProperties, ControlCharactersAreNumbered) {
    EXPECT_EQ(value(L"a\tb\n\r\f"), L"a\\u0009b\\u000a\\u000d\\u000c");
    EXPECT_EQ(key(L"a\tb\n"), L"a\\u0009b\\u000a");
    EXPECT_EQ(value({L'\0', L'\x1F'}), L"\\u0000\\u001f");
}

TEST(JavaProperties, EveryCharacterAboveTheTildeIsNumberedThoseOfIso8859Too) {
    for (wchar_t c = 0x7F; c <= 0x17F; ++c) {
        const std::wstring escaped = L"\\u" + digits(static_cast<std::uint32_t>(c));
        EXPECT_EQ(key({c}), escaped);
        EXPECT_EQ(value({c}), escaped);
    }
    EXPECT_EQ(value(L"é"), L"\\u00e9");
    EXPECT_EQ(value(L"日本"), L"\\u65e5\\u672c");
}

TEST(JavaProperties, CharacterBeyondSixteenBitsLosesItsUpperDigits) {
    EXPECT_EQ(value({wchar_t{0x1F600}}), L"\\uf600");
    EXPECT_EQ(key({wchar_t{0x1F600}}), L"\\uf600");
}

TEST(JavaProperties, ValueThatIsNoCharacterIsNumberedToo) {
    EXPECT_EQ(value({WCHAR_MAX}), L"\\uffff");
    EXPECT_EQ(value({WCHAR_MIN}), L"\\u0000");
}

// --- Entries that do not fit a line ---

class PropertyLines : public test::LauncherTest {
  protected:
    // What the launcher reads from a file of these lines.
    PropertyList readBack(const std::string& lines) {
        folder_.write("lines.properties", lines);
        PropertyList list;
        getProperties(folder_.wide("lines.properties"), list);
        return list;
    }
    void expectComesBack(const std::string& lines, const std::wstring& expected) {
        const PropertyList list = readBack("before=1\n" + lines + "behind=2\n");
        ASSERT_EQ(list.entries().size(), 3U) << lines;
        EXPECT_EQ(list.entries()[1].key, L"k");
        EXPECT_EQ(list.entries()[1].value, expected);
    }
};

std::size_t longestLine(const std::string& lines) {
    std::size_t longest = 0;
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        longest = std::max(longest, line.size());
    }
    return longest;
}

TEST_F(PropertyLines, EntriesUpToTheLimitStandOnOneLineAsTheyAre) {
    for (const std::size_t length : {0U, 1U, 1997U, 1998U}) {
        for (const char* special : {"", " ", "\\=", "="}) {
            const std::string text = special + std::string(length, 'a');
            if (text.size() <= 1998) {
                EXPECT_EQ(propertyLines("k", text), "k=" + text + "\n");
            }
        }
    }
    EXPECT_EQ(propertyLines("k", std::string(1999, 'a')),
              "k=" + std::string(1966, 'a') + "\\\n" + std::string(33, 'a') + "\n");
}

TEST_F(PropertyLines, EveryLongValueIsReadBackFromShortLines) {
    for (const std::wstring& value : test::longValues()) {
        const std::wstring escaped = test::escapedValue(value);
        if (escaped.size() <= 1998) {
            continue;  // as it stands, with what the reader takes for separators
        }
        const std::string lines = propertyLines("k", toNarrow(escaped));
        EXPECT_LE(longestLine(lines), 2000U);
        std::wstring expected = value;
        trimString(expected);
        expectComesBack(lines, expected);
    }
}

TEST_F(PropertyLines, LongValuesThatAreNotEscapedMeanWhatTheyMeantOnOneLine) {
    std::mt19937 random(6);  // NOLINT: the same values in every run
    for (const std::size_t length : test::longLengths()) {
        const std::string raw = test::longRawValue(random, length);
        const std::string lines = propertyLines("k", raw);
        EXPECT_LE(longestLine(lines), 2000U);
        std::wstring expected = toWide(raw);
        FilterValue(expected);
        expectComesBack(lines, expected);
    }
}

TEST_F(PropertyLines, RestOfALongValueIsNoEntryOfItsOwn) {
    for (std::size_t length = 1900; length <= 2100; ++length) {
        for (const char* rest : {"vmarg.zz=-agentpath:/x", "env.set.LD_PRELOAD=/x", "=x=y"}) {
            const std::wstring value = std::wstring(length, L'a') + toWide(rest);
            const std::string lines = propertyLines("k", toNarrow(test::escapedValue(value)));
            EXPECT_EQ(readBack(lines).entries().size(), 1U) << length << ' ' << rest;
        }
    }
}

}  // namespace
}  // namespace rcp
