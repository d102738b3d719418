#include "launcher/properties/key_index.h"

#include "launcher/properties/property_list.h"
#include "tests/unit/launch_pieces.h"

#include <gtest/gtest.h>

namespace rcp {
namespace {

TEST(KeyIndex, FindsEveryPositionHoweverFarItHasGrown) {
    constexpr std::size_t kCount = 5000;
    KeyIndex index;
    for (std::size_t position = 0; position < kCount; ++position) {
        index.add(position * 7919, position);
    }
    for (std::size_t position = 0; position < kCount; ++position) {
        ASSERT_EQ(index.find(position * 7919, [](std::size_t) { return true; }), position);
    }
}

TEST(KeyIndex, TellsKeysOfOneHashApart) {
    KeyIndex index;
    for (std::size_t position = 0; position < 1000; ++position) {
        index.add(42, position);
    }
    EXPECT_EQ(index.find(42, [](std::size_t position) { return position == 777; }), 777U);
    EXPECT_EQ(index.find(42, [](std::size_t) { return false; }), KeyIndex::kNone);
}

TEST(KeyIndex, EmptyOneFindsNothing) {
    EXPECT_EQ(KeyIndex().find(1, [](std::size_t) { return true; }), KeyIndex::kNone);
}

// U+0161 and U+0261 share their low bytes with "a".
TEST(FindProperties, CharactersWithTheSameLowByteAreNoMatch) {
    const PropertyList list = test::propertyList({{L"\x161.x", L"1"}, {L"a.x", L"2"}});
    EXPECT_EQ(findProperties(Key(L"a."), list).size(), 1U);
    EXPECT_EQ(findProperties(Key(L"\x261."), list).size(), 0U);
    EXPECT_EQ(*findProperty(Key(L"a.x"), list), L"2");
}

// The low byte of U+0100 is that of no character at all.
TEST(FindProperties, OnlyAnEmptyKeyEndsTheWalk) {
    EXPECT_EQ(findProperties(Key(L"a"), test::propertyList({{L"\x100", L""}, {L"a", L""}})).size(),
              1U);
    EXPECT_EQ(findProperties(Key(L"a"), test::propertyList({{L"", L""}, {L"a", L""}})).size(), 0U);
}

TEST(PropertyList, CopyAndMovedListFindTheirEntries) {
    PropertyList list;
    for (int i = 0; i < 200; ++i) {
        list.append({L"key" + std::to_wstring(i), std::to_wstring(i), {}});
    }
    ASSERT_NE(list.find(Key(L"key199")), nullptr);  // the index is there
    PropertyList copy = list;
    copy.append({L"more", L"m", {}});
    EXPECT_EQ(copy.find(Key(L"more"))->value, L"m");
    EXPECT_EQ(copy.find(Key(L"key7")), &copy.entries()[7]);
    const PropertyList moved = std::move(copy);
    EXPECT_EQ(moved.find(Key(L"key150"))->value, L"150");
    EXPECT_EQ(list.find(Key(L"more")), nullptr);
}

}  // namespace
}  // namespace rcp
