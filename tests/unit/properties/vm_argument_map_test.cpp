#include "launcher/properties/vm_argument_map.h"

#include "diagnostics/whys.h"
#include "launcher/properties/property_file.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

using test::Pairs;
using test::pairsOf;
using test::propertyList;
using testing::HasSubstr;

using VmargMap = test::LauncherTest;

TEST_F(VmargMap, TakesTheVmargEntriesOutOfTheList) {
    VmArgumentMap map;
    PropertyList list = propertyList({{L"a", L"1"},
                                      {L"vmarg.x", L"-Xx=1:2"},
                                      {L"b", L"2"},
                                      {L"vmarg.", L"-Xempty"},
                                      {L"vmarg", L"3"},
                                      {L"Vmarg.y", L"4"},
                                      {L"a.vmarg.z", L"5"}});
    insertPropToVmargMap(map, list);
    EXPECT_EQ(pairsOf(map), (Pairs{{L"vmarg.", L"-Xempty"}, {L"vmarg.x", L"-Xx=1:2"}}));
    EXPECT_EQ(pairsOf(list), (Pairs{{L"a", L"1"},
                                    {L"b", L"2"},
                                    {L"vmarg", L"3"},
                                    {L"Vmarg.y", L"4"},
                                    {L"a.vmarg.z", L"5"}}));
    EXPECT_EQ(findProperty(Key(L"vmarg.x"), list), nullptr);
}

TEST_F(VmargMap, FirstSourceWinsAndLaterEntriesLeaveTheirListAllTheSame) {
    VmArgumentMap map;
    PropertyList first = propertyList({{L"vmarg.a", L"1"}, {L"vmarg.a", L"2"}});
    PropertyList second = propertyList({{L"vmarg.a", L"3"}, {L"vmarg.b", L"4"}});
    insertPropToVmargMap(map, first);
    insertPropToVmargMap(map, second);
    EXPECT_EQ(pairsOf(map), (Pairs{{L"vmarg.a", L"1"}, {L"vmarg.b", L"4"}}));
    EXPECT_TRUE(first.entries().empty());
    EXPECT_TRUE(second.entries().empty());
}

TEST_F(VmargMap, WhoeverComesLaterIsToldToHaveLost) {
    const test::LoserNotes losers;
    VmArgumentMap map;
    insertArgsToVmargMap(
        map, {{L"vmarg.a=1", Origin{nullptr, 1}}, {L"vmarg.a=2", Origin{nullptr, 2}}}, {});
    Argument extensions(L"vmarg.b=3");
    extensions.why = &whys::kExtension;
    extensions.origin = {nullptr, 0};
    insertCargsToVmargMap(map, {{L"vmarg.a=1", Origin{nullptr, 1}}, extensions});
    PropertyList list = propertyList({{L"vmarg.a", L"4"}, {L"vmarg.b", L"5"}, {L"vmarg.c", L"6"}});
    list.append({L"vmarg.c", L"7", {}});
    insertPropToVmargMap(map, list);
    EXPECT_EQ(losers.notes,
              (std::vector<std::wstring>{L"vmarg.a=2: the command line wins (it, argument 1)",
                                         L"4: the command line wins (it, argument 1)",
                                         L"5: the configuration extension wins (it)",
                                         L"7: the entry read first wins (it)"}));
}

TEST_F(VmargMap, SecondCallSeesOnlyWhatWasAddedSince) {
    VmArgumentMap map;
    PropertyList list = propertyList({{L"vmarg.a", L"1"}, {L"k", L"v"}});
    insertPropToVmargMap(map, list);
    map.clear();
    list.append({L"vmarg.b", L"2", {}});
    insertPropToVmargMap(map, list);
    EXPECT_EQ(pairsOf(map), (Pairs{{L"vmarg.b", L"2"}}));
    EXPECT_EQ(pairsOf(list), (Pairs{{L"k", L"v"}}));
}

TEST_F(VmargMap, EmptyValueKeepsLaterSourcesOut) {
    VmArgumentMap map;
    insertArgsToVmargMap(map, {L"rcplauncher", L"vmarg.a="}, {});
    PropertyList list = propertyList({{L"vmarg.a", L"-Xa"}});
    insertPropToVmargMap(map, list);
    EXPECT_EQ(pairsOf(map), (Pairs{{L"vmarg.a", L""}}));
}

TEST_F(VmargMap, KeysAreInTheOrderOfTheirCharacters) {
    VmArgumentMap map;
    PropertyList list = propertyList({{L"vmarg.b", L"1"},
                                      {L"vmarg.\u00e4", L"2"},
                                      {L"vmarg.a", L"3"},
                                      {L"vmarg.B", L"4"},
                                      {L"vmarg.10", L"5"},
                                      {L"vmarg.9", L"6"},
                                      {L"vmarg.a.b", L"7"},
                                      {L"vmarg.\U0001F600", L"8"},
                                      {L"vmarg.\uFFFD", L"9"}});
    insertPropToVmargMap(map, list);
    std::wstring order;
    for (const auto& [key, argument] : map) {
        order += argument.text;
    }
    EXPECT_EQ(order, L"564371298");
}

TEST_F(VmargMap, ArgumentsAreSplitAtTheFirstEqualsSign) {
    VmArgumentMap map;
    insertArgsToVmargMap(map,
                         {L"rcplauncher", L"vmarg.d=-Da=b=c", L"-x", L"vmarg.=e", L"vmarg.d=late",
                          L"Vmarg.x=1", L"-vmarg.y=1"},
                         {});
    EXPECT_EQ(pairsOf(map), (Pairs{{L"vmarg.", L"e"}, {L"vmarg.d", L"-Da=b=c"}}));
    insertCargsToVmargMap(map, {L"rcplauncher", L"vmarg.d=ext", L"vmarg.e=-De=f=g"});
    EXPECT_EQ(pairsOf(map),
              (Pairs{{L"vmarg.", L"e"}, {L"vmarg.d", L"-Da=b=c"}, {L"vmarg.e", L"-De=f=g"}}));
}

TEST_F(VmargMap, ArgumentWithoutEqualsSignIsFatalAndTellsItsSource) {
    VmArgumentMap map;
    EXPECT_FATAL(insertArgsToVmargMap(map, {L"rcplauncher", L"vmarg.a"}, {}),
                 HasSubstr("ZYPRA0033E: rcplauncher invoked with an invalid vmarg."));
    EXPECT_FATAL(insertCargsToVmargMap(map, {L"rcplauncher", L"vmarg."}),
                 HasSubstr("ZYPRA0128E: rcplauncher invoked with an invalid vmarg."));
}

TEST_F(VmargMap, EntriesRememberTheirFileAndLine) {
    folder_.write("f.properties", "a=1\n# comment\nvmarg.a=-Xa\nb=2\n");
    VmArgumentMap map;
    PropertyList list;
    getProperties(folder_.wide("f.properties"), list);
    insertPropToVmargMap(map, list);
    const Argument& argument = map.at(L"vmarg.a");
    ASSERT_NE(argument.origin.file, nullptr);
    EXPECT_EQ(*argument.origin.file, folder_.wide("f.properties"));
    EXPECT_EQ(argument.origin.line, 3U);
    EXPECT_EQ(list.find(Key(L"b"))->origin.line, 4U);
}

TEST_F(VmargMap, HundredThousandEntriesFindTheirPlaces) {
    constexpr int kCount = 100'000;
    PropertyList list;
    for (int i = kCount - 1; i >= 0; --i) {
        const std::wstring number = std::to_wstring(kCount + i);
        list.append({L"vmarg." + number, L"-D" + number, {}});
        list.append({L"k" + number, number, {}});
    }
    VmArgumentMap map;
    insertPropToVmargMap(map, list);
    ASSERT_EQ(map.size(), std::size_t{kCount});
    ASSERT_EQ(list.entries().size(), std::size_t{kCount});
    int i = 0;
    for (const auto& [key, argument] : map) {
        const std::wstring number = std::to_wstring(kCount + i++);
        ASSERT_EQ(argument, L"-D" + number);
        ASSERT_EQ(*findProperty(Key(L"k") + number, list), number) << "the kept ones are found";
    }
}

}  // namespace
}  // namespace rcp
