#include "launcher/properties/property_list.h"

#include "diagnostics/svc_debug.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::pairsOf;
using test::propertyList;

TEST(FindProperty, FirstEntryOfTheKeyWins) {
    const PropertyList list = propertyList({{L"a", L"1"}, {L"b", L"2"}, {L"a", L"3"}});
    ASSERT_NE(findProperty(Key(L"a"), list), nullptr);
    EXPECT_EQ(*findProperty(Key(L"a"), list), L"1");
    EXPECT_EQ(*findProperty(Key(L"b"), list), L"2");
}

TEST(FindProperty, KeyIsWholeAndItsCaseCounts) {
    const PropertyList list = propertyList({{L"data", L"1"}});
    EXPECT_EQ(findProperty(Key(L"dat"), list), nullptr);
    EXPECT_EQ(findProperty(Key(L"data.x"), list), nullptr);
    EXPECT_EQ(findProperty(Key(L"Data"), list), nullptr);
    EXPECT_EQ(findProperty(Key(L"data"), PropertyList()), nullptr);
}

TEST(FindProperty, EmptyKeyAndEmptyValueAreOrdinary) {
    const PropertyList list = propertyList({{L"a", L""}, {L"", L"x"}});
    EXPECT_EQ(*findProperty(Key(L"a"), list), L"");
    EXPECT_EQ(*findProperty(Key(L""), list), L"x");
}

TEST(FindProperty, LongListAnswersAsAShortOneDoes) {
    PropertyList list;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 100; ++i) {
            list.append({L"key" + std::to_wstring(i), std::to_wstring(round), {}});
            EXPECT_EQ(*findProperty(Key(L"key") + std::to_wstring(i), list), L"0");
        }
    }
    EXPECT_EQ(findProperty(Key(L"key100"), list), nullptr);
    list.append({L"key100", L"new", {}});
    EXPECT_EQ(*findProperty(Key(L"key100"), list), L"new");
    const PropertyList copy = list;
    PropertyList assigned;
    assigned = copy;
    list = PropertyList();
    EXPECT_EQ(findProperty(Key(L"key7"), list), nullptr);
    EXPECT_EQ(*findProperty(Key(L"key7"), copy), L"0");
    EXPECT_EQ(*findProperty(Key(L"key100"), assigned), L"new");
}

TEST(FindProperties, EveryEntryOfThePrefixInListOrder) {
    const PropertyList list =
        propertyList({{L"p.b", L"1"}, {L"x", L"2"}, {L"p.a", L"3"}, {L"p.b", L"4"}, {L"p", L"5"}});
    std::vector<std::wstring> values;
    for (const Property* entry : findProperties(Key(L"p."), list)) {
        values.push_back(entry->key + L"=" + entry->value);
    }
    EXPECT_EQ(values, (std::vector<std::wstring>{L"p.b=1", L"p.a=3", L"p.b=4"}));
}

TEST(FindProperties, EmptyPrefixIsEveryEntry) {
    EXPECT_EQ(findProperties(Key(L""), propertyList({{L"a", L"1"}, {L"b", L"2"}})).size(), 2U);
    EXPECT_TRUE(findProperties(Key(L"a"), PropertyList()).empty());
}

TEST(FindProperties, NothingBehindAnEmptyKeyIsReturned) {
    const PropertyList list = propertyList({{L"p.a", L"1"}, {L"", L"2"}, {L"p.b", L"3"}});
    const std::vector<const Property*> found = findProperties(Key(L"p."), list);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]->value, L"1");
    EXPECT_EQ(*findProperty(Key(L"p.b"), list), L"3") << "a single key is still found";
}

TEST(FindProperties, AnyNumberOfEntriesIsReturned) {
    for (const std::size_t count : {9U, 10U, 11U, 20U, 21U, 1000U}) {
        PropertyList list;
        for (std::size_t i = 0; i < count; ++i) {
            list.append({L"p." + std::to_wstring(i), L"", {}});
        }
        EXPECT_EQ(findProperties(Key(L"p."), list).size(), count);
    }
}

TEST(FindProperties, EntriesAreThoseOfTheListNotCopies) {
    const PropertyList list = propertyList({{L"p", L"1"}});
    EXPECT_EQ(findProperties(Key(L"p"), list)[0], list.find(Key(L"p")));
}

class PushBack : public test::LauncherTest {};

TEST_F(PushBack, EntryIsFilteredAsTheReaderDoesAndTraced) {
    const test::Records records(folder_);
    setDebug(true);
    PropertyList list = propertyList({{L"a", L"1"}});
    pushBackProperty(list, Key(L"  key  "), L" \\u00e9\\t\\\\ ");
    setDebug(false);
    EXPECT_EQ(pairsOf(list), (test::Pairs{{L"a", L"1"}, {L"key", L"\u00E9t\\"}}));
    EXPECT_EQ(list.entries().back().origin.file, nullptr);
    EXPECT_EQ(records.text(),
              "ZYPRA0126I:   key = \"key\"\nZYPRA0127I:   value  = \"\u00E9t\\\"\n");
}

TEST_F(PushBack, KeyIsStoredTwiceAndTheFirstStillWins) {
    PropertyList list;
    pushBackProperty(list, Key(L"a"), L"1");
    pushBackProperty(list, Key(L"a"), L"2");
    EXPECT_EQ(list.entries().size(), 2U);
    EXPECT_EQ(*findProperty(Key(L"a"), list), L"1");
}

TEST(ReplaceValue, FirstEntryIsReplacedAndAMissingOneIsNotAdded) {
    PropertyList list = propertyList({{L"a", L"1"}, {L"a", L"2"}});
    replaceValue(Key(L"a"), L"new", list);
    replaceValue(Key(L"b"), L"new", list);
    EXPECT_EQ(pairsOf(list), (test::Pairs{{L"a", L"new"}, {L"a", L"2"}}));
}

TEST(Extract, EntriesOfThePrefixLeaveTheListInOrder) {
    for (const int fillers : {0, 100}) {
        PropertyList list = propertyList({{L"p.b", L"1"}, {L"a", L"2"}, {L"p.a", L"3"}});
        for (int i = 0; i < fillers; ++i) {
            list.append({L"f" + std::to_wstring(i), L"", {}});
        }
        EXPECT_NE(findProperty(Key(L"p.a"), list), nullptr);
        const std::vector<Property> extracted = list.extract(Key(L"p."));
        ASSERT_EQ(extracted.size(), 2U);
        EXPECT_EQ(extracted[0].value, L"1");
        EXPECT_EQ(extracted[1].value, L"3");
        EXPECT_EQ(findProperty(Key(L"p.a"), list), nullptr);
        EXPECT_EQ(*findProperty(Key(L"a"), list), L"2");
        EXPECT_TRUE(list.extract(Key(L"p.")).empty());
    }
}

}  // namespace
}  // namespace rcp
