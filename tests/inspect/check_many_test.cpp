#include "inspect/check/check_many.h"

#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>

namespace rcp::inspect::test {
namespace {

using ::testing::HasSubstr;

// Three installations, of which one has a warning, and a folder that is none.
class CheckManyTest : public ExplainTest {
  protected:
    CheckManyTest() {
        std::filesystem::copy(installation(), folder_.narrow("odd"),
                              std::filesystem::copy_options::recursive);
        std::filesystem::copy(installation(), folder_.narrow("bad"),
                              std::filesystem::copy_options::recursive);
        std::filesystem::create_directory(folder_.path() / "none");
        append("odd/rcp/rcplauncher.properties", "nobody.reads.this=hunter2\n");
        replaceIn("bad/rcp/rcplauncher.properties", "\nrcp\\.install\\.id=.*", "");
    }

    [[nodiscard]] std::string check(const Words& options, const Words& names, int status,
                                    const std::string& first = "true") const {
        Words words{"/bin/sh",
                    "-c",
                    "exec 2>&1; cd \"$0\" && " + first + " && exec \"$@\"",
                    folder_.narrow(),
                    seen(INSPECT_PROGRAM),
                    "check"};
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), names.begin(), names.end());
        Program program(words, launchEnvironment());
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return output;
    }
};

TEST_F(CheckManyTest, TellsALineOfEachInTheirOrderAndASummary) {
    const std::string text = check({}, {"bad", "client", "odd", "none"}, 2);
    EXPECT_THAT(text, ::testing::MatchesRegex("✗ bad: [1-9] errors?, [0-9]+ warnings?\n"
                                              "✓ client: nothing found\n"
                                              "! odd: 0 errors, 1 warning\n"
                                              "✗ none: no launcher at none\n\n"
                                              "4 installations: 1 clean, 1 with warnings, "
                                              "2 with errors\n"));
    EXPECT_THAT(check({}, {"client", "client"}, 0), HasSubstr("2 installations: 2 clean"));
    EXPECT_THAT(check({}, {"client", "odd"}, 1), HasSubstr("1 clean, 1 with warnings"));
    EXPECT_THAT(check({"--strict"}, {"client", "odd"}, 2), HasSubstr("1 with warnings"));
}

TEST_F(CheckManyTest, OfOneIsThatOfAnInstallation) {
    EXPECT_EQ(portable(check({}, {"client"}, 0)), "client: nothing found\n");
    EXPECT_THAT(check({}, {"none"}, 64), HasSubstr("no launcher at none"));
    EXPECT_THAT(check({"--install", "client"}, {"odd"}, 64), HasSubstr("takes neither"));
}

// One descriptor is left for the loader, none for a pipe.
TEST_F(CheckManyTest, ThatNoProcessCanBeMadeIsToldAsThat) {
    const std::string text = check({}, {"client", "odd"}, 2, "exec 3>&-; ulimit -n 4");
    EXPECT_THAT(
        text,
        HasSubstr("✗ client: no process to check client: " + std::string(strerror(EMFILE)) + "\n"));
}

TEST(CheckMany, AnEndWithoutReportIsToldWithItsReason) {
    // As waitpid(2) has them: the signal in front, the exit status behind.
    EXPECT_EQ(whyUnchecked("a", SIGSEGV), "the check of a was ended by signal 11");
    EXPECT_EQ(whyUnchecked("a", 70 << 8),
              "the check of a ended with status 70 and told nothing that can be read");
    EXPECT_EQ(whyUnchecked("a", kNoLauncher << 8), "no launcher at a");
}

TEST_F(CheckManyTest, WhatWasNotRehearsedIsNamed) {
    variables_.emplace_back("TMPDIR=/nowhere");
    const std::string text = check({}, {"client", "odd"}, 1);
    for (const char* name : {"client", "odd"}) {
        EXPECT_THAT(text, HasSubstr("rcpinspect: the launch of " + folder_.narrow(name) +
                                    " was not rehearsed: "));
        EXPECT_THAT(text, HasSubstr("! " + std::string(name) + ": "));
    }
}

TEST_F(CheckManyTest, JsonHasAMemberForEach) {
    const Json told = Json::parse(check({"--format", "json"}, {"client", "odd", "none"}, 2));
    ASSERT_EQ(told["installations"].size(), 3U);
    EXPECT_EQ(told["installations"][0]["root"], "client");
    EXPECT_EQ(told["installations"][0]["findings"].size(), 0U);
    EXPECT_EQ(told["installations"][1]["findings"].size(), 1U);
    EXPECT_EQ(told["installations"][2]["problem"], "no launcher at none");
    EXPECT_EQ(told["summary"]["withErrors"], 1);
}

TEST_F(CheckManyTest, SarifHasARunForEach) {
    const Json told = Json::parse(check({"--format", "sarif"}, {"client", "odd", "none"}, 2));
    ASSERT_EQ(told["runs"].size(), 3U);
    EXPECT_EQ(told["version"], "2.1.0");
    EXPECT_EQ(told["runs"][1]["results"].size(), 1U);
    EXPECT_EQ(told["runs"][2]["invocations"][0]["executionSuccessful"], false);
}

TEST_F(CheckManyTest, IsRedactedLikeOne) {
    append("odd/rcp/rcplauncher.properties", "-Da.password=hunter2\nsecond.hunter2=1\n");
    EXPECT_THAT(check({"--format", "json"}, {"client", "odd"}, 1), HasSubstr("hunter2"));
    EXPECT_THAT(check({"--format", "json", "--redact"}, {"client", "odd"}, 1),
                ::testing::Not(HasSubstr("hunter2")));
}

TEST_F(CheckManyTest, HasNoPage) {
    EXPECT_THAT(check({"--format", "html", "x.html"}, {"client", "odd"}, 64),
                HasSubstr("a page is of one installation"));
}

}  // namespace
}  // namespace rcp::inspect::test
