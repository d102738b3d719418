// What a parser of property lists may see, without a parser that could refuse it as well.
#include "platform/property_list_guard.h"

#include "tests/unit/platform/hidden_nesting.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace rcp::platform {
namespace {

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

std::string nested(int depth) {
    return repeated("<a>", depth) + repeated("</a>", depth);
}

bool isXml(const std::string& text) {
    return guardPropertyList(text) == PropertyListForm::kXml;
}

bool isRefused(const std::string& text) {
    return guardPropertyList(text) == PropertyListForm::kRefused;
}

// The text in units of two bytes behind their mark.
std::string utf16(const std::string& text, bool isBigEndian) {
    std::string units = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) {
        units += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    }
    return units;
}

TEST(PropertyListGuard, TextThatBeginsWithATagIsXml) {
    EXPECT_TRUE(isXml("<a/>"));
    EXPECT_TRUE(isXml(" \t\r\n<a></a>"));
    EXPECT_TRUE(isXml("\xEF\xBB\xBF<a/>"));
    for (const char* other :
         {"", " \t\r\n", "key=value", "x<a/>", "\xEF\xBB\xBF", "\xEF\xBB<a/>"}) {
        EXPECT_TRUE(isRefused(other)) << other;
    }
}

// One system's parser would read them.
TEST(PropertyListGuard, UnitsOfTwoBytesAreRefusedInBothOrders) {
    for (const bool isBigEndian : {false, true}) {
        EXPECT_TRUE(isRefused(utf16("<a/>", isBigEndian)));
        EXPECT_TRUE(isRefused(utf16("<a/>", isBigEndian).substr(2))) << "without mark";
    }
}

TEST(PropertyListGuard, SizeAndDepthHaveTheirLimits) {
    const std::size_t most = std::size_t{1} << 20;
    EXPECT_TRUE(isXml("<a/>" + std::string(most - 4, ' ')));
    EXPECT_TRUE(isRefused("<a/>" + std::string(most - 3, ' ')));
    const std::string larger = "<a/>" + std::string(most, ' ');
    EXPECT_EQ(guardPropertyList(larger, larger.size()), PropertyListForm::kXml);
    EXPECT_EQ(guardPropertyList(larger, larger.size() - 1), PropertyListForm::kRefused);
    EXPECT_TRUE(isXml(nested(kMaxPropertyListDepth)));
    EXPECT_TRUE(isRefused(nested(kMaxPropertyListDepth + 1)));
    EXPECT_TRUE(isRefused("<a></a></a><a>"));
    EXPECT_TRUE(isXml("<a>" + repeated("<b/>", kMaxPropertyListDepth + 1) + "</a>"));
    EXPECT_TRUE(isXml("<plist>" + nested(kMaxPropertyListDepth) + "</plist>"));
    EXPECT_TRUE(isRefused("<plist>" + nested(kMaxPropertyListDepth + 1) + "</plist>"));
    const auto around = [](const std::string& value) {
        return repeated("<a>", kMaxPropertyListDepth) + value +
               repeated("</a>", kMaxPropertyListDepth);
    };
    EXPECT_TRUE(isXml(around("")));
    EXPECT_TRUE(isRefused(around("<b/>"))) << "written, an empty text has two tags";
}

TEST(PropertyListGuard, NoEncodingIsDeclaredButThoseThatItReads) {
    const auto declaring = [](const std::string& encoding) {
        return "<?xml version='1.0' encoding" + encoding + "?><a/>";
    };
    for (const auto& [name, begin, end] : test::kHidingEncodings) {
        const std::string hidden = test::nestingHiddenBy(begin, end);
        EXPECT_TRUE(isXml(test::declaring("UTF-8", hidden))) << name;
        EXPECT_TRUE(isRefused(test::declaring(name, hidden))) << name;
    }
    for (const char* name : {"shift_jis", "GBK", "HZ", "UTF-7", "UTF-16", "UTF-32", "ISO-8859-1",
                             "US-ASCII", "UTF-8x", "nonsense"}) {
        EXPECT_TRUE(isRefused(declaring("=\"" + std::string(name) + "\""))) << name;
    }
    for (const char* other : {"", "=", "=\"", "='UTF-8\"", "=UTF-8", "=''", " 'UTF-8'",
                              "='UTF-8' encoding='GBK'", "='\\0\\0\\x0d-8'", "='@TF-8'"}) {
        EXPECT_TRUE(isRefused(declaring(other))) << other;
    }
    for (const char* known : {"=\"UTF-8\"", "='utf-8'", " = 'Utf-8'", "\n=\n\"UTF-8\" a='b'"}) {
        EXPECT_TRUE(isXml(declaring(known))) << known;
    }
    EXPECT_TRUE(isRefused("<a><?x encoding='GBK'?></a>"));
    EXPECT_TRUE(isXml("<a><!-- encoding='GBK' --></a>"));
}

TEST(PropertyListGuard, WhatOneParserWouldPutRightIsRefused) {
    for (const char* list : {"<plist><string>a<!-- b -->c</string></plist>",
                             "<plist><key>a<?b c?></key></plist>",
                             "<dict><key>a</key></dict>",
                             "<dict><string>a</string></dict>",
                             "<dict><key>a</key><key>b</key></dict>",
                             "<dict><key>a</key><true/><true/></dict>",
                             "<plist><dict></dict>",
                             "<plist><dict/><dict/></plist>",
                             "<dict/><dict/>",
                             "<plist><string>a</plist></string>",
                             "<string><b/></string>",
                             "<string>&#0;</string>",
                             "<string>&#x00;</string>",
                             "</a>",
                             "<a>b</a>",
                             "<a/>b",
                             "b<a/>",
                             "<a>b<c/></a>",
                             "<a></a b>",
                             "<a><!DOCTYPE a></a>",
                             "<a/><!DOCTYPE a>",
                             "<dict><key/><true/></dict>",
                             "<data/>",
                             "<true>a</true>",
                             "<true> </true>",
                             "<false>\n</false>",
                             "<true><![CDATA[]]></true>",
                             "<true><!-- a --></true>",
                             "<false><?a b?></false>",
                             "<true><b/></true>",
                             "<a/b>",
                             "<a/ ></a>"}) {
        EXPECT_TRUE(isRefused(list)) << list;
    }
    for (const char* list :
         {"<plist><!-- a --><dict><key>a</key><!-- b --><true/></dict></plist>\n<!-- c -->",
          "<dict><key></key><array><string/><string>&#10;&#x30;</string></array></dict>",
          "<plist version=\"1.0\"\n><dict /></plist\t\n>",
          "<array><true/><true></true ><false/></array>", "<!DOCTYPE a><a>\n<b/>\t</a>\r\n "}) {
        EXPECT_TRUE(isXml(list)) << list;
    }
}

TEST(PropertyListGuard, MarkInAnAttributeIsNeverTakenForTheEndOfATag) {
    for (const char* attribute : {"a=\"/>\"", "a='/>'", "a='\"/>'", "a=\">\"", "a=\"<\"", "a="}) {
        const std::string tag = std::string("<dict ") + attribute;
        EXPECT_FALSE(isSafeXmlPropertyList(tag)) << tag;
    }
    EXPECT_TRUE(isSafeXmlPropertyList("<dict a=\"/\" b='\"'></dict>"));
    EXPECT_FALSE(isSafeXmlPropertyList("<a><"));
}

TEST(PropertyListGuard, NumbersAndDatesAreThoseThatEveryParserReadsAlike) {
    const auto passes = [](const std::string& element, const std::string& text) {
        return isXml("<plist><" + element + ">" + text + "</" + element + "></plist>");
    };
    for (const char* text : {"0", "-0", "-1", "+2", "0x1F", "0X001f", "18446744073709551615",
                             "-9223372036854775808"}) {
        EXPECT_TRUE(passes("integer", text)) << text;
    }
    for (const char* text :
         {"", " ", "-", "one", "1x", "0x", "1.0", "--1", "+-1", "1 2", "&#49;", "<![CDATA[1]]>",
          "18446744073709551616", "-9223372036854775809", " 3", "3\n", "010", "-01", "+ 3"}) {
        EXPECT_FALSE(passes("integer", text)) << text;
    }
    for (const char* text :
         {"1", "-1.5", ".5", "5.", "1e9", "1.5E-3", "nan", "-infinity", "+inf"}) {
        EXPECT_TRUE(passes("real", text)) << text;
    }
    for (const char* text : {"", ".", "e3", "1e", "1e+", "1,5", "0x1p3", "1.2.3", "infinite", " 1",
                             "1 ", "-nan", "+nan", "nan "}) {
        EXPECT_FALSE(passes("real", text)) << text;
    }
    for (const char* text :
         {"2026-11-21T10:00:00Z", "1000-01-01T00:00:00Z", "9999-12-31T23:59:59Z"}) {
        EXPECT_TRUE(passes("date", text)) << text;
    }
    for (const char* text :
         {"", "yesterday", "2026-11-21", "2026-11-21T10:00:00", "2026-13-21T10:00:00Z",
          "2026-00-21T10:00:00Z", "2026-11-32T10:00:00Z", "2026-11-21T24:00:00Z",
          "2026-11-21T10:60:00Z", "2026-11-21T10:00:60Z", "26-11-21T10:00:00Z",
          "0999-11-21T10:00:00Z", " 2026-11-21T10:00:00Z", "2026-11-21T10:00:00Z\n"}) {
        EXPECT_FALSE(passes("date", text)) << text;
    }
    for (const char* text : {"", " \n", "YWJj", "YWI=", "Y Q\n=\t=\r", "+/+/"}) {
        EXPECT_TRUE(passes("data", text)) << text;
    }
    for (const char* text : {"Y", "YW", "YWI", "=", "==", "====", "Y===", "YW=I", "YWI!",
                             "YWJjYQ==YQ==", "YWI\x0B=", "YWI&#61;", "YW\xC3\xBC"}) {
        EXPECT_FALSE(passes("data", text)) << text;
    }
    for (const char* element : {"integer", "real", "date"}) {
        EXPECT_FALSE(isXml("<plist><" + std::string(element) + "/></plist>")) << element;
    }
    EXPECT_TRUE(passes("string", "one"));
}

TEST(PropertyListGuard, TextsAreThoseThatEveryParserReadsAlike) {
    const auto isKey = [](const std::string& text) {
        return isXml("<dict><key>" + text + "</key><true/></dict>");
    };
    const auto passes = [&](const std::string& text) {
        const bool isText = isXml("<string>" + text + "</string>");
        const bool isForKeys =
            text.find("&#") == std::string::npos && text.find('<') == std::string::npos;
        EXPECT_EQ(isKey(text), isText && isForKeys) << text;
        return isText;
    };
    for (const char* text :
         {"", " a ", "\xC3\xBC", "\xF0\x9F\x98\x80", "\x01", "\xEF\xBF\xBE", "]]>", "a>b",
          "&amp;&lt;&gt;&quot;&apos;", "&#9;&#10;&#13;&#32;", "&#xD7FF;&#xE000;&#xFFFD;&#65533;",
          "&#0000065;&#x000041;", "<![CDATA[&<>&#1;]]>", "a<![CDATA[]]>&lt;"}) {
        EXPECT_TRUE(passes(text)) << text;
    }
    for (const char* text : {"\xFF",
                             "\xC3",
                             "\xC0\x80",
                             "\xED\xA0\x80",
                             "<![CDATA[\xFF]]>",
                             "&",
                             "a & b",
                             "&;",
                             "&amp",
                             "&AMP;",
                             "&nbsp;",
                             "& amp;",
                             "&#;",
                             "&#x;",
                             "&#X41;",
                             "&#-1;",
                             "&#+65;",
                             "&#6 5;",
                             "&#x4g;",
                             "&#1;",
                             "&#x1F;",
                             "&#xD800;",
                             "&#xDFFF;",
                             "&#xFFFE;",
                             "&#xFFFF;",
                             "&#x10000;",
                             "&#x1F600;",
                             "&#65536;",
                             "&#x110000;",
                             "&#1114112;",
                             "&#00000065;",
                             "&#x0000041;",
                             "<![CDATA[]]>&",
                             "&<![CDATA[;]]>"}) {
        EXPECT_FALSE(passes(text)) << text;
    }
    EXPECT_TRUE(isXml("<!-- \xFF & --><a b='\xFF'/>")) << "no text";
    // A dictionary with that key is a reference of an archive to one of them.
    EXPECT_TRUE(passes("CF$UIE"));
    EXPECT_TRUE(isXml("<string>CF$UID</string>"));
    EXPECT_FALSE(isKey("CF$UID"));
    EXPECT_FALSE(isKey("CF&#36;UID"));
    EXPECT_FALSE(isKey("<![CDATA[CF$UID]]>"));
}

TEST(PropertyListGuard, WhatIsNoElementIsPassedOver) {
    const std::string deep = repeated("<a>", kMaxPropertyListDepth + 1);
    for (const std::string& text : {std::string(), std::string("]"), std::string(">"), deep}) {
        EXPECT_TRUE(isSafeXmlPropertyList("<a><![CDATA[" + text + "]]></a>")) << text;
        EXPECT_FALSE(isSafeXmlPropertyList("<![CDATA[" + text + "]]>" + deep)) << text;
    }
    for (const std::string& text : {std::string(), std::string("x>"), deep}) {
        EXPECT_TRUE(isSafeXmlPropertyList("<!--" + text + "--><a/>")) << text;
        EXPECT_FALSE(isSafeXmlPropertyList("<!--" + text + "-->" + deep)) << text;
        EXPECT_TRUE(isSafeXmlPropertyList("<?x" + text + "?><a/>")) << text;
        EXPECT_FALSE(isSafeXmlPropertyList("<?x" + text + "?>" + deep)) << text;
    }
    EXPECT_TRUE(
        isSafeXmlPropertyList("<?"
                              "?><a/>"));
    EXPECT_TRUE(isSafeXmlPropertyList("<!DOCTYPE plist \"a\"><a/>"));
    for (const char* text :
         {"<!-->", "<!--->", "<?>", "<!--", "<![CDATA[", "<?x", "<!DOCTYPE", "<!DOCTYPE [<!>]>",
          "<!DOCTYPE <>>", "<!ELEMENT a>", "<!-- -><a/>", "<![CDATA[]>", "<![CDATA[]"}) {
        EXPECT_FALSE(isSafeXmlPropertyList(text)) << text;
    }
}

}  // namespace
}  // namespace rcp::platform
