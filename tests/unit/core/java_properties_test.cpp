#include "launcher/core/java_properties.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace rcp {
namespace {

std::wstring key(const std::wstring& text) {
    std::wstring out;
    convWcharTo8859_1_Key(text, out);
    return out;
}

std::wstring value(const std::wstring& text) {
    std::wstring out;
    convWcharTo8859_1_Value(text, out);
    return out;
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

TEST(JavaProperties, LineIsKeyEqualsValueAppendedToWhatIsThere) {
    std::wstring out = L"before ";
    convWcharTo8859_1(L"a b", L" c=d", out);
    EXPECT_EQ(out, L"before a\\ b= c\\=d");
}

TEST(JavaProperties, EmptyTextsGiveAnEmptyKeyAndValue) {
    std::wstring out;
    convWcharTo8859_1(L"", L"", out);
    EXPECT_EQ(out, L"=");
}

}  // namespace
}  // namespace rcp
