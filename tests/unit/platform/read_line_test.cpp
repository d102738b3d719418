// readFile with the two formats that the launcher uses.
#include "platform/files.h"
#include "platform/text.h"
#include "tests/unit/fixture.h"

namespace rcp {
namespace {

constexpr wchar_t kSkipping[] = L" %2024[^\n]\n";
constexpr wchar_t kPlain[] = L"%2024[^\n]\n";

class ReadLine : public test::LauncherTest {
  protected:
    std::vector<std::wstring> lines(const std::string& content, const wchar_t* format = kSkipping) {
        positions_.clear();
        std::vector<std::wstring> found;
        std::wstring line = L"old";
        TextLines text{content};
        while (readFile(text, format, line)) {
            found.push_back(line);
            positions_.push_back(text.line);
        }
        EXPECT_EQ(text.rest, "");
        EXPECT_EQ(line, L"");
        return found;
    }
    std::vector<std::size_t> positions_;
};

using Lines = std::vector<std::wstring>;

TEST_F(ReadLine, EachLineIsOneText) {
    EXPECT_EQ(lines("a=1\nB\u00FCro\n"), (Lines{L"a=1", L"B\u00FCro"}));
    EXPECT_EQ(positions_, (std::vector<std::size_t>{1, 2}));
}

TEST_F(ReadLine, LastLineNeedsNoLineFeed) {
    EXPECT_EQ(lines("a\nb"), (Lines{L"a", L"b"}));
}

TEST_F(ReadLine, EmptyFileHasNoLines) {
    EXPECT_EQ(lines(""), Lines());
    EXPECT_EQ(lines(" \n\t\r\n\v\f\n"), Lines());
    EXPECT_EQ(lines("", kPlain), Lines());
    EXPECT_EQ(lines("\n\n\n", kPlain), Lines());
}

TEST_F(ReadLine, LeadingWhiteSpaceAndBlankLinesAreSkipped) {
    EXPECT_EQ(lines("\n \t\n  a\n\n\t b\n"), (Lines{L"a", L"b"}));
    EXPECT_EQ(positions_, (std::vector<std::size_t>{3, 5}));
}

TEST_F(ReadLine, TrailingBlanksAndCarriageReturnStay) {
    EXPECT_EQ(lines("a  \r\nb\t\n"), (Lines{L"a  \r", L"b\t"}));
}

TEST_F(ReadLine, PlainFormatKeepsTheFirstLinesLeadingBlanks) {
    EXPECT_EQ(lines("  a\n  b\n", kPlain), (Lines{L"  a", L"b"}))
        << "those of the next line go with the line feed in front of them";
}

TEST_F(ReadLine, EmptyFirstLineDoesNotStallThePlainFormat) {
    EXPECT_EQ(lines("\na\n", kPlain), Lines{L"a"});
    EXPECT_EQ(lines("\n\n \n a\n", kPlain), Lines{L"a"});
    EXPECT_EQ(positions_, std::vector<std::size_t>{4});
}

TEST_F(ReadLine, LineOf2024BytesIsOneText) {
    EXPECT_EQ(lines(std::string(2024, 'x') + "\nb\n"), (Lines{std::wstring(2024, L'x'), L"b"}));
}

TEST_F(ReadLine, LongerLineIsCutAndItsRestIsTheNext) {
    const Lines found = lines(std::string(3000, 'x') + "\nb\n");
    EXPECT_EQ(found, (Lines{std::wstring(2024, L'x'), std::wstring(976, L'x'), L"b"}));
    EXPECT_EQ(positions_, (std::vector<std::size_t>{1, 1, 2}));
}

TEST_F(ReadLine, BlanksAtTheCutAreSkipped) {
    EXPECT_EQ(lines(std::string(2024, 'x') + "  y\n"), (Lines{std::wstring(2024, L'x'), L"y"}));
}

TEST_F(ReadLine, CutFallsInFrontOfACharacter) {
    for (const std::string character : {"\u00E9", "\u65E5", "\U0001F600"}) {
        const std::wstring wide = toWide(character);
        for (std::size_t in = 1; in < character.size(); ++in) {
            const std::size_t ahead = 2024 - in;
            const Lines found = lines(std::string(ahead, 'x') + character + "y\n");
            EXPECT_EQ(found, (Lines{std::wstring(ahead, L'x'), wide + L"y"})) << in;
        }
        const std::size_t fits = 2024 - character.size();
        EXPECT_EQ(lines(std::string(fits, 'x') + character + "y\n"),
                  (Lines{std::wstring(fits, L'x') + wide, L"y"}));
    }
}

TEST_F(ReadLine, NumberInTheFormatIsTheLimit) {
    EXPECT_EQ(lines("abcdefg\n", L" %3[^\n]\n"), (Lines{L"abc", L"def", L"g"}));
}

TEST_F(ReadLine, CharacterThatTheLineEndsInsideIsCutOffWhereItsWholeWouldNotFit) {
    EXPECT_EQ(lines("ab\xF0\n", L" %3[^\n]\n"), (Lines{L"ab", L""}));
}

TEST_F(ReadLine, LineThatIsNoTextIsEmptyAndTheNextIsRead) {
    EXPECT_EQ(lines("a\xFF"
                    "b\nc\n"),
              (Lines{L"", L"c"}));
}

TEST_F(ReadLine, TextBehindANulIsDropped) {
    EXPECT_EQ(lines(std::string("a\0b\nc\n", 6)), (Lines{L"a", L"c"}));
}

}  // namespace
}  // namespace rcp
