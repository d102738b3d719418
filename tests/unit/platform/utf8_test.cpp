#ifdef __linux__

#include "platform/utf8.h"

#include <gtest/gtest.h>

namespace rcp::platform {
namespace {

using namespace std::string_view_literals;

TEST(Utf8, LettersOfEveryLengthAreDecoded) {
    EXPECT_EQ(decodeUtf8("a\xC3\xBC\xE6\x97\xA5\xF0\x9F\x98\x80"), U"a\u00FC\u65E5\U0001F600");
    EXPECT_EQ(decodeUtf8(""), U"");
}

TEST(Utf8, LetterThatIsCutOffIsNone) {
    // What stands behind the text would complete it.
    EXPECT_EQ(decodeUtf8("\xC3\xBC"sv.substr(0, 1)), std::nullopt);
    EXPECT_EQ(decodeUtf8("a\xE6\x97\xA5"sv.substr(0, 3)), std::nullopt);
    EXPECT_EQ(decodeUtf8("\xF0\x9F\x98\x80"sv.substr(0, 3)), std::nullopt);
}

TEST(Utf8, WhatNoLetterHasIsRefused) {
    for (const std::string_view text : {"\x80"sv, "\xC0\x80"sv, "\xE0\x80\x80"sv, "\xED\xA0\x80"sv,
                                        "\xF4\x90\x80\x80"sv, "\xFF"sv, "\xC3("sv}) {
        EXPECT_EQ(decodeUtf8(text), std::nullopt);
    }
}

}  // namespace
}  // namespace rcp::platform

#endif
