#include "diagnostics/format.h"

#include <gtest/gtest.h>

#include <vector>

namespace rcp {
namespace {

using Arguments = std::vector<FormatArgument>;

std::string expand(std::string_view format, const Arguments& arguments = {}) {
    return expandFormat(format, arguments);
}

TEST(Format, TextWithoutDirectivesStaysAsItIs) {
    EXPECT_EQ(expand(""), "");
    EXPECT_EQ(expand("ZYPRA0031I:   version"), "ZYPRA0031I:   version");
}

TEST(Format, EveryTextDirectiveTakesNarrowAndWideText) {
    for (const char* directive : {"%s", "%ls", "%S"}) {
        EXPECT_EQ(expand(directive, {std::string_view("a\u00E9")}), "a\u00E9") << directive;
        EXPECT_EQ(expand(directive, {std::wstring_view(L"a\u00E9\U0001F600")}), "a\u00E9\U0001F600")
            << directive;
    }
}

TEST(Format, NumbersKeepFlagsWidthAndPrecision) {
    EXPECT_EQ(expand("errno = %d", {2L}), "errno = 2");
    EXPECT_EQ(expand("%i", {-7L}), "-7");
    EXPECT_EQ(expand("%lu", {18446744073709551615UL}), "18446744073709551615");
    EXPECT_EQ(expand("%ld", {-9223372036854775807L}), "-9223372036854775807");
    EXPECT_EQ(expand("%5d|%-5d|%05d|%+d", {42L, 42L, 42L, 42L}), "   42|42   |00042|+42");
    EXPECT_EQ(expand("%x %X %#x", {255L, 255L, 255L}), "ff FF 0xff");
    EXPECT_EQ(expand("%.4d", {42L}), "0042");
}

TEST(Format, ArgumentsAreTakenInOrder) {
    EXPECT_EQ(expand("%s=%d, %ls", {std::string_view("a"), 1L, std::wstring_view(L"b")}), "a=1, b");
}

TEST(Format, DoubledPercentIsOne) {
    EXPECT_EQ(expand("100%%"), "100%");
    EXPECT_EQ(expand("%%s", {std::string_view("x")}), "%s");
    EXPECT_EQ(expand("%%%%"), "%%");
    EXPECT_EQ(expand("%%%s", {std::string_view("x")}), "%x");
}

TEST(Format, DirectiveWithoutArgumentStaysAsWritten) {
    EXPECT_EQ(expand("%s and %d"), "%s and %d");
    EXPECT_EQ(expand("%s %s %ls", {std::string_view("x")}), "x %s %ls");
}

TEST(Format, DirectiveOfTheOtherKindStaysAndTakesNothing) {
    EXPECT_EQ(expand("%d %s", {std::string_view("x")}), "%d x");
    EXPECT_EQ(expand("%s %d", {5L}), "%s 5");
}

TEST(Format, WhatWouldReadOrWriteMemoryIsOrdinaryText) {
    const Arguments arguments = {std::string_view("x"), 1L};
    EXPECT_EQ(expand("%n %p %*d %c %f %1$s %a", arguments), "%n %p %*d %c %f %1$s %a");
}

TEST(Format, CutDirectiveAtTheEndStays) {
    for (const char* text : {"100%", "%l", "%-", "%5", "%.", "%5.3l"}) {
        EXPECT_EQ(expand(text, {1L}), text);
    }
}

TEST(Format, WidthThatWouldExhaustMemoryStaysAsWritten) {
    EXPECT_EQ(expand("%999999999d", {1L}), "%999999999d");
    EXPECT_EQ(expand("%.2147483648d", {1L}), "%.2147483648d");
    EXPECT_EQ(expand("%99999d", {1L}).size(), 511U);
}

TEST(Format, PercentSignsOfArgumentsMeanNothing) {
    EXPECT_EQ(expand("%s %s", {std::string_view("%s%n%%"), std::string_view("y")}), "%s%n%% y");
}

TEST(Utf8, EveryLengthOfCharacterIsWritten) {
    EXPECT_EQ(toUtf8(L"a\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8, CharacterThatDoesNotExistBecomesTheReplacementCharacter) {
    for (const unsigned code : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
        const std::wstring text = {L'a', static_cast<wchar_t>(code), L'b'};
        EXPECT_EQ(toUtf8(text),
                  "a\xEF\xBF\xBD"
                  "b")
            << code;
    }
}

TEST(CutAtCharacter, ShortTextStaysWhole) {
    EXPECT_EQ(cutAtCharacter("abc", 3), "abc");
    EXPECT_EQ(cutAtCharacter("", 0), "");
}

TEST(CutAtCharacter, LongTextEndsInFrontOfTheCharacterThatDoesNotFit) {
    EXPECT_EQ(cutAtCharacter("abcd", 3), "abc");
    EXPECT_EQ(cutAtCharacter("ab\u00E9", 3), "ab");
    EXPECT_EQ(cutAtCharacter("ab\u00E9c", 4), "ab\u00E9");
    for (const std::size_t limit : {1U, 2U, 3U, 4U}) {
        EXPECT_EQ(cutAtCharacter("a\U0001F600", limit), "a") << limit;
    }
    EXPECT_EQ(cutAtCharacter("\u00E9", 1), "");
}

TEST(CutAtCharacter, BytesThatAreNoUtf8AreCutAnywhere) {
    EXPECT_EQ(cutAtCharacter(std::string(10, '\x80'), 6), std::string(6, '\x80'));
}

}  // namespace
}  // namespace rcp
