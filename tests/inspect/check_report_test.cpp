// What check hands out: exit statuses, and the layouts of its forms.
#include "check_fixture.h"
#include "inspect/check/check.h"
#include "inspect/check/groups.h"
#include "inspect/check/report.h"
#include "inspect/commands.h"
#include "inspect/json/json.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>

namespace rcp::inspect {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string output;
};

Outcome checkOf(const Options& options) {
    std::ostringstream output;
    std::streambuf* const former = std::cout.rdbuf(output.rdbuf());
    const int status = check(options);
    std::cout.rdbuf(former);
    return {status, output.str()};
}

Json jsonOf(const Maker& maker, Format format) {
    Options options = maker.options();
    options.format = format;
    return Json::parse(checkOf(options).output);
}

// One warning in the first file, one error in the second.
void makeMistakes(const Maker& maker) {
    launcherHas("colour=red\n")(maker);
    jvmHas("vmarg.a=word\n")(maker);
}

struct StatusCase {
    const char* name;
    Change change;
    int status;
    int strictStatus;
};

class CheckStatus : public ::testing::TestWithParam<StatusCase> {};

TEST_P(CheckStatus, TellsTheWorstFinding) {
    const Maker maker;
    GetParam().change(maker);
    Options options = maker.options();
    EXPECT_EQ(checkOf(options).status, GetParam().status);
    options.isStrict = true;
    EXPECT_EQ(checkOf(options).status, GetParam().strictStatus);
}

INSTANTIATE_TEST_SUITE_P(
    Of, CheckStatus,
    ::testing::Values(StatusCase{"ACleanInstallation", nothingChanges, 0, 0},
                      StatusCase{"AWarning", launcherHas("colour=red\n"), 1, 2},
                      StatusCase{"AnError", launcherHas("vmarg.a=word\n"), 2, 2},
                      StatusCase{"Both", makeMistakes, 2, 2}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CheckText, GroupsFindingsByFileAndEndsWithTheirNumbers) {
    const Maker maker;
    makeMistakes(maker);
    const std::string text = checkOf(maker.options()).output;
    EXPECT_NE(text.find("rcp/rcplauncher.properties\n  8: warning RI202 unread-key: nothing looks "
                        "at \"colour\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(
        text.find("jre/lib/jvm.properties\n  2: error RI404 no-option: \"word\" is no option\n"),
        std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(": 1 error, 1 warning\n")) << text;
    EXPECT_EQ(text.find('\033'), std::string::npos);
}

TEST(CheckText, SaysSoWhenNothingIsFound) {
    const Maker maker;
    EXPECT_EQ(checkOf(maker.options()).output, maker.folder().narrow() + ": nothing found\n");
}

TEST(CheckText, IsColouredWhereItMayBe) {
    const Maker maker;
    makeMistakes(maker);
    Options options = maker.options();
    options.isColored = true;
    const std::string text = checkOf(options).output;
    EXPECT_NE(text.find("\033[31merror\033[0m"), std::string::npos) << text;
    EXPECT_NE(text.find("\033[33mwarning\033[0m"), std::string::npos) << text;
}

TEST(CheckText, SuggestsTheKeyThatWasMeant) {
    const Maker maker;
    launcherHas("instal.configuration=user\nJVM.Location=/a\n")(maker);
    const std::string text = checkOf(maker.options()).output;
    EXPECT_NE(text.find("did you mean \"install.configuration\"?"), std::string::npos) << text;
    EXPECT_NE(text.find("did you mean \"jvm.location\"?"), std::string::npos) << text;
}

// COUNT keys that nothing reads, from line 8 of the launcher's file on.
std::string strangeKeys(int count) {
    std::string lines;
    for (int i = 0; i < count; ++i) {
        lines += "strange." + std::to_string(i) + "=x\n";
    }
    return lines;
}

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(CheckText, TellsTheFirstOfManyAlikeAndHowManyThereAre) {
    const Maker maker;
    launcherHas(strangeKeys(1200))(maker);
    const std::string text = checkOf(maker.options()).output;
    EXPECT_EQ(occurrences(text, "warning RI202"), 4U) << text;
    EXPECT_NE(text.find("  11: warning RI202 unread-key: nothing looks at \"strange.3\"\n"
                        "  … and 1,196 more keys that nothing reads; --all lists them\n"
                        "      Nothing looks at the key.\n"),
              std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(": 0 errors, 1,200 warnings\n")) << text;
}

TEST(CheckText, ListsThemAllWhenAskedAndWhereOneMoreLineSaysAsMuch) {
    const Maker maker;
    launcherHas(strangeKeys(5))(maker);
    EXPECT_EQ(occurrences(checkOf(maker.options()).output, "warning RI202"), 5U);
    launcherHas(strangeKeys(1200))(maker);
    Options options = maker.options();
    options.isAll = true;
    const std::string text = checkOf(options).output;
    EXPECT_EQ(occurrences(text, "warning RI202"), 1205U);
    EXPECT_EQ(occurrences(text, "Nothing looks at the key."), 1U);
    EXPECT_EQ(text.find("more"), std::string::npos);
}

TEST(CheckText, FindingsOfOtherKindsAndFilesAreGroupsOfTheirOwn) {
    const Maker maker;
    launcherHas(strangeKeys(6))(maker);
    launcherHas("vmarg.a=word\n")(maker);
    jvmHas(strangeKeys(6))(maker);
    const std::string text = checkOf(maker.options()).output;
    EXPECT_EQ(occurrences(text, "… and 2 more keys that nothing reads; --all lists them"), 2U)
        << text;
    EXPECT_EQ(occurrences(text, "RI404"), 1U) << text;
    EXPECT_EQ(occurrences(text, "rcp/rcplauncher.properties\n"), 1U) << text;
}

TEST(CheckJson, HasTheDocumentedLayout) {
    const Maker maker;
    makeMistakes(maker);
    const Json report = jsonOf(maker, Format::kJson);
    EXPECT_EQ(report.at("layout"), 1);
    EXPECT_EQ(report.at("command"), "check");
    EXPECT_EQ(report.at("installation"), maker.folder().narrow());
    EXPECT_EQ(report.at("summary"), Json({{"errors", 1}, {"warnings", 1}}));
    const Json& findings = report.at("findings");
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].at("code"), "RI202");
    EXPECT_EQ(findings[0].at("name"), "unread-key");
    EXPECT_EQ(findings[0].at("level"), "warning");
    EXPECT_EQ(findings[0].at("file"), kLauncherProperties);
    EXPECT_EQ(findings[0].at("line"), 8);
    EXPECT_EQ(findings[0].at("message"), "nothing looks at \"colour\"");
    EXPECT_FALSE(findings[0].at("meaning").get<std::string>().empty());
    EXPECT_FALSE(findings[0].at("remedy").get<std::string>().empty());
    EXPECT_EQ(findings[1].at("level"), "error");
    EXPECT_EQ(findings[1].at("file"), kJvmProperties);
}

TEST(CheckJson, OfACleanInstallationHasAnEmptyList) {
    const Json report = jsonOf(Maker(), Format::kJson);
    EXPECT_EQ(report.at("findings"), Json::array());
    EXPECT_EQ(report.at("summary"), Json({{"errors", 0}, {"warnings", 0}}));
}

TEST(CheckSarif, IsOneRunOfVersion210WithItsRules) {
    const Json report = jsonOf(Maker(), Format::kSarif);
    EXPECT_EQ(report.at("version"), "2.1.0");
    EXPECT_NE(report.at("$schema").get<std::string>().find("sarif-schema-2.1.0"),
              std::string::npos);
    ASSERT_EQ(report.at("runs").size(), 1U);
    const Json& driver = report["runs"][0].at("tool").at("driver");
    EXPECT_EQ(driver.at("name"), "rcpinspect");
    ASSERT_EQ(driver.at("rules").size(), findingRules().size());
    for (const Json& rule : driver["rules"]) {
        EXPECT_FALSE(rule.at("id").get<std::string>().empty());
        EXPECT_FALSE(rule.at("name").get<std::string>().empty());
        EXPECT_FALSE(rule.at("shortDescription").at("text").get<std::string>().empty());
        EXPECT_FALSE(rule.at("help").at("text").get<std::string>().empty());
        const std::string level = rule.at("defaultConfiguration").at("level");
        EXPECT_TRUE(level == "error" || level == "warning") << level;
    }
    EXPECT_EQ(report["runs"][0].at("results"), Json::array());
}

TEST(CheckSarif, PlacesResultsRelativeToTheInstallation) {
    const Maker maker;
    makeMistakes(maker);
    has("rcp/rcplauncher.debug", "")(maker);
    const Json report = jsonOf(maker, Format::kSarif);
    const Json& run = report.at("runs")[0];
    const std::string base = run.at("originalUriBaseIds").at("INSTALLATION").at("uri");
    EXPECT_TRUE(base.starts_with("file:///") && base.ends_with("/")) << base;
    std::map<std::string, Json> places;
    for (const Json& result : run.at("results")) {
        const std::size_t index = result.at("ruleIndex");
        EXPECT_EQ(run["tool"]["driver"]["rules"][index]["id"], result.at("ruleId"));
        EXPECT_FALSE(result.at("message").at("text").get<std::string>().empty());
        ASSERT_EQ(result.at("locations").size(), 1U);
        const Json& place = result["locations"][0].at("physicalLocation");
        EXPECT_EQ(place.at("artifactLocation").at("uriBaseId"), "INSTALLATION");
        places[result["ruleId"]] = place;
    }
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places["RI202"]["artifactLocation"]["uri"], kLauncherProperties);
    EXPECT_EQ(places["RI202"]["region"]["startLine"], 8);
    EXPECT_EQ(places["RI404"]["artifactLocation"]["uri"], kJvmProperties);
    EXPECT_EQ(places["RI404"]["region"]["startLine"], 2);
    EXPECT_FALSE(places["RI605"].contains("region"));
}

TEST(CheckReports, AreTextWhateverAValueHolds) {
    const Maker maker;
    launcherHas("vmarg.a=\xC3\xA4 ${prop.\xE2\x82\xAC}\nb=\xFF\n")(maker);
    Options options = maker.options();
    for (const Format format : {Format::kJson, Format::kSarif}) {
        options.format = format;
        EXPECT_TRUE(Json::accept(checkOf(options).output));
    }
}

// Every file with its content and the time of its last change.
std::map<std::string, std::string> snapshot(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto time = std::chrono::duration_cast<std::chrono::nanoseconds>(
                              entry.last_write_time().time_since_epoch())
                              .count();
        files[entry.path()] =
            std::to_string(time) +
            (entry.is_regular_file() ? " " + std::to_string(entry.file_size()) : std::string());
    }
    return files;
}

TEST(Check, ChangesNothing) {
    const Maker maker;
    makeMistakes(maker);
    // What makes an id of its own in a launch.
    differs(kLauncherProperties, "rcp.install.id=test", "install.configuration=userpb")(maker);
    const auto before = snapshot(maker.folder().path());
    checkOf(maker.options());
    EXPECT_EQ(snapshot(maker.folder().path()), before);
}

TEST(Check, TellsWhereAVariableStands) {
    const Maker maker;
    Options options = maker.options();
    setenv("_JAVA_OPTIONS", "-Da=b", 1);
    options.format = Format::kSarif;
    const Json place = Json::parse(checkOf(options).output)["runs"][0]["results"][0]["locations"];
    EXPECT_EQ(place[0]["logicalLocations"][0]["name"], "the environment");
    options.environmentFile = "/of/ann";
    options.variableLines["_JAVA_OPTIONS"] = 3;
    const std::vector<Finding> findings = findEverything(examine(options)).sorted();
    unsetenv("_JAVA_OPTIONS");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].file + ":" + std::to_string(findings[0].line), "/of/ann:3");
}

TEST(Check, TakesTheJvmFromTheLaunchersArguments) {
    const Maker maker;
    maker.place("other/lib/server/libjvm.so", "standin_jvm.so");
    has("other/lib/modules", "classes")(maker);
    has("other/lib/jvm.properties", "colour=red\n")(maker);
    Options options = maker.options();
    EXPECT_EQ(checkOf(options).status, 0);
    options.arguments = {"-vm", maker.folder().narrow("other/lib/server/libjvm.so")};
    EXPECT_EQ(checkOf(options).status, 1);
}

TEST(Check, NamesTheNumberOfAnArgumentThatNamesNoJvm) {
    const Maker maker;
    Options options = maker.options();
    for (const std::string& jvm : {std::string("/no/such"), maker.folder().narrow("jre/bin")}) {
        options.arguments = {"-clean", "-vm", jvm};
        has("jre/bin/none", "")(maker);
        const std::vector<Finding> findings = findEverything(examine(options)).sorted();
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_TRUE(findings[0].message.ends_with(" (argument 3)")) << findings[0].message;
    }
    // The installation's own stands behind all arguments and in a line.
    options.arguments = {"-clean"};
    lacks(kJvmLibrary)(maker);
    for (const Finding& finding : findEverything(examine(options)).sorted()) {
        EXPECT_EQ(finding.message.find("(argument"), std::string::npos) << finding.message;
        EXPECT_EQ(finding.line, 5U) << finding.message;
    }
}

TEST(Check, TellsOfAnExtensionThatIsNotThereAndWhichMayBeMeant) {
    const Maker maker;
    launcherHas("config.sample.1=-nosplash\n")(maker);
    Options options = maker.options();
    options.arguments = {"-config", "sampel"};
    const std::vector<Finding> findings = findEverything(examine(options)).sorted();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_STREQ(findings[0].rule->code, "RI504");
    EXPECT_EQ(findings[0].message,
              "\"-config sampel\" has no entry \"config.sampel.1\"; did you mean sample?");
    options.arguments = {"-config", "sample"};
    EXPECT_TRUE(findEverything(examine(options)).sorted().empty());
}

TEST(Check, ReadsTheInstallationsOwnJvmPropertiesToo) {
    const Maker maker;
    has(kDefaultJvmProperties, "colour=red\n")(maker);
    const std::vector<Finding> findings = maker.check();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].file, kDefaultJvmProperties);
}

}  // namespace
}  // namespace rcp::inspect
