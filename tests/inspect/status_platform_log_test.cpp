#include "inspect/status/platform_log.h"
#include "tests/inspect/status_fixture.h"

namespace rcp::inspect::test {
namespace {

constexpr const char* kSecret = "-Dpassword=secret";

// As the platform writes it when a bundle is missing.
const std::string kMissingBundle =
    "!SESSION 2026-01-31 12:00:00.000 -----------------------------------------------\n"
    "eclipse.buildId=unknown\n"
    "Command-line arguments:  -os linux " +
    std::string(kSecret) +
    "\n\n"
    "!ENTRY sample.desktop 4 0 2026-01-31 12:00:01.000\n"
    "!MESSAGE FrameworkEvent ERROR\n"
    "!STACK 0\n"
    "org.osgi.framework.BundleException: Could not resolve module: sample.desktop [68]\n"
    "  Unresolved requirement: Require-Bundle: org.eclipse.ui\n"
    "\n"
    "\tat org.eclipse.osgi.container.Module.start(Module.java:463)\n"
    "\n"
    "!ENTRY sample.desktop 2 0 2026-01-31 12:00:01.100\n"
    "!MESSAGE Could not resolve module: sample.desktop [68]\n"
    "  Unresolved requirement: Require-Bundle: org.eclipse.ui\n"
    "\n"
    "!ENTRY org.eclipse.osgi 4 0 2026-01-31 12:00:01.200\n"
    "!MESSAGE Application error\n"
    "!STACK 1\n"
    "java.lang.RuntimeException: Application \"sample\" could not be found in the registry.\n"
    "\tat org.eclipse.equinox.internal.app.Container.startDefaultApp(Container.java:248)\n";

std::string error(const std::string& bundle, const std::string& message) {
    return "!ENTRY " + bundle + " 4 0 2026-01-31 12:00:00.000\n!MESSAGE " + message + "\n";
}

TEST(PlatformLog, ErrorsHaveTheirFirstLinesAndWhatIsMissing) {
    EXPECT_EQ(
        readPlatformErrors(kMissingBundle),
        (std::vector<PlatformError>{
            {"sample.desktop",
             "FrameworkEvent ERROR",
             "org.osgi.framework.BundleException: Could not resolve module: sample.desktop [68]",
             {"Require-Bundle: org.eclipse.ui"}},
            {"org.eclipse.osgi",
             "Application error",
             "java.lang.RuntimeException: Application \"sample\" could not be found in the "
             "registry.",
             {}}}));
}

TEST(PlatformLog, OnlyTheLastSessionCounts) {
    EXPECT_EQ(readPlatformErrors(kMissingBundle + "!SESSION 2026-01-31 13:00:00.000 ---\n" +
                                 error("a", "!SESSION of something")),
              (std::vector<PlatformError>{{"a", "!SESSION of something", "", {}}}));
}

TEST(PlatformLog, WarningsAndPartsOfAnEntryAreNoErrors) {
    EXPECT_TRUE(
        readPlatformErrors("!SESSION x\n!ENTRY a 2 0 now\n!MESSAGE w\n!STACK 0\njava.X\n").empty());
    EXPECT_EQ(readPlatformErrors(error("a", "whole") + "!SUBENTRY 1 b 4 0 now\n!MESSAGE part\n" +
                                 "!STACK 0\njava.lang.Error: part\n"),
              (std::vector<PlatformError>{{"a", "whole", "", {}}}));
}

TEST(PlatformLog, WhatIsCutOffIsToldAsFarAsItGoes) {
    EXPECT_TRUE(readPlatformErrors("").empty());
    EXPECT_EQ(readPlatformErrors("!ENTRY a 4"), (std::vector<PlatformError>{{"a", "", "", {}}}));
    EXPECT_EQ(readPlatformErrors(error("a", "b") + "!STACK 0"),
              (std::vector<PlatformError>{{"a", "b", "", {}}}));
}

TEST(PlatformLog, LinesAreMadeFitForATerminal) {
    const std::vector<PlatformError> errors =
        readPlatformErrors(error("a", "\033[2J\a" + std::string(1000, 'x')) + error("b", "c\r"));
    EXPECT_TRUE(errors.at(0).message.starts_with(" [2J xxx"));
    EXPECT_TRUE(errors.at(0).message.ends_with("x ..."));
    EXPECT_LT(errors.at(0).message.size(), 410U);
    EXPECT_EQ(errors.at(1).message, "c");
}

class StatusOfThePlatformsLog : public StatusTest {
  protected:
    // Launches, then the platform writes its log.
    void fail(const std::string& name, const std::string& log) const {
        ASSERT_EQ(launch(), 0);
        std::filesystem::create_directories(folder_.path() /
                                            area(name).substr(0, area(name).rfind('/')));
        folder_.write(area(name), log);
    }
};

TEST_F(StatusOfThePlatformsLog, AFailureOnTheWayToTheWorkspaceIsExplained) {
    fail(".config/1767225600000.log", kMissingBundle);
    const Json errors = status()["platformErrors"];
    EXPECT_EQ(errors["log"], folder_.narrow(area(".config/1767225600000.log")));
    EXPECT_EQ(errors["count"], 2);
    EXPECT_EQ(errors["errors"][0]["missing"], Json({"Require-Bundle: org.eclipse.ui"}));
    EXPECT_EQ(errors["errors"][1]["message"], "Application error");
    const std::string shown = text();
    EXPECT_NE(shown.find("missing: Require-Bundle: org.eclipse.ui\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("could not be found in the registry.\n"), std::string::npos) << shown;
    EXPECT_EQ((shown + status().dump()).find(kSecret), std::string::npos);
    EXPECT_EQ(shown.find("Module.java"), std::string::npos);
}

TEST_F(StatusOfThePlatformsLog, TheLaterOfItsTwoLogsCounts) {
    fail(".config/1767225600000.log", kMissingBundle);
    fail(".metadata/.log", error("late", "one") + error("late", "two") + error("late", "three") +
                               error("late", "four"));
    const Json errors = status()["platformErrors"];
    EXPECT_EQ(errors["log"], folder_.narrow(area(".metadata/.log")));
    EXPECT_EQ(errors["count"], 4);
    ASSERT_EQ(errors["errors"].size(), 3U);
    EXPECT_EQ(errors["errors"][2]["message"], "four");
    EXPECT_NE(text().find("has 4 errors, the last 3 of them here\n"), std::string::npos);
}

TEST_F(StatusOfThePlatformsLog, WhatIsOlderThanTheLastLaunchIsNotTold) {
    fail(".metadata/.log", kMissingBundle);
    EXPECT_FALSE(status()["platformErrors"].is_null());
    const auto file = folder_.path() / area(".metadata/.log");
    std::filesystem::last_write_time(
        file, std::filesystem::last_write_time(file) - std::chrono::hours(1));
    EXPECT_TRUE(status()["platformErrors"].is_null());
    EXPECT_EQ(text().find("platform log"), std::string::npos);
}

TEST_F(StatusOfThePlatformsLog, OtherFilesAreNoLogs) {
    fail(".config/notes.log", kMissingBundle);
    std::filesystem::create_directories(folder_.path() / area(".metadata/.log"));
    EXPECT_TRUE(status()["platformErrors"].is_null());
}

}  // namespace
}  // namespace rcp::inspect::test
