#include "launcher/instance/lock_content.h"

#include <gtest/gtest.h>

#include <limits>

namespace rcp {
namespace {

void expectNumber(std::string_view content, long number) {
    const LockContent parsed = parseLockContent(content);
    EXPECT_EQ(parsed.kind, LockContent::kNumber) << content;
    EXPECT_EQ(parsed.number, number) << content;
}

TEST(LockContent, EmptyAndBlankContentIsNothing) {
    for (const char* content : {"", " ", "              ", "\n", " \t\n\v\f\r "}) {
        EXPECT_EQ(parseLockContent(content).kind, LockContent::kNothing) << content;
    }
    EXPECT_EQ(parseLockContent(kClearedLockContent).kind, LockContent::kNothing);
}

TEST(LockContent, NumberIsReadAtTheStartAndWhatFollowsIsIgnored) {
    expectNumber("4711          ", 4711);
    expectNumber("4711", 4711);
    expectNumber("  \n4711 12", 4711);
    expectNumber("12abc", 12);
    expectNumber("+7", 7);
    expectNumber("-5          ", -5);
    expectNumber("0", 0);
    expectNumber("007", 7);
    expectNumber("0x10", 0);
}

TEST(LockContent, NumberBeyondTheRangeIsTheOutermostOne) {
    expectNumber("99999999999999999999999999", std::numeric_limits<long>::max());
    expectNumber("-99999999999999999999999999", std::numeric_limits<long>::min());
}

TEST(LockContent, AnythingElseIsNoContentOfALock) {
    for (const char* content : {"abc", "  x12", "-", "+", "--1", ".5", "#"}) {
        EXPECT_EQ(parseLockContent(content).kind, LockContent::kOther) << content;
    }
}

TEST(LockContent, NulBytesThatAPowerFailureLeavesAreNothing) {
    for (const std::string& content :
         {std::string(1, '\0'), std::string(4096, '\0'),
          std::string(14, ' ') + std::string(20, '\0'), std::string(3, '\0') + "  \n"}) {
        EXPECT_EQ(parseLockContent(content).kind, LockContent::kNothing) << content.size();
    }
}

TEST(LockContent, TextBehindANulByteIsNoNumber) {
    EXPECT_EQ(parseLockContent(std::string_view("\0\0"
                                                "4711",
                                                6))
                  .kind,
              LockContent::kOther);
    EXPECT_EQ(parseLockContent(std::string_view("  \0 12", 6)).kind, LockContent::kOther);
    expectNumber(std::string_view("12\0", 3), 12);
}

TEST(LockContent, WrittenIdIsTheNumberAndTenBlanks) {
    EXPECT_EQ(lockContentFor(1), "1          ");
    EXPECT_EQ(lockContentFor(4194304), "4194304          ");
    EXPECT_EQ(lockContentFor(-1), "-1          ");
}

TEST(LockContent, ClearedContentIsFourteenBlanks) {
    EXPECT_EQ(kClearedLockContent, std::string(14, ' '));
}

TEST(LockContent, ShorterIdCoversALongerOneUpToTenDigitsLonger) {
    for (std::size_t digits = 1; digits <= 11; ++digits) {
        std::string content = lockContentFor(std::stol(std::string(digits, '9')));
        const std::string shorter = lockContentFor(7);
        content.replace(0, shorter.size(), shorter);
        EXPECT_EQ(content.find('9'), std::string::npos) << digits;
        expectNumber(content, 7);
    }
}

TEST(LockContent, OldProcessIdIsADecimalNumber) {
    EXPECT_EQ(oldProcessId(L"4711"), 4711);
    EXPECT_EQ(oldProcessId(L"-3"), -3);
}

TEST(LockContent, OldProcessIdThatIsNoNumberIsZero) {
    for (const wchar_t* value : {L"", L"abc", L"12abc", L"12 ", L"0x10", L"-", L"1.5"}) {
        EXPECT_EQ(oldProcessId(value), 0) << testing::PrintToString(value);
    }
}

}  // namespace
}  // namespace rcp
