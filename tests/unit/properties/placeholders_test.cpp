#include "launcher/properties/placeholders.h"

#include "diagnostics/svc_debug.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::Pairs;
using test::pairsOf;
using test::propertyList;
using test::ScopedVariable;
using testing::HasSubstr;

const StandardLocations kLocations{.workspace = L"/ws", .installDir = L"/opt/x"};

std::wstring withStandard(std::wstring text, const StandardLocations& locations = kLocations) {
    replaceStdPlaceholders(locations, text);
    return text;
}

TEST(StandardPlaceholders, RcpHomeIsTheInstallationDirectory) {
    EXPECT_EQ(withStandard(L"${rcp.home}/rcp/deploy"), L"/opt/x/rcp/deploy");
}

TEST(StandardPlaceholders, RcpDataAndWorkspaceLocationAreTheSamePath) {
    EXPECT_EQ(withStandard(L"${workspace.location}/a"), L"/ws/a");
    EXPECT_EQ(withStandard(L"${rcp.data}/a"), L"/ws/a");
}

TEST(StandardPlaceholders, EveryOccurrenceIsReplaced) {
    EXPECT_EQ(withStandard(L"${rcp.home}${rcp.home}:${rcp.data}:${workspace.location}${rcp.data}"),
              L"/opt/x/opt/x:/ws:/ws/ws");
}

TEST(StandardPlaceholders, NamesAreComparedExactly) {
    for (const wchar_t* text : {L"${RCP.HOME}", L"${rcp.home }", L"$rcp.home", L"${rcp.home",
                                L"{rcp.data}", L"${rcp.datas}", L""}) {
        EXPECT_EQ(withStandard(text), text);
    }
}

TEST(StandardPlaceholders, ValueThatHoldsItsOwnPlaceholderDoesNotLoop) {
    EXPECT_EQ(withStandard(L"${rcp.home}|${rcp.home}", {L"/ws", L"<${rcp.home}>"}),
              L"<${rcp.home}>|<${rcp.home}>");
}

TEST(StandardPlaceholders, HomeIsReplacedFirstAndDataLast) {
    EXPECT_EQ(withStandard(L"${rcp.home}", {L"/ws", L"${workspace.location}+${rcp.data}"}),
              L"/ws+/ws");
    EXPECT_EQ(withStandard(L"${workspace.location}", {L"${rcp.home}", L"/opt/x"}), L"${rcp.home}");
}

TEST(FirstRcpHome, OnlyTheFirstIsReplaced) {
    std::wstring text = L"a${rcp.home}b${rcp.home}";
    replaceFirstRcpHome(text, L"/x");
    EXPECT_EQ(text, L"a/xb${rcp.home}");
}

// Position, end and name of the last placeholder, as text.
std::wstring last(const std::wstring& text, std::size_t limit) {
    const std::optional<Placeholder> found = findLastPlaceholder(text, limit);
    if (!found) {
        return L"none";
    }
    return std::to_wstring(found->begin) + L"-" + std::to_wstring(found->end) + L" " +
           std::wstring(found->name);
}

TEST(LastPlaceholder, IsTheLastOneAtOrBeforeTheLimit) {
    const std::wstring text = L"${a} ${b} ${c}";
    EXPECT_EQ(last(text, text.size() - 1), L"10-13 c");
    EXPECT_EQ(last(text, 10), L"10-13 c");
    EXPECT_EQ(last(text, 9), L"5-8 b");
    EXPECT_EQ(last(text, 4), L"0-3 a");
    EXPECT_EQ(last(text, 0), L"0-3 a");
}

TEST(LastPlaceholder, EndsAtTheFirstBraceEvenBehindTheLimit) {
    EXPECT_EQ(last(L"${abc}}", 0), L"0-5 abc");
}

TEST(LastPlaceholder, InnerOneComesBeforeTheOneAroundIt) {
    EXPECT_EQ(last(L"${env.${prop.v}}", 15), L"6-14 prop.v");
}

TEST(LastPlaceholder, NameMayBeEmpty) {
    EXPECT_EQ(last(L"${}", 2), L"0-2 ");
}

TEST(LastPlaceholder, NeedsBothDelimiters) {
    for (const wchar_t* text : {L"", L"abc", L"${abc", L"}${", L"$a}", L"{a}", L"$ {a}"}) {
        EXPECT_EQ(last(text, 10), L"none") << text;
    }
}

// The value of a name behind "+", "-" when it has none.
std::wstring valueOf(const std::wstring& name, const Pairs& properties = {}) {
    const std::optional<std::wstring> value = getPlaceholderValue(name, propertyList(properties));
    return value ? L"+" + *value : L"-";
}

TEST(PlaceholderValue, VariableGivesItsValue) {
    const ScopedVariable a("RCP_TEST_A", "one, two");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A"), L"+one, two");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A,other"), L"+one, two");
}

TEST(PlaceholderValue, EmptyVariableIsSet) {
    const ScopedVariable a("RCP_TEST_A", "");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A,other"), L"+");
}

TEST(PlaceholderValue, DefaultStandsBehindTheFirstComma) {
    const ScopedVariable a("RCP_TEST_A");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A,fallback"), L"+fallback");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A,b,c"), L"+b,c");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A,"), L"+");
    EXPECT_EQ(valueOf(L"env.,x"), L"+x");
}

TEST(PlaceholderValue, UnsetVariableWithoutDefaultIsUnresolved) {
    const ScopedVariable a("RCP_TEST_A");
    EXPECT_EQ(valueOf(L"env.RCP_TEST_A"), L"-");
}

TEST(PlaceholderValue, PropertyGivesItsFirstValue) {
    EXPECT_EQ(valueOf(L"prop.k", {{L"j", L"0"}, {L"k", L"1"}, {L"k", L"2"}}), L"+1");
    EXPECT_EQ(valueOf(L"prop.k", {{L"k", L""}}), L"+");
    EXPECT_EQ(valueOf(L"prop.a,b", {{L"a", L"1"}}), L"-") << "only env has defaults";
    EXPECT_EQ(valueOf(L"prop.K", {{L"k", L"1"}}), L"-");
}

TEST(PlaceholderValue, EveryOtherNameIsUnresolved) {
    const Pairs properties = {{L"", L"1"}, {L"k", L"1"}};
    for (const wchar_t* name : {L"", L"k", L"ENV.HOME", L"Prop.k", L"env", L"prop", L"rcp.home"}) {
        EXPECT_EQ(valueOf(name, properties), L"-");
    }
}

class UserPlaceholders : public test::LauncherTest {
  protected:
    // The text behind "+" when every placeholder resolved and "-" when one did not.
    static std::wstring replaced(std::wstring text, const Pairs& properties = {}) {
        const bool resolved = replaceUserPlaceholders(text, propertyList(properties));
        return (resolved ? L"+" : L"-") + text;
    }
};

TEST_F(UserPlaceholders, AllAreReplaced) {
    const ScopedVariable a("RCP_TEST_A", "A");
    EXPECT_EQ(replaced(L"${env.RCP_TEST_A}/${prop.b}${prop.b}.", {{L"b", L"B"}}), L"+A/BB.");
    EXPECT_EQ(replaced(L"nothing to do"), L"+nothing to do");
    EXPECT_EQ(replaced(L""), L"+");
}

TEST_F(UserPlaceholders, NestedOnesResolveFromTheInsideOut) {
    const ScopedVariable a("RCP_TEST_A", "value");
    EXPECT_EQ(replaced(L"${env.${prop.home.var}}", {{L"home.var", L"RCP_TEST_A"}}), L"+value");
    EXPECT_EQ(replaced(L"${prop.${prop.${prop.a}}}", {{L"a", L"b"}, {L"b", L"c"}, {L"c", L"d"}}),
              L"+d");
}

TEST_F(UserPlaceholders, InsertedValueIsSearchedAgain) {
    EXPECT_EQ(
        replaced(L"<${prop.a}>", {{L"a", L"1${prop.b}2"}, {L"b", L"${prop.c}"}, {L"c", L"3"}}),
        L"+<132>");
}

TEST_F(UserPlaceholders, SearchGoesOnLeftOfAnUnresolvedOne) {
    EXPECT_EQ(replaced(L"${prop.a}${prop.nope}${prop.a}", {{L"a", L"1"}}), L"-1${prop.nope}1");
    EXPECT_EQ(replaced(L"${prop.nope}${prop.a}", {{L"a", L"1"}}), L"-${prop.nope}1");
    EXPECT_EQ(replaced(L"x${}"), L"-x${}");
}

TEST_F(UserPlaceholders, StandardOnesAreUnknownHere) {
    EXPECT_EQ(replaced(L"${rcp.home}"), L"-${rcp.home}");
}

TEST_F(UserPlaceholders, EmptyValueAtTheVeryStartEndsTheSearch) {
    EXPECT_EQ(replaced(L"${prop.e}", {{L"e", L""}}), L"+");
    EXPECT_EQ(replaced(L"${prop.e}/x${prop.e}", {{L"e", L""}}), L"+/x");
    EXPECT_EQ(replaced(L"${prop.nope}${prop.e}", {{L"e", L""}}), L"-${prop.nope}");
}

TEST_F(UserPlaceholders, OpenBraceWithoutItsEndIsNoPlaceholder) {
    EXPECT_EQ(replaced(L"a${prop.b"), L"+a${prop.b");
    EXPECT_EQ(replaced(L"${"), L"+${");
    // The last "${" decides, and it is not one.
    EXPECT_EQ(replaced(L"${prop.a} ${open", {{L"a", L"1"}}), L"+${prop.a} ${open");
}

TEST_F(UserPlaceholders, ValuesThatBringThemselvesBackAreUnresolved) {
    EXPECT_EQ(replaced(L"${prop.a}", {{L"a", L"${prop.a}"}}).front(), L'-');
    EXPECT_EQ(replaced(L"x${prop.a}y", {{L"a", L"${prop.b}"}, {L"b", L"${prop.a}"}}).front(), L'-');
    EXPECT_EQ(replaced(L"${prop.a}", {{L"a", L"x${prop.a}"}}).front(), L'-');
    EXPECT_EQ(replaced(L"${prop.a}", {{L"a", L"${prop.a}${prop.a}"}}).front(), L'-');
    const ScopedVariable a("RCP_TEST_A", "${env.RCP_TEST_A}");
    EXPECT_EQ(replaced(L"${env.RCP_TEST_A}").front(), L'-');
}

TEST_F(UserPlaceholders, GrowthOfAHostileValueIsBounded) {
    const std::wstring block(100'000, L'x');
    const std::wstring text = replaced(L"${prop.a}", {{L"a", block + L"${prop.a}"}});
    EXPECT_EQ(text.front(), L'-');
    EXPECT_LT(text.size(), std::size_t{2'000'000});
}

TEST_F(UserPlaceholders, LongRealTextsAreNotCutOff) {
    Pairs properties;
    std::wstring text;
    std::wstring expected = L"+";
    for (int i = 0; i < 1000; ++i) {
        const std::wstring number = std::to_wstring(i);
        properties.emplace_back(L"k" + number, std::wstring(900, L'v') + number);
        text += L"${prop.k" + number + L"}";
        expected += properties.back().second;
    }
    EXPECT_EQ(replaced(text, properties), expected);
}

TEST_F(UserPlaceholders, EachReplacementIsTraced) {
    setDebug(true);
    const test::Records records(folder_);
    replaced(L"${prop.a}-${prop.b}", {{L"a", L"1"}, {L"b", L"2"}});
    EXPECT_TRUE(
        records.has("\nZYPRA0071I: Modified prop_contents ${prop.a}-${prop.b} => ${prop.a}-2\n") ||
        records.text().starts_with(
            "ZYPRA0071I: Modified prop_contents ${prop.a}-${prop.b} => ${prop.a}-2\n"));
    EXPECT_TRUE(records.has("ZYPRA0071I: Modified prop_contents ${prop.a}-2 => 1-2\n"));
}

TEST_F(UserPlaceholders, UnsetVariableIsTraced) {
    const ScopedVariable a("RCP_TEST_A");
    setDebug(true);
    const test::Records records(folder_);
    replaced(L"${env.RCP_TEST_A,x}");
    EXPECT_TRUE(records.has("ZYPRA0081I"));
}

TEST_F(UserPlaceholders, NothingIsTracedWhileTracingIsOff) {
    const test::Records records(folder_);
    replaced(L"${prop.a}${env.RCP_TEST_NONE,x}", {{L"a", L"1"}});
    EXPECT_EQ(records.text(), "");
}

using AllPlaceholders = test::LauncherTest;

TEST_F(AllPlaceholders, StandardOnesComeBeforeTheUsers) {
    std::wstring text = L"${rcp.home}/${prop.a}/${rcp.data}/${prop.${workspace.location}}";
    EXPECT_TRUE(
        replaceAllPlaceholders(kLocations, text, propertyList({{L"a", L"1"}, {L"/ws", L"2"}})));
    EXPECT_EQ(text, L"/opt/x/1//ws/2");
}

TEST_F(AllPlaceholders, TextThatDoesNotResolveIsTheOneBehindTheStandardStep) {
    const ScopedVariable nope("RCP_TEST_NOPE");
    std::wstring text = L"${rcp.home}/${prop.a}/${env.RCP_TEST_NOPE}";
    EXPECT_FALSE(replaceAllPlaceholders(kLocations, text, propertyList({{L"a", L"1"}})));
    EXPECT_EQ(text, L"/opt/x/${prop.a}/${env.RCP_TEST_NOPE}");
}

TEST_F(AllPlaceholders, StandardOneThatAUserOneBringsInIsTooLate) {
    std::wstring text = L"${prop.a}";
    EXPECT_FALSE(replaceAllPlaceholders(kLocations, text, propertyList({{L"a", L"${rcp.home}"}})));
    EXPECT_EQ(text, L"${prop.a}");
}

TEST_F(AllPlaceholders, CycleDoesNotResolve) {
    std::wstring text = L"${prop.a}";
    EXPECT_FALSE(replaceAllPlaceholders(kLocations, text, propertyList({{L"a", L"${prop.a}"}})));
}

TEST_F(AllPlaceholders, OpenBraceIsNoError) {
    std::wstring text = L"${rcp.home}/${open";
    EXPECT_TRUE(replaceAllPlaceholders(kLocations, text, {}));
    EXPECT_EQ(text, L"/opt/x/${open");
}

using Containers = test::LauncherTest;

TEST_F(Containers, UserListIsResolvedAgainstItself) {
    PropertyList list = propertyList(
        {{L"a", L"${rcp.home}\\a"}, {L"b", L"${prop.a}"}, {L"a", L"${rcp.data}"}, {L"${c}", L""}});
    replacePlaceholdersInRcpInstallProp({.workspace = L"\\ws\\1", .installDir = L"C:\\x"}, list);
    EXPECT_EQ(pairsOf(list),
              (Pairs{{L"a", L"C:/x\\a"}, {L"b", L"C:/x\\a"}, {L"a", L"/ws/1"}, {L"${c}", L""}}))
        << "backslashes are turned in the locations only, and keys stay";
}

TEST_F(Containers, MapIsResolvedAgainstTheGivenList) {
    VmArgumentMap map = test::vmargMap({{L"vmarg.a", L"-Da=${prop.a}${rcp.home}"},
                                        {L"vmarg.b", L""},
                                        {L"vmarg.${prop.a}", L"-Dw=${rcp.data}"}});
    replacePlaceholdersInVmargMap({.workspace = L"\\ws", .installDir = L"\\x"},
                                  propertyList({{L"a", L"1"}}), map);
    EXPECT_EQ(
        pairsOf(map),
        (Pairs{{L"vmarg.${prop.a}", L"-Dw=/ws"}, {L"vmarg.a", L"-Da=1/x"}, {L"vmarg.b", L""}}));
}

TEST_F(Containers, UnresolvedValueInEitherIsFatalAndItsPlaceNamed) {
    const std::string text = "ZYPRA0088E: property substitution is invalid ";
    PropertyList list;
    list.append({L"a", L"${prop.b}", {std::make_shared<const std::wstring>(L"/x/y"), 3}});
    EXPECT_FATAL(replacePlaceholdersInRcpInstallProp(kLocations, list),
                 HasSubstr(text + "(${prop.b}) (a, /x/y, line 3)\n"));
    VmArgumentMap map;
    map.emplace(L"vmarg.a", Argument(L"${prop.vmarg.a}", {nullptr, 2}));
    EXPECT_FATAL(replacePlaceholdersInVmargMap(kLocations, {}, map),
                 HasSubstr(text + "(${prop.vmarg.a}) (vmarg.a, argument 2)\n"));
    map = test::vmargMap({{L"vmarg.a", L"${prop.b}"}});
    EXPECT_FATAL(replacePlaceholdersInVmargMap(kLocations, {}, map),
                 HasSubstr(text + "(${prop.b}) (vmarg.a)\n"));
}

TEST_F(Containers, ArgumentsGetTheStandardOnesOnly) {
    Arguments arguments = {L"${rcp.home}/rcplauncher", L"-Dx=${env.HOME}", L"${prop.a}",
                           L"a\\${workspace.location}\\${rcp.data}", L""};
    replacePlaceholdersInArgv({.workspace = L"\\ws", .installDir = L"\\x"}, arguments);
    EXPECT_EQ(arguments, (Arguments{L"/x/rcplauncher", L"-Dx=${env.HOME}", L"${prop.a}",
                                    L"a\\/ws\\/ws", L""}));
}

TEST_F(Containers, ReplaceValueChangesTheFirstEntryAndAddsNone) {
    PropertyList list = propertyList({{L"a", L"1"}, {L"b", L"2"}, {L"b", L"3"}});
    replaceValue(Key(L"b"), L"new", list);
    replaceValue(Key(L"c"), L"new", list);
    EXPECT_EQ(pairsOf(list), (Pairs{{L"a", L"1"}, {L"b", L"new"}, {L"b", L"3"}}));
}

TEST_F(Containers, HundredThousandEntriesResolveAgainstEachOther) {
    constexpr int kCount = 100'000;
    Pairs pairs;
    for (int i = 0; i < kCount; ++i) {
        pairs.emplace_back(L"k" + std::to_wstring(i),
                           L"${prop.k" + std::to_wstring(kCount - 1 - i) + L"}");
    }
    // The second half reads the first, which reads it: give that half values of its own.
    for (int i = 0; i < kCount / 2; ++i) {
        pairs[static_cast<std::size_t>(i)].second = L"v" + std::to_wstring(i);
    }
    PropertyList list = propertyList(pairs);
    replacePlaceholdersInRcpInstallProp(kLocations, list);
    for (int i = 0; i < kCount; ++i) {
        const int source = i < kCount / 2 ? i : kCount - 1 - i;
        ASSERT_EQ(list.entries()[static_cast<std::size_t>(i)].value,
                  L"v" + std::to_wstring(source));
    }
}

TEST_F(Containers, OneMegabyteArgumentIsReplacedThroughout) {
    std::wstring text;
    std::wstring expected;
    while (text.size() < 1'000'000) {
        text += L"${rcp.home}:${rcp.data}:";
        expected += L"/opt/x:/ws:";
    }
    Arguments arguments = {text};
    replacePlaceholdersInArgv(kLocations, arguments);
    EXPECT_EQ(arguments.front(), expected);
}

}  // namespace
}  // namespace rcp
