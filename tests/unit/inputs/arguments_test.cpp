#include "launcher/inputs/arguments.h"

#include "launcher/inputs/option_values.h"

#include <gtest/gtest.h>

namespace rcp {
namespace {

const Arguments kArguments = {L"-program", L"-data", L"ws", L"-DATA", L"-data", L"-last"};

TEST(FindOption, FirstExactMatchBehindTheProgram) {
    EXPECT_EQ(findOption(OptionName(L"-data"), kArguments), 1);
    EXPECT_EQ(findOption(OptionName(L"-DATA"), kArguments), 3);
    EXPECT_EQ(findOption(OptionName(L"-last"), kArguments), 5);
}

TEST(FindOption, ProgramIsNeverCompared) {
    EXPECT_EQ(findOption(OptionName(L"-program"), kArguments), std::nullopt);
}

TEST(FindOption, ArgumentsAreComparedWhole) {
    EXPECT_EQ(findOption(OptionName(L"-dat"), kArguments), std::nullopt);
    EXPECT_EQ(findOption(OptionName(L"-data"), Arguments{L"p", L"-data=ws", L"-datax"}),
              std::nullopt);
    EXPECT_EQ(findOption(OptionName(L""), kArguments), std::nullopt);
    EXPECT_EQ(findOption(OptionName(L""), Arguments{L"p", L""}), 1);
}

TEST(FindOption, NoArgumentsHoldNothing) {
    EXPECT_EQ(findOption(OptionName(L"-data"), Arguments()), std::nullopt);
    EXPECT_EQ(findOption(OptionName(L"-data"), Arguments{L"-data"}), std::nullopt);
    EXPECT_FALSE(hasOption(OptionName(L"-data"), Arguments()));
    EXPECT_TRUE(hasOption(OptionName(L"-data"), kArguments));
}

TEST(OptionValue, ArgumentBehindTheFirstMatch) {
    EXPECT_EQ(optionValue(OptionName(L"-data"), kArguments), &kArguments[2]);
    EXPECT_EQ(optionValue(OptionName(L"-DATA"), kArguments), &kArguments[4])
        << "whatever it looks like";
}

TEST(OptionValue, MissingValueNeverReadsPastTheEnd) {
    EXPECT_EQ(optionValue(OptionName(L"-last"), kArguments), nullptr);
    EXPECT_EQ(optionValue(OptionName(L"-missing"), kArguments), nullptr);
    EXPECT_EQ(optionValue(OptionName(L"-data"), Arguments()), nullptr);
}

TEST(OptionValue, EndOfTheOptionsIsNoValue) {
    EXPECT_EQ(optionValue(OptionName(L"-data"), Arguments{L"p", L"-data", L"-vmargs", L"-Xa"}),
              nullptr);
}

TEST(OptionValue, JvmThatTheLauncherAppendsIsNoValue) {
    EXPECT_EQ(optionValue(OptionName(L"-data"), Arguments{L"p", L"-data", L"-vm", L"/j"}), nullptr);
    const Arguments given{L"p", L"-data", Argument(L"-vm", Origin{nullptr, 2})};
    EXPECT_EQ(optionValue(OptionName(L"-data"), given), &given[2]) << "the user's own is";
}

TEST(BundleIdentifier, IsTheArgumentBehindTheOption) {
    const Arguments arguments = {L"rcplauncher", L"-bundleIdentifier", L"a.b", L"x"};
    const Argument* found = getBundleIdentifier(arguments);
    ASSERT_EQ(found, &arguments[2]);
}

TEST(BundleIdentifier, EveryArgumentIsLookedAtFromTheFirstOn) {
    const Arguments arguments = {L"-bundleIdentifier", L"-bundleIdentifier", L"a.b"};
    EXPECT_EQ(getBundleIdentifier(arguments), &arguments[1]);
}

TEST(BundleIdentifier, OptionWithoutAnArgumentBehindItIsNone) {
    EXPECT_EQ(getBundleIdentifier({}), nullptr);
    EXPECT_EQ(getBundleIdentifier(Arguments{L"rcplauncher", L"-bundleIdentifier"}), nullptr);
    EXPECT_EQ(getBundleIdentifier(Arguments{L"-bundleidentifier", L"a", L"-bundleIdentifierX"}),
              nullptr);
}

TEST(BundleIdentifier, IsNeitherTheEndOfTheOptionsNorTheLaunchersOwnVm) {
    EXPECT_EQ(getBundleIdentifier(Arguments{L"rcplauncher", L"-bundleIdentifier", L"-vmargs"}),
              nullptr);
    EXPECT_EQ(getBundleIdentifier(Arguments{L"rcplauncher", L"-bundleIdentifier", L"-vm", L"/j"}),
              nullptr);
}

TEST(Questions, AreAnsweredByTheirOption) {
    EXPECT_TRUE(isRestart({L"p", L"x", L"-restart"}));
    EXPECT_TRUE(isResetConfig({L"p", L"-resetconfig"}));
    EXPECT_TRUE(isWaitMode({L"p", L"-rcpLauncherWait"}));
    EXPECT_TRUE(isDebug({L"p", L"-debug"}));
    const Arguments others = {L"p", L"-Restart", L"-resetConfig", L"-rcplauncherwait",
                              L"-debugFile"};
    EXPECT_FALSE(isRestart(others));
    EXPECT_FALSE(isResetConfig(others));
    EXPECT_FALSE(isWaitMode(others));
    EXPECT_FALSE(isDebug(others));
}

TEST(Questions, RestartNeverTraces) {
    EXPECT_FALSE(isDebug({L"p", L"-debug", L"-restart"}));
    EXPECT_FALSE(isDebug({L"p", L"-restart", L"-debug"}));
}

}  // namespace
}  // namespace rcp
