#include "inspect/diff/recorded_launch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The log of a launch with these arguments as the launcher joins them.
std::string logOf(const std::string& arguments) {
    return "ZYPRA0030I: rcplauncher main arguments=\"" + arguments + ", \"\n\nZYPRA0304I: x\n";
}

TEST(RecordedLaunch, ItsElementsAreTheLinesBetweenTheTwoRecords) {
    EXPECT_EQ(recordedElements("ZYPRA0304I: We are main process\n"), std::nullopt);
    EXPECT_THAT(*recordedElements("x\nZYPRA0132I: ===== Begin Launch Parameters =====\na\n\nb c\n"
                                  "ZYPRA0133I: ===== End Launch Parameters =====\nlater\n"),
                ElementsAre("a", "", "b c"));
}

TEST(RecordedLaunch, ItsArgumentsAreThoseBehindTheProgramInFrontOfTheLaunchersVm) {
    EXPECT_THAT(*recordedArguments(logOf("/p, -a, , -b, -vm, /jvm"), {}),
                ElementsAre("-a", "", "-b"));
    EXPECT_THAT(*recordedArguments(logOf("/p, -vm, /mine, -vm, /jvm"), {}),
                ElementsAre("-vm", "/mine"));
    EXPECT_THAT(*recordedArguments(logOf("/p, -restart, -vm, /mine"), {}),
                ElementsAre("-restart", "-vm", "/mine"));
    EXPECT_THAT(*recordedArguments(logOf("/p, -vm, /jvm"), {}), IsEmpty());
    EXPECT_EQ(recordedArguments("nothing", {}), std::nullopt);
}

TEST(RecordedLaunch, AnArgumentWithTheSeparatorIsOneWhereThePlatformGotItAsOne) {
    const std::string log = logOf("/p, -a, x, y, z, -b");
    EXPECT_THAT(*recordedArguments(log, {"-a", "x, y, z", "-b"}),
                ElementsAre("-a", "x, y, z", "-b"));
    EXPECT_THAT(*recordedArguments(log, {"-a", "x", "y, z"}), ElementsAre("-a", "x", "y, z", "-b"));
    EXPECT_THAT(*recordedArguments(log, {}), ElementsAre("-a", "x", "y", "z", "-b"));
}

}  // namespace
}  // namespace rcp::inspect
