#include "launcher/command_line/plan.h"

#include "diagnostics/whys.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

TEST(CommandLine, ArgumentsAreAppendedOptionOrValue) {
    CommandLine line;
    line.add(L"-a");
    line.add(L"");
    line.add(L"-a", L"value", whys::kDaemon);
    EXPECT_EQ(line.arguments(), (Arguments{L"-a", L"", L"-a", L"value"}));
}

TEST(CommandLine, ElementsTellByWhichRuleTheyAreThere) {
    CommandLine line;
    line.setProgram(L"/eclipse", whys::kPlatformProgram);
    line.add(L"-useDaemon", L"7", whys::kDaemon);
    Argument marked = L"-debug";
    marked.why = &whys::kDebugMarker;
    line.add(marked, whys::kJvm);
    line.add(L"-x");
    EXPECT_EQ(line.arguments()[0].why, &whys::kPlatformProgram);
    EXPECT_EQ(line.arguments()[1].why, &whys::kDaemon);
    EXPECT_EQ(line.arguments()[2].why, &whys::kDaemon);
    EXPECT_EQ(line.arguments()[3].why, &whys::kDebugMarker) << "it has brought its own";
    EXPECT_EQ(line.arguments()[4].why, nullptr) << "the user's";
}

TEST(CommandLine, WhatARestartDropsIsToldWithItsReason) {
    const test::LoserNotes losers;
    CommandLine line(Start::kRestart);
    line.add({L"-debug", Origin{nullptr, 4}});
    EXPECT_TRUE(line.arguments().empty());
    EXPECT_EQ(losers.notes,
              std::vector<std::wstring>{L"-debug: a restarted platform gets no debug console"});
}

TEST(CommandLine, ProgramEmptiesTheList) {
    CommandLine line;
    line.add(L"-a");
    line.setProgram(L"/x y/eclipse", whys::kPlatformProgram);
    EXPECT_EQ(line.arguments(), Arguments{L"/x y/eclipse"});
    line.add(L"-b");
    EXPECT_EQ(line.arguments(), (Arguments{L"/x y/eclipse", L"-b"}));
}

TEST(CommandLine, RestartDropsTheDebugConsole) {
    const std::vector<std::wstring> arguments = {L"-debug", L"-console", L"-consoleLog", L"-Debug",
                                                 L"debug"};
    CommandLine ordinary;
    CommandLine restart(Start::kRestart);
    for (const std::wstring& argument : arguments) {
        ordinary.add(argument);
        restart.add(argument);
    }
    EXPECT_EQ(ordinary.arguments().size(), arguments.size());
    EXPECT_EQ(restart.arguments(), (Arguments{L"-consoleLog", L"-Debug", L"debug"}));
}

TEST(CommandLine, LibraryIsTheLastOneSet) {
    CommandLine line;
    EXPECT_EQ(line.library(), L"");
    line.setLibrary(L"/a");
    line.setLibrary(L"/b");
    EXPECT_EQ(line.library(), L"/b");
    EXPECT_TRUE(line.arguments().empty());
}

TEST(CommandLine, FixedNames) {
    EXPECT_STREQ(ECLIPSE_SO_NAME_DEFAULT, L"eclipse_1615.so");
    EXPECT_EQ(CONSOLEARG, L"-console");
    EXPECT_EQ(DEBUGARG, L"-debug");
    EXPECT_EQ(PB4LARG, L"-pb4l");
}

}  // namespace
}  // namespace rcp
