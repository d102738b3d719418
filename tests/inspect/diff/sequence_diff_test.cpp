#include "inspect/diff/sequence_diff.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

using Words = std::vector<std::string>;

std::string told(const Words& first, const Words& second) {
    std::string text;
    for (const Edit& edit : differences(first, second)) {
        text += edit.isAdded ? "+" + second[edit.position] : "-" + first[edit.position];
    }
    return text;
}

TEST(SequenceDiff, EqualListsHaveNone) {
    EXPECT_EQ(told({}, {}), "");
    EXPECT_EQ(told({"a", "b"}, {"a", "b"}), "");
}

TEST(SequenceDiff, TellsTheFewestRemovalsAndAdditions) {
    EXPECT_EQ(told({"a", "b", "c"}, {"a", "c"}), "-b");
    EXPECT_EQ(told({"a", "c"}, {"a", "b", "c"}), "+b");
    EXPECT_EQ(told({"a", "x", "c"}, {"a", "y", "c"}), "-x+y");
    EXPECT_EQ(told({"1", "a", "2", "b", "3"}, {"a", "b"}), "-1-2-3");
    EXPECT_EQ(told({}, {"a"}), "+a");
}

TEST(SequenceDiff, AMovedElementIsRemovedAndAdded) {
    EXPECT_EQ(told({"a", "b", "c"}, {"b", "c", "a"}), "-a+a");
}

TEST(SequenceDiff, VeryDifferentLongListsAreReplacedBetweenTheirEnds) {
    Words first{"begin"};
    Words second{"begin"};
    for (int i = 0; i < 5000; ++i) {
        first.push_back("a" + std::to_string(i));
        second.push_back("b" + std::to_string(i));
    }
    first.emplace_back("end");
    second.emplace_back("end");
    const std::vector<Edit> edits = differences(first, second);
    ASSERT_EQ(edits.size(), 10'000U);
    EXPECT_EQ(edits.front(), (Edit{false, 1}));
    EXPECT_EQ(edits.back(), (Edit{true, 5000}));
}

// What costs more to compare than the answer is worth begins one row behind this.
TEST(SequenceDiff, OfListsThatAreNotTooLongTheFewestAreTold) {
    constexpr int kLongest = 4096;
    Words first;
    Words second;
    for (int i = 0; i < kLongest; ++i) {
        first.push_back("a" + std::to_string(i));
        second.push_back("b" + std::to_string(i));
    }
    first[kLongest / 2] = second[kLongest / 2] = "common";
    EXPECT_EQ(differences(first, second).size(), 2U * (kLongest - 1));
    first.emplace_back("one more");
    EXPECT_EQ(differences(first, second).size(), 2U * kLongest + 1);
}

}  // namespace
}  // namespace rcp::inspect::test
