#include "platform/text.h"

#include "tests/unit/fixture.h"

#include <locale.h>
#include <wchar.h>

#include <cstring>
#include <limits>

namespace rcp {
namespace {

const std::string kNarrow = "Gr\u00FC\u00DFe \u65E5\u672C \U0001F600";
const std::wstring kWide = L"Gr\u00FC\u00DFe \u65E5\u672C \U0001F600";
// Bytes that are no UTF-8, and a number that is no character.
const std::string kNoText =
    "a\xFF"
    "b";
const std::wstring kNoCharacter = {L'a', static_cast<wchar_t>(0xD800), L'b'};

class Conversion : public test::LauncherTest {};

TEST_F(Conversion, WideBecomesUtf8AndItsBytesAreCounted) {
    std::string out = "old";
    EXPECT_EQ(wstrtocs(out, kWide), kNarrow.size());
    EXPECT_EQ(out, kNarrow);
    out = "old";
    EXPECT_EQ(wcstochar(out, kWide.c_str()), kNarrow.size());
    EXPECT_EQ(out, kNarrow);
    EXPECT_EQ(toNarrow(kWide), kNarrow);
}

TEST_F(Conversion, Utf8BecomesWide) {
    std::wstring out = L"old";
    EXPECT_STREQ(chartowstr(kNarrow.c_str(), out), kWide.c_str());
    EXPECT_EQ(out, kWide);
    EXPECT_STREQ(chartowcs(kNarrow.c_str()).get(), kWide.c_str());
    EXPECT_EQ(toWide(kNarrow), kWide);
}

TEST_F(Conversion, ResultIsTheOutStringsOwnCharacters) {
    std::wstring out;
    const wchar_t* const found = chartowstr("abc", out);
    EXPECT_EQ(found, out.c_str());
}

TEST_F(Conversion, EmptyStaysEmpty) {
    std::string narrow = "old";
    std::wstring wide = L"old";
    EXPECT_EQ(wstrtocs(narrow, L""), 0U);
    EXPECT_EQ(narrow, "");
    chartowstr("", wide);
    EXPECT_EQ(wide, L"");
    EXPECT_STREQ(chartowcs("").get(), L"");
}

TEST_F(Conversion, WhatCannotBeConvertedGivesAnEmptyResult) {
    std::string narrow = "old";
    std::wstring wide = L"old";
    EXPECT_EQ(wstrtocs(narrow, kNoCharacter), 0U);
    EXPECT_EQ(narrow, "");
    narrow = "old";
    EXPECT_EQ(wcstochar(narrow, kNoCharacter.c_str()), 0U);
    EXPECT_EQ(narrow, "");
    EXPECT_STREQ(chartowstr(kNoText.c_str(), wide), L"");
    EXPECT_EQ(wide, L"");
    EXPECT_STREQ(chartowcs(kNoText.c_str()).get(), L"");
}

TEST_F(Conversion, NothingIsEverCut) {
    const std::wstring wide(100000, L'\u65E5');
    const std::string narrow = toNarrow(wide);
    EXPECT_EQ(narrow.size(), 300000U);
    EXPECT_EQ(toWide(narrow), wide);
    EXPECT_EQ(wcslen(chartowcs(narrow.c_str()).get()), 100000U);
}

TEST_F(Conversion, TextBehindANulIsNotConverted) {
    EXPECT_EQ(toNarrow(std::wstring(L"a\0b", 3)), "a");
    EXPECT_EQ(toWide(std::string("a\0b", 3)), L"a");
}

TEST_F(Conversion, CharacterSetIsThatOfTheLocale) {
    EXPECT_EXIT(
        {
            setlocale(LC_CTYPE, "C");
            exit(toNarrow(L"a\u65E5").empty() && toNarrow(L"a") == "a" ? 3 : 4);
        },
        testing::ExitedWithCode(3), "");
}

TEST(WideBuffers, NewStringIsZeroFromTheFirstCharacterToTheOneBehindTheLast) {
    const WideBuffer buffer = newString(40);
    for (std::size_t i = 0; i <= 40; ++i) {
        EXPECT_EQ(buffer[i], L'\0') << i;
    }
    EXPECT_STREQ(newString(0).get(), L"");
}

TEST(WideBuffers, MallocStringHasRoomForTheTerminator) {
    const WideBuffer buffer = mallocString(3);
    wcscpy(buffer.get(), L"abc");
    EXPECT_STREQ(buffer.get(), L"abc");
}

TEST(WideBuffers, FreeingNullIsNothing) {
    freeString(nullptr);
    freeString(newString(1).release());
}

#if defined(__SANITIZE_ADDRESS__)
#define RCP_HAS_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RCP_HAS_ADDRESS_SANITIZER
#endif
#endif

// The sanitizer's own allocator ends the process when it is asked for too much.
#ifndef RCP_HAS_ADDRESS_SANITIZER
TEST(WideBuffers, NoMemoryEndsTheLaunch) {
    const volatile std::size_t tooMuch = std::numeric_limits<std::size_t>::max() / 8;
    EXPECT_FATAL(newString(tooMuch),
                 "ZYPRA0004E: newString malloc failed.  Failed with error 12: Cannot allocate "
                 "memory : Cannot allocate memory\n");
    EXPECT_FATAL(mallocString(tooMuch), "ZYPRA0004E: mallocString malloc failed! : ");
    // The second one's size in bytes would be none at all.
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t n : {most, most / sizeof(wchar_t)}) {
        EXPECT_FATAL(mallocString(n), "ZYPRA0004E: mallocString malloc failed!");
    }
}
#endif

TEST(Separators, EveryBackslashBecomesASlashAndSlashesStay) {
    std::wstring path = L"\\\\a\\b/c\\";
    convertBS2S(path);
    EXPECT_EQ(path, L"//a/b/c/");
    path = L"a\\b/c";
    convertToOsSeparator(path);
    EXPECT_EQ(path, L"a/b/c");
    EXPECT_EQ(osPath(L"a\\b/c"), L"a/b/c");
    EXPECT_EQ(osPath(L""), L"");
}

}  // namespace
}  // namespace rcp
