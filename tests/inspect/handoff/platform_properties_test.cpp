#include "inspect/handoff/platform_properties.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

std::string valueIn(const std::string& file, const std::string& key = "a") {
    const PlatformProperties all = readPlatformProperties(file);
    const auto found = all.find(key);
    return found == all.end() ? "none" : found->second.value;
}

TEST(PlatformProperties, EndAKeyAtASeparatorOrBlank) {
    for (const char* file : {"a=b", "a:b", "a b", " a = b\n", "\ta\t:\fb\r\n", "a=x\na=b"}) {
        EXPECT_EQ(valueIn(file), "b") << file;
    }
    EXPECT_EQ(valueIn("a=b=c"), "b=c");
    EXPECT_EQ(valueIn("a"), "");
    EXPECT_EQ(valueIn("a\\=\\ b=c", "a= b"), "c");
}

TEST(PlatformProperties, SkipCommentsAndBlankLines) {
    EXPECT_TRUE(readPlatformProperties("# a=b\n  ! a=b\n\n \t\r\n").empty());
}

TEST(PlatformProperties, ReplaceEscapes) {
    EXPECT_EQ(valueIn(R"(a=\u00fc\u20AC)"), "\xC3\xBC\xE2\x82\xAC");
    EXPECT_EQ(valueIn(R"(a=b\tc\:\\d\q)"), "b\tc:\\dq");
    EXPECT_EQ(valueIn("a=\xFC"), "\xC3\xBC") << "the file is ISO 8859-1";
    EXPECT_EQ(valueIn(R"(a=\u00)"), "u00");
}

TEST(PlatformProperties, WithEscapesThatAreNoneAreRefusedFromTheirLineOn) {
    for (const char* file :
         {R"(a=\u00)", R"(a=\u00g1)", R"(a\u=b)", R"(a=\\\u 41)", "a=\\u00\n41=b"}) {
        EXPECT_EQ(malformedLine("x=y\n" + std::string(file) + "\nb=\\u"), 2U) << file;
    }
    for (const char* file :
         {R"(a=\u00fC)", R"(a=\\u)", "# \\u", "a=\\u00\\\n  41", "a=b\\", "a=\\"}) {
        EXPECT_FALSE(malformedLine(file)) << file;
    }
}

TEST(PlatformProperties, GoOnBehindABackslash) {
    EXPECT_EQ(valueIn("a=b,\\\n   c,\\\r\n d"), "b,c,d");
    EXPECT_EQ(valueIn("a=b\\\\\nc=d"), "b\\");
    EXPECT_EQ(valueIn("a=b\\"), "b");
    EXPECT_EQ(readPlatformProperties("\nx=y\na=b\\\nc\nd=e").at("a").line, 3U);
    EXPECT_EQ(readPlatformProperties("\nx=y\na=b\\\nc\nd=e").at("d").line, 5U);
}

TEST(PlatformProperties, HaveLinesOfAnyLength) {
    const std::string value(100000, 'x');
    EXPECT_EQ(valueIn("a=" + value), value);
}

}  // namespace
}  // namespace rcp::inspect
