#include "inspect/status/last_launch.h"
#include "inspect/status/report.h"
#include "tests/inspect/status_fixture.h"

#include <filesystem>
#include <regex>

namespace rcp::inspect::test {
namespace {

using StatusOfTheLastLaunch = StatusTest;

constexpr const char* kBegin = "ZYPRA0030I: rcplauncher main arguments=\"/x/rcplauncher, \"\n\n";

TEST_F(StatusOfTheLastLaunch, ASuccessfulOneHasARoleAndATime) {
    EXPECT_EQ(launch(), 0);
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["outcome"], "handed-off");
    EXPECT_EQ(last["role"], "main");
    EXPECT_EQ(last["log"], folder_.narrow(area("logs/rcplauncher.log")));
    EXPECT_EQ(last["isShared"], false);
    EXPECT_EQ(last["record"], Json());
    EXPECT_TRUE(std::regex_match(last["time"].get<std::string>(),
                                 std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)")));
}

TEST_F(StatusOfTheLastLaunch, AFailedOneComesWithItsRecordAndTheRemedy) {
    replaceIn(kProperties, "\nplugincustomization=.*", "\nplugincustomization=/nowhere");
    ASSERT_EQ(launch(), 255);
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["outcome"], "failed");
    EXPECT_NE(last["record"]["text"].get<std::string>().find("/nowhere"), std::string::npos);
    ASSERT_EQ(last["record"]["messages"].size(), 1U);
    EXPECT_EQ(last["record"]["messages"][0]["id"], "ZYPRA0050E");
    EXPECT_EQ(last["record"]["messages"][0]["step"], "platform options");
    EXPECT_NE(text().find("The file named by `plugincustomization`"), std::string::npos);
}

TEST_F(StatusOfTheLastLaunch, OneThatEndedBeforeItsLogIsFoundInTheSharedOne) {
    if (!rcp::test::hasPrivateTmp()) {
        GTEST_SKIP() << "this system gives the test no /tmp of its own";
    }
    ASSERT_EQ(launch(), 0);
    ASSERT_EQ(launch({"-name=\"x\""}), 255);
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["log"], "/tmp/rcplauncher.log");
    EXPECT_EQ(last["isShared"], true);
    EXPECT_EQ(last["record"]["messages"][0]["id"], "ZYPRA0089E");

    // Another installation's launches are none of this one's.
    std::ofstream("/tmp/rcplauncher.log")
        << kBegin << "ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument.\n";
    EXPECT_EQ(status()["lastLaunch"]["outcome"], "handed-off");
    std::filesystem::remove("/tmp/rcplauncher.log");
}

TEST_F(StatusOfTheLastLaunch, OneThatEndedOverItsPropertiesBelongsToTheInstallationOfThat) {
    if (!rcp::test::hasPrivateTmp()) {
        GTEST_SKIP() << "this system gives the test no /tmp of its own";
    }
    ASSERT_EQ(launch(), 0);
    const std::string properties = folder_.narrow(kProperties);
    std::filesystem::rename(properties, properties + ".away");
    ASSERT_EQ(launch(), 255);
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["log"], "/tmp/rcplauncher.log");
    EXPECT_EQ(last["isOwn"], true);
    std::filesystem::rename(properties + ".away", properties);

    std::filesystem::create_directories(folder_.path() / "other/rcp");
    std::filesystem::copy(launcher(), folder_.path() / "other/rcp/rcplauncher");
    Program other({folder_.narrow("other/rcp/rcplauncher")}, environment());
    (void)other.rest();
    ASSERT_EQ(other.wait(), 255);
    EXPECT_EQ(status()["lastLaunch"]["outcome"], "handed-off");
    std::filesystem::remove("/tmp/rcplauncher.log");
}

TEST_F(StatusOfTheLastLaunch, OfAnUnknownInstallationItIsToldAsSuch) {
    if (!rcp::test::hasPrivateTmp()) {
        GTEST_SKIP() << "this system gives the test no /tmp of its own";
    }
    Words variables = environment();
    std::erase(variables, "LANG=C.UTF-8");
    variables.emplace_back("LC_ALL=nowhere");
    Program program(launchWords({}), variables);
    (void)program.rest();
    ASSERT_EQ(program.wait(), 255);
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["record"]["messages"][0]["id"], "ZYPRA0182E");
    EXPECT_EQ(last["isOwn"], Json());
    EXPECT_NE(text().find("it may be another installation's"), std::string::npos);
    std::filesystem::remove("/tmp/rcplauncher.log");
}

TEST_F(StatusOfTheLastLaunch, OfAnUnknownInstallationItDoesNotHideItsOwn) {
    if (!rcp::test::hasPrivateTmp()) {
        GTEST_SKIP() << "this system gives the test no /tmp of its own";
    }
    ASSERT_EQ(launch(), 0);
    std::ofstream("/tmp/rcplauncher.log") << "ZYPRA0182E: Unable to set locale.\n";
    const Json last = status()["lastLaunch"];
    EXPECT_EQ(last["outcome"], "handed-off");
    EXPECT_EQ(last["isOwn"], true);
    EXPECT_EQ(last["unclear"], "/tmp/rcplauncher.log");
    EXPECT_NE(text().find("/tmp/rcplauncher.log was written, which does not tell whose launch"),
              std::string::npos);
    std::filesystem::remove("/tmp/rcplauncher.log");
}

TEST_F(StatusOfTheLastLaunch, ItsAgeIsTold) {
    ASSERT_EQ(launch(), 0);
    EXPECT_TRUE(status()["lastLaunch"]["age"].is_number());
    EXPECT_NE(text().find(" ago: started the platform\n"), std::string::npos);
}

TEST_F(StatusOfTheLastLaunch, TheLatestLogCounts) {
    ASSERT_EQ(launch(), 0);
    ASSERT_EQ(launch({"-debug"}), 0);
    const Json last = status()["lastLaunch"];
    EXPECT_NE(last["log"].get<std::string>().find("/logs/rcplauncher_"), std::string::npos);
    EXPECT_EQ(last["outcome"], "handed-off");
}

TEST(LastLaunch, AnErrorThatIsNotTheLastRecordDidNotEndIt) {
    const LastLaunch launch = readLaunch(
        "ZYPRA0090E: Existing platform lock file found - checking validity.\n"
        "ZYPRA0091E: No data in the platform lock file.\n"
        "ZYPRA0304I: We are main process\n");
    EXPECT_EQ(launch.outcome, Outcome::kUnfinished);
    EXPECT_EQ(launch.role, "main");
    EXPECT_EQ(launch.record, "");
}

TEST(LastLaunch, TheEndOfAListOfFailuresIsWhatEndedIt) {
    const LastLaunch launch = readLaunch(
        "ZYPRA0304I: We are main process\n\n"
        "ZYPRA0086I begin: Information collected while removing shared classes directory\n"
        "Can't delete file /x\n"
        "ZYPRA0087I end: Unable to remove all files in the shared classes directory. : Reason\n");
    EXPECT_EQ(launch.outcome, Outcome::kFailed);
    EXPECT_TRUE(launch.record.starts_with("ZYPRA0087I end: Unable"));
}

TEST(LastLaunch, AProgramThatCouldNotBeStartedFailsTheLaunchBehindItsHandOff) {
    const std::string log =
        "ZYPRA0132I: ===== Begin Launch Parameters =====\n/x\n"
        "ZYPRA0133I: ===== End Launch Parameters =====\n";
    EXPECT_EQ(readLaunch(log).outcome, Outcome::kHandedOff);
    EXPECT_EQ(readLaunch(log + "ZYPRA0051E: Unable to write to platform lock file\n").outcome,
              Outcome::kHandedOff);
    const LastLaunch failed = readLaunch(log + "Error: execv: /x could not be started : Reason\n");
    EXPECT_EQ(failed.outcome, Outcome::kFailed);
    EXPECT_EQ(failed.record, "Error: execv: /x could not be started : Reason");
}

TEST(LastLaunch, ItsAgeIsCountedFromTheClockThatIsGiven) {
    WorkspaceState state;
    state.last = LastLaunch();
    state.last->time = {1'000'000, 0};
    const auto age = [&] { return toJson(state)["lastLaunch"]["age"]; };
    const auto isInText = [&](const char* words) {
        return toText(state, false).find(words) != std::string::npos;
    };
    EXPECT_TRUE(age().is_null());
    EXPECT_FALSE(isInText(" ago"));
    state.now = 1'000'000 + 2 * 60 * 60 + 59;
    EXPECT_EQ(age(), 2 * 60 * 60 + 59);
    EXPECT_TRUE(isInText(", 2 hours ago: is at work"));
    state.now = 999'999;  // the clock was put back
    EXPECT_TRUE(age().is_null());
    EXPECT_FALSE(isInText(" ago"));
}

TEST(LastLaunch, AnEmptyLogTellsNothing) {
    EXPECT_EQ(readLaunch("").outcome, Outcome::kUnfinished);
    EXPECT_EQ(readLaunch("").role, "");
}

}  // namespace
}  // namespace rcp::inspect::test
