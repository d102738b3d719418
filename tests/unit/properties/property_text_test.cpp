// The text rules of property files.
#include "launcher/properties/property_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace rcp {
namespace {

using Pair = std::pair<std::wstring, std::wstring>;

std::wstring trimmed(std::wstring text) {
    trimString(text);
    return text;
}

std::wstring filtered(std::wstring value) {
    FilterValue(value);
    return value;
}

TEST(TrimString, BlanksAtBothEndsGo) {
    EXPECT_EQ(trimmed(L"  a b  "), L"a b");
    EXPECT_EQ(trimmed(L"a"), L"a");
    EXPECT_EQ(trimmed(L"a "), L"a");
}

TEST(TrimString, TabsAndOtherWhiteSpaceStay) {
    EXPECT_EQ(trimmed(L" \ta\t "), L"\ta\t");
    EXPECT_EQ(trimmed(L"\u00A0a\r"), L"\u00A0a\r");
}

TEST(TrimString, TextOfBlanksAloneStaysAsItIs) {
    EXPECT_EQ(trimmed(L"   "), L"   ");
    EXPECT_EQ(trimmed(L" "), L" ");
    EXPECT_EQ(trimmed(L""), L"");
}

TEST(FilterProp, KeyIsTrimmedAndNothingElse) {
    std::wstring key = L"  a\\tb\\\\ ";
    FilterProp(key);
    EXPECT_EQ(key, L"a\\tb\\\\");
}

TEST(FilterValue, PairOfBackslashesIsOne) {
    EXPECT_EQ(filtered(L"x\\\\y"), L"x\\y");
    EXPECT_EQ(filtered(L"\\\\\\\\"), L"\\\\");
    EXPECT_EQ(filtered(L"\\\\u0041"), L"\\u0041") << "the search goes on behind the pair";
}

TEST(FilterValue, UnicodeEscapeIsOneCharacter) {
    EXPECT_EQ(filtered(L"\\u00e9"), L"\u00E9");
    EXPECT_EQ(filtered(L"a\\u00E9b\\u65e5"),
              L"a\u00E9"
              L"b\u65E5");
    EXPECT_EQ(filtered(L"\\u00410"), L"A0") << "four digits, not five";
}

TEST(FilterValue, TwoEscapesOfACharacterBeyondSixteenBitsAreThatCharacter) {
    EXPECT_EQ(filtered(L"a\\ud83d\\ude00b"), (std::wstring{L'a', wchar_t{0x1F600}, L'b'}));
    EXPECT_EQ(filtered(L"\\ud83dx\\ude00"), (std::wstring{wchar_t{0xD83D}, L'x', wchar_t{0xDE00}}));
    EXPECT_EQ(filtered(L"\\ude00\\ud83d"), (std::wstring{wchar_t{0xDE00}, wchar_t{0xD83D}}));
}

TEST(FilterValue, EscapedBackslashIsNotReadAgain) {
    EXPECT_EQ(filtered(L"\\u005cn"), L"\\n");
}

TEST(FilterValue, DigitThatDoesNotParseEndsTheNumberButNotTheEscape) {
    EXPECT_EQ(filtered(L"\\u41xyz"), L"Az");
    EXPECT_EQ(filtered(L"\\u4"), L"\x04");
    EXPECT_EQ(filtered(L"a\\u0e9"), L"a\u00E9");
}

TEST(FilterValue, EscapeOfNulEndsTheValue) {
    EXPECT_EQ(filtered(L"a\\u0000b"), L"a");
    EXPECT_EQ(filtered(L"a\\uxyzwb"), L"a");
    EXPECT_EQ(filtered(L"a\\u"), L"a");
}

TEST(FilterValue, EveryOtherBackslashJustGoesAway) {
    EXPECT_EQ(filtered(L"x\\ty\\nz"), L"xtynz");
    EXPECT_EQ(filtered(L"\\a\\:\\="), L"a:=");
    EXPECT_EQ(filtered(L"end\\"), L"end");
    EXPECT_EQ(filtered(L"\\"), L"");
    EXPECT_EQ(filtered(L"\\\\\\"), L"\\");
}

TEST(FilterValue, ValueIsTrimmedLast) {
    EXPECT_EQ(filtered(L"  v  "), L"v");
    EXPECT_EQ(filtered(L"\\u0020v\\ "), L"v");
    EXPECT_EQ(filtered(L"   "), L"   ");
    EXPECT_EQ(filtered(L""), L"");
}

TEST(IsComment, LineBeginsWithNumberSignOrExclamationMark) {
    EXPECT_TRUE(isComment(L"#"));
    EXPECT_TRUE(isComment(L"! comment"));
    EXPECT_FALSE(isComment(L" #"));
    EXPECT_FALSE(isComment(L"a=#!"));
    EXPECT_FALSE(isComment(L"")) << "an empty line is none";
}

TEST(IsContinuationLine, OddNumberOfBackslashesContinues) {
    EXPECT_TRUE(isContinuationLine(L"a\\"));
    EXPECT_FALSE(isContinuationLine(L"a\\\\"));
    EXPECT_TRUE(isContinuationLine(L"a\\\\\\"));
    EXPECT_FALSE(isContinuationLine(L"a"));
    EXPECT_FALSE(isContinuationLine(L"a\\ "));
}

TEST(IsContinuationLine, FirstCharacterIsNeverCounted) {
    EXPECT_FALSE(isContinuationLine(L"\\"));
    EXPECT_TRUE(isContinuationLine(L"\\\\"));
    EXPECT_FALSE(isContinuationLine(L"\\\\\\"));
}

TEST(IsContinuationLine, EmptyLineContinues) {
    EXPECT_TRUE(isContinuationLine(L""));
}

/// The line when it is kept, "dropped" otherwise.
std::wstring processed(std::wstring line) {
    return processFilterKey(line) ? L"dropped" : line;
}

TEST(ProcessFilterKey, KeyOfThisSystemLosesItsQualifier) {
    EXPECT_EQ(processed(L"foo.macosx=bar"), L"foo=bar");
    EXPECT_EQ(processed(L"a.b.macosx = c.linux"), L"a.b = c.linux");
    EXPECT_EQ(processed(L"foo.macosx64:bar"), L"foo:bar") << "the test is of the beginning";
    EXPECT_EQ(processed(L"foo.macosx"), L"foo");
    EXPECT_EQ(processed(L".macosx=x"), L"=x");
}

TEST(ProcessFilterKey, KeyOfAnotherSystemIsDropped) {
    EXPECT_EQ(processed(L"foo.win32=bar"), L"dropped");
    EXPECT_EQ(processed(L"foo.linux=bar"), L"dropped");
    EXPECT_EQ(processed(L"foo.linux64 bar"), L"dropped");
    EXPECT_EQ(processed(L"foo.win32"), L"dropped");
}

TEST(ProcessFilterKey, OtherSuffixesAndKeysWithoutAPointAreKept) {
    for (const wchar_t* line :
         {L"foo=bar", L"foo.bar=x", L"foo=a.win32", L"foo:a.linux", L"foo a.linux", L"foo.Linux=x",
          L"foo.aix=x", L"foo.win32.x=y", L"foo.mac=x", L"", L"."}) {
        EXPECT_EQ(processed(line), line);
    }
}

TEST(ProcessFilterKey, TabDoesNotEndTheKey) {
    EXPECT_EQ(processed(L"foo.x\tbar.linux=x"), L"dropped");
}

TEST(ProcessFilterKey, LeadingBlanksGoInAnyCase) {
    EXPECT_EQ(processed(L"   foo=bar "), L"foo=bar ");
    EXPECT_EQ(processed(L"  foo.macosx=bar"), L"foo=bar");
    EXPECT_EQ(processed(L"   "), L"");
    EXPECT_EQ(processed(L"\tfoo=bar"), L"\tfoo=bar");
}

TEST(ProcessFilterKey, SystemPropertyIsNeverQualified) {
    EXPECT_EQ(processed(L" -Dfoo.win32=bar"), L"-Dfoo.win32=bar");
    EXPECT_EQ(processed(L"-Dfoo.macosx=bar"), L"-Dfoo.macosx=bar");
    EXPECT_EQ(processed(L"-dfoo.win32=bar"), L"dropped");
}

}  // namespace
}  // namespace rcp
