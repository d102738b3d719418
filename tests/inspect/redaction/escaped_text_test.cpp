// Secrets in the form in which they stand in property files.
#include "inspect/redaction/escaped_text.h"

#include "tests/inspect/redaction/redactor_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(EscapedText, IsPlainWithThePlacesOfItsCharacters) {
    const PlainText plain = plainText("a\\=\\u003Ab\\\r\n  c\\u0020\\");
    EXPECT_EQ(plain.text, "a=:bc\\u0020");
    EXPECT_EQ(plain.places, (std::vector<std::size_t>{0, 1, 3, 9, 15, 16, 17, 18, 19, 20, 21, 23}));
}

TEST(EscapedText, TakesValuesBehindAnEscapedSeparator) {
    EXPECT_EQ(redacted("arg4=-Dc.passwd\\=plain\\:Pw\\!5678"), "arg4=-Dc.passwd\\=*");
    EXPECT_EQ(redacted("arg6=-De.secret\\=back\\\\slash77\n"), "arg6=-De.secret\\=*\n");
    EXPECT_EQ(redacted("arg7=-Df.password\\=home"), "arg7=-Df.password\\=*");
    EXPECT_EQ(redacted("vmarg.r=-Dr.password\\u003dEscU66"), "vmarg.r=-Dr.password\\u003d*");
    EXPECT_EQ(redacted("vmarg.s=-Ds.password\\=a\\u000ab\\u0022c\\u0020d\nsize=1"),
              "vmarg.s=-Ds.password\\=*\nsize=1");
    EXPECT_EQ(redacted("vmarg.t=-Dt.token\\=one\\\r\n    two\r\nsize=1"),
              "vmarg.t=-Dt.token\\=*\r\nsize=1");
    EXPECT_EQ(redacted("arg8=-Dsize\\=12"), "arg8=-Dsize\\=12");
}

TEST(EscapedText, HasWhatTheOtherRulesKnowToo) {
    EXPECT_EQ(redacted("arg1=-Dproxy\\=joe\\:pw9@host\\:80"), "arg1=-Dproxy\\=*@host\\:80");
    EXPECT_EQ(redacted("body {\\\"password\\\": \\\"one\\\", \\\"size\\\": 3}"),
              "body {\\\"password\\\": \\\"*\\\", \\\"size\\\": 3}");
}

TEST(EscapedText, OfAKnownValueIsFoundAndHasTheSameDigest) {
    Redactor one(kSalt, {});
    one.learn("db.password", "plain:Pw!5678");
    EXPECT_EQ(one.redact("x plain\\:Pw\\!5678 y"), one.redact("x plain:Pw!5678 y"));
    EXPECT_EQ(one.redact("plain:Pw!5678"),
              "<redacted:" + saltedDigest(kSalt, "plain:Pw!5678") + ">");
}

TEST(EscapedText, TellsTheValueThatIsMeant) {
    Redactor one(kSalt, {});
    one.learn("#vmarg.x=-Da.password\\=b\\:9876");
    EXPECT_EQ(one.redact("found b:9876"), "found " + one.redact("b\\:9876"));
    EXPECT_EQ(one.redact("found b:9876").find("found <redacted:"), 0U);
}

TEST(EscapedText, OfAnEntryGoesOnBehindALineFeedOfAnySystem) {
    EXPECT_EQ(redacted("two.secret=one\\\r\nrest\r\nsize=1"), "two.secret=*\r\nsize=1");
}

}  // namespace
}  // namespace rcp::inspect
