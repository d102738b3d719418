#include "launcher/core/launch_arguments.h"

#include "launcher/core/launch_state.h"
#include "tests/unit/core/launch_pieces.h"

namespace rcp {
namespace {

using LaunchList = test::LauncherTest;

TEST_F(LaunchList, ArgumentsAreAppendedKeywordOrValue) {
    addArgToCommandLine(L"-a", false);
    addArgToCommandLine(L"", true);
    addArgToCommandLine(L"-a", true);
    EXPECT_EQ(launchArgs, (Arguments{L"-a", L"", L"-a"}));
}

TEST_F(LaunchList, PathEmptiesTheList) {
    addArgToCommandLine(L"-a", false);
    addPathToCommandLine(L"/x y/eclipse");
    EXPECT_EQ(launchArgs, Arguments{L"/x y/eclipse"});
    addArgToCommandLine(L"-b", false);
    EXPECT_EQ(launchArgs, (Arguments{L"/x y/eclipse", L"-b"}));
}

TEST_F(LaunchList, RestartDropsTheDebugConsole) {
    for (const wchar_t* argument : {L"-debug", L"-console", L"-consoleLog", L"-Debug", L"debug"}) {
        addArgToCommandLine(argument, true);
        addArgToCommandLine(argument, false);
    }
    EXPECT_EQ(launchArgs.size(), 10U);
    launchArgs.clear();
    bRestart = true;
    for (const wchar_t* argument : {L"-debug", L"-console", L"-consoleLog", L"-Debug", L"debug"}) {
        addArgToCommandLine(argument, true);
        addArgToCommandLine(argument, false);
    }
    EXPECT_EQ(launchArgs, (Arguments{L"-consoleLog", L"-consoleLog", L"-Debug", L"-Debug", L"debug",
                                     L"debug"}));
}

TEST_F(LaunchList, LibraryPathIsTheLastOneSet) {
    setEclipseSoPath(L"/a");
    setEclipseSoPath(L"/b");
    EXPECT_EQ(eclipseSoPath, L"/b");
    EXPECT_TRUE(launchArgs.empty());
}

TEST_F(LaunchList, FixedNames) {
    EXPECT_STREQ(ECLIPSE_SO_NAME_DEFAULT, L"eclipse_1615.so");
    EXPECT_STREQ(CONSOLEARG, L"-console");
    EXPECT_STREQ(DEBUGARG, L"-debug");
    EXPECT_STREQ(PB4LARG, L"-pb4l");
}

}  // namespace
}  // namespace rcp
