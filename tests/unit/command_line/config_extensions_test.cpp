#include "launcher/command_line/config_extensions.h"

#include "launcher/inputs/debug_file.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

using test::Pairs;
using test::pairsOf;
using test::propertyList;
using testing::HasSubstr;

class Extensions : public test::LauncherTest {
  protected:
    // The arguments of the start-up sequence, less the program path.
    Arguments extended(const Arguments& options, const Pairs& properties = {}) {
        Arguments arguments = options;
        arguments.insert(arguments.begin(), L"rcplauncher");
        properties_ = propertyList(properties);
        map_.clear();
        Arguments result =
            addConfigExtentionsToArg(arguments, properties_, map_, debugFile(folder_.wide()));
        EXPECT_EQ(result.front(), L"rcplauncher");
        result.erase(result.begin());
        return result;
    }
    // The numbered properties of configuration "N".
    static Pairs values(const Arguments& texts) {
        Pairs properties;
        for (const Argument& argument : texts) {
            properties.emplace_back(L"config.N." + std::to_wstring(properties.size() + 1),
                                    argument.text);
        }
        return properties;
    }
    [[nodiscard]] std::wstring marker() const { return folder_.wide("rcp/rcplauncher.debug"); }

    PropertyList properties_;
    VmArgumentMap map_;
};

TEST_F(Extensions, TellWhatTheyStandForAndWhatLosesBesideThem) {
    const test::LoserNotes losers;
    extended({L"-config",
              {L"N", Origin{nullptr, 2}},
              L"-nl",
              {L"de", Origin{nullptr, 4}},
              L"-console",
              {L"-console", Origin{nullptr, 6}}},
             values({L"-nl", L"fr"}));
    EXPECT_EQ(
        losers.notes,
        (std::vector<std::wstring>{
            L"-config: stands for the arguments of a configuration extension",
            L"N: names the configuration extension", L"-nl: repeats an option (it)",
            L"fr: the command line wins (it, argument 4)", L"-console: repeats an option (it)"}));
}

TEST_F(Extensions, WithoutTheOptionNothingChanges) {
    const Arguments options = {L"-data", L"/a", L"-data", L"/b", L"-console", L"-console"};
    EXPECT_EQ(extended(options, values({L"-x"})), options);
    EXPECT_EQ(findProperty(Key(L"rcp.data"), properties_), nullptr);
}

TEST_F(Extensions, OptionAtTheEndIsKept) {
    EXPECT_EQ(extended({L"-a", L"-config"}, values({L"-x"})), (Arguments{L"-a", L"-config"}));
}

TEST_F(Extensions, OptionAndNameGiveWayToTheValuesAtTheEnd) {
    EXPECT_EQ(extended({L"-a", L"-config", L"N", L"-b"}, values({L"-x", L"y z", L"-z"})),
              (Arguments{L"-a", L"-b", L"-x", L"y z", L"-z"}));
}

TEST_F(Extensions, NameWithoutPropertiesStandsForNothing) {
    EXPECT_EQ(extended({L"-config", L"M", L"-b"}, values({L"-x"})), Arguments{L"-b"});
    EXPECT_EQ(extended({L"-config", L"n"}, values({L"-x"})), Arguments{});
}

TEST_F(Extensions, OnlyTheFirstOptionCounts) {
    EXPECT_EQ(extended({L"-config", L"N", L"-config", L"M"}, values({L"-x"})),
              (Arguments{L"-config", L"M", L"-x"}));
}

TEST_F(Extensions, CountStopsAtTheFirstMissingNumber) {
    EXPECT_EQ(extended({L"-config", L"N"}, {{L"config.N.1", L"-x"}, {L"config.N.3", L"-z"}}),
              Arguments{L"-x"});
    EXPECT_EQ(extended({L"-config", L"N"}, {{L"config.N.0", L"-w"}, {L"config.N.2", L"-y"}}),
              Arguments{});
}

TEST_F(Extensions, EmptyValueIsSkippedAndTheCountGoesOn) {
    EXPECT_EQ(extended({L"-config", L"N"}, values({L"-x", L"", L"-z"})), (Arguments{L"-x", L"-z"}));
}

TEST_F(Extensions, FirstPropertyOfANumberWins) {
    EXPECT_EQ(extended({L"-config", L"N"}, {{L"config.N.1", L"-x"}, {L"config.N.1", L"-y"}}),
              Arguments{L"-x"});
}

TEST_F(Extensions, SeparatorOfTheExtensionIsAppendedWhenTheUserHasNone) {
    EXPECT_EQ(extended({L"-config", L"N", L"-a"}, values({L"-x", L"-vmargs", L"-y"})),
              (Arguments{L"-a", L"-x", L"-vmargs", L"-y"}));
}

TEST_F(Extensions, ValuesStandInOrderBeforeTheUsersSeparator) {
    EXPECT_EQ(extended({L"-config", L"N", L"-a", L"-vmargs", L"-u"}, values({L"-x", L"-y"})),
              (Arguments{L"-a", L"-x", L"-y", L"-vmargs", L"-u"}));
}

TEST_F(Extensions, ValuesBehindTheirOwnSeparatorGoBehindTheUsersArguments) {
    EXPECT_EQ(extended({L"-config", L"N", L"-a", L"-vmargs", L"-u"},
                       values({L"-x", L"-vmargs", L"-y", L"-vmargs", L"-z"})),
              (Arguments{L"-a", L"-x", L"-vmargs", L"-u", L"-y", L"-z"}));
}

TEST_F(Extensions, OptionBehindTheSeparatorStillInsertsInFrontOfIt) {
    EXPECT_EQ(extended({L"-a", L"-vmargs", L"-u", L"-config", L"N"}, values({L"-x"})),
              (Arguments{L"-a", L"-x", L"-vmargs", L"-u"}));
    EXPECT_EQ(extended({L"-vmargs", L"-config", L"N"}, values({L"-x", L"-vmargs", L"-y"})),
              (Arguments{L"-x", L"-vmargs", L"-y"}));
}

TEST_F(Extensions, SecondPairsAreRemoved) {
    for (const wchar_t* option : {L"-vm", L"-data", L"-plugincustomization", L"-application",
                                  L"-personality", L"-nl", L"-dir"}) {
        EXPECT_EQ(extended({L"-config", L"N", option, L"1"}, values({option, L"2", option, L"3"})),
                  (Arguments{option, L"1", option, L"3"}))
            << option;
    }
}

TEST_F(Extensions, ProductIsThinnedTwice) {
    EXPECT_EQ(extended({L"-config", L"N", L"-product", L"1"},
                       values({L"-product", L"2", L"-product", L"3"})),
              (Arguments{L"-product", L"1"}));
}

TEST_F(Extensions, SecondSinglesAreRemoved) {
    for (const wchar_t* option : {L"-console", L"-debug", L"-pb4l"}) {
        EXPECT_EQ(extended({L"-config", L"N", option}, values({L"-x", option, option})),
                  (Arguments{option, L"-x", option}))
            << option;
    }
    EXPECT_EQ(extended({L"-config", L"N", L"-configuration", L"1"}, values({L"-configuration"})),
              (Arguments{L"-configuration", L"1", L"-configuration"}));
}

TEST_F(Extensions, DataOfTheExtensionBecomesTheProperty) {
    Pairs properties = values({L"-data", L"/new"});
    properties.emplace_back(L"rcp.data", L"/old");
    properties.emplace_back(L"rcp.data", L"/older");
    extended({L"-config", L"N"}, properties);
    EXPECT_EQ(pairsOf(properties_), (Pairs{{L"config.N.1", L"-data"},
                                           {L"config.N.2", L"/new"},
                                           {L"rcp.data", L"/new"},
                                           {L"rcp.data", L"/older"}}))
        << "in place";
    extended({L"-config", L"N"}, values({L"-data", L"/new"}));
    EXPECT_EQ(pairsOf(properties_).back(),
              (std::pair<std::wstring, std::wstring>(L"rcp.data", L"/new")))
        << "added when there is none";
}

TEST_F(Extensions, DataWithoutValueLeavesThePropertyAlone) {
    PropertyList properties = propertyList({{L"rcp.data", L"/old"}});
    patchWorkspace({L"rcplauncher", L"-data"}, properties);
    patchWorkspace({L"rcplauncher", L"-x", L"/y"}, properties);
    EXPECT_EQ(pairsOf(properties), (Pairs{{L"rcp.data", L"/old"}}));
    patchWorkspace({L"rcplauncher", L"-data", L"/1", L"-data", L"/2"}, properties);
    EXPECT_EQ(pairsOf(properties), (Pairs{{L"rcp.data", L"/1"}}));
}

TEST_F(Extensions, VmargsOfBothAreMergedAndStay) {
    EXPECT_EQ(extended({L"vmarg.a=1", L"-config", L"N"}, values({L"vmarg.a=2", L"vmarg.b=3"})),
              (Arguments{L"vmarg.a=1", L"vmarg.a=2", L"vmarg.b=3"}));
    EXPECT_EQ(pairsOf(map_), (Pairs{{L"vmarg.a", L"1"}, {L"vmarg.b", L"3"}}));
    extended({L"vmarg.c=1"});
    EXPECT_EQ(pairsOf(map_), (Pairs{{L"vmarg.c", L"1"}})) << "without the option too";
}

TEST_F(Extensions, InvalidVmargTellsWhereItCameFrom) {
    EXPECT_FATAL(extended({L"vmarg.a", L"-config", L"N"}, values({L"vmarg.b"})),
                 HasSubstr("ZYPRA0033E: rcplauncher invoked with an invalid vmarg."));
    EXPECT_FATAL(extended({L"-config", L"N"}, values({L"vmarg.b"})),
                 HasSubstr("ZYPRA0128E: rcplauncher invoked with an invalid vmarg."));
}

TEST_F(Extensions, MarkerFileAddsTheDebugOptions) {
    folder_.write("rcp/rcplauncher.debug", "");
    EXPECT_EQ(extended({L"-a"}),
              (Arguments{L"-a", L"-console", L"-debug", L"-pb4l", L"-debugFile", marker()}));
    EXPECT_EQ(extended({L"-a", L"-vmargs", L"-b"}),
              (Arguments{L"-a", L"-console", L"-debug", L"-pb4l", L"-debugFile", marker(),
                         L"-vmargs", L"-b"}));
    EXPECT_EQ(extended({L"-config", L"N", L"-vmargs", L"-b"}, values({L"-x"})),
              (Arguments{L"-x", L"-console", L"-debug", L"-pb4l", L"-debugFile", marker(),
                         L"-vmargs", L"-b"}));
}

TEST_F(Extensions, MarkerFileRepeatsNoOptionOfTheUsers) {
    folder_.write("rcp/rcplauncher.debug", "");
    const Arguments expected = {L"-debug", L"-pb4l", L"-console", L"-debugFile", marker()};
    EXPECT_EQ(extended({L"-debug", L"-pb4l", L"-console"}), expected);
    EXPECT_EQ(extended({L"-config", L"N", L"-debug", L"-pb4l"}, values({L"-console"})), expected);
}

TEST_F(Extensions, TenThousandValuesComeInOrder) {
    Arguments texts;
    for (int i = 0; i < 10'000; ++i) {
        texts.push_back(L"-x" + std::to_wstring(i));
    }
    Arguments expected = texts;
    EXPECT_EQ(extended({L"-config", L"N"}, values(texts)), expected);
    expected.insert(expected.end(), {L"-vmargs", L"-u"});
    EXPECT_EQ(extended({L"-config", L"N", L"-vmargs", L"-u"}, values(texts)), expected);
}

}  // namespace
}  // namespace rcp
