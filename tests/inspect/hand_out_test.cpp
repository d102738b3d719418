#include "inspect/hand_out.h"

#include "inspect/json/json.h"
#include "inspect/making.h"
#include "tests/unit/fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <regex>

namespace rcp::inspect {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

// A command that found a difference.
int tell(const Options& options) {
    if (options.format == Format::kText) {
        std::cout << "db.password=hunter2\n";
    } else {
        std::cout << R"({"command": "diff", "name": "db.password", "value": "hunter2"})"
                  << "\n";
    }
    std::cerr << "rcpinspect: token=hunter2\n";
    return kDifferent;
}

int fail(const Options& /*options*/) {
    return kFailure;
}

// One whose last lines are unfinished, and give away what is in those before.
int tellUnfinished(const Options& /*options*/) {
    std::cout << "found dravidon88\n" << std::flush << "at token=dravidon88";
    std::cerr << "rcpinspect: found merkeval99\n" << std::flush << "at token=merkeval99";
    return kSuccess;
}

// One whose errors give away what it tells.
int tellInErrors(const Options& options) {
    if (options.format == Format::kText) {
        std::cout << "found kordelan77\n";
    } else {
        std::cout << R"({"command": "diff", "text": "found kordelan77"})";
    }
    std::cerr << "rcpinspect: token=kordelan77\n";
    return kSuccess;
}

class HandOut : public rcp::test::LauncherTest {
  protected:
    HandOut() { CaptureStderr(); }
    ~HandOut() override { (void)GetCapturedStderr(); }

    [[nodiscard]] std::string text(bool isRedacted, Format format) {
        options_.isRedacted = isRedacted;
        options_.format = format;
        CaptureStdout();
        EXPECT_EQ(handOut(tell, options_), kDifferent);
        return GetCapturedStdout();
    }
    [[nodiscard]] std::string page(bool isRedacted) {
        options_.page = folder_.narrow("page.html");
        EXPECT_EQ(text(isRedacted, Format::kHtml), "");
        return folder_.read("page.html");
    }

    Options options_;
};

TEST_F(HandOut, LeavesATextAsItIsUnlessItIsToBeRedacted) {
    EXPECT_EQ(text(false, Format::kText), "db.password=hunter2\n");
    const std::string redacted = text(true, Format::kText);
    EXPECT_THAT(redacted, testing::StartsWith("db.password=<redacted:"));
    EXPECT_THAT(redacted, HasSubstr("\nRedacted:\ndb.password "));
    EXPECT_THAT(redacted, Not(HasSubstr("hunter2")));
}

TEST_F(HandOut, RedactsADocumentAndListsWhatWasRedacted) {
    const auto told = nlohmann::json::parse(text(true, Format::kJson));
    EXPECT_THAT(std::string(told["value"]), testing::StartsWith("<redacted:"));
    EXPECT_EQ(told["redacted"][0]["name"], "db.password");
    EXPECT_EQ(told["redacted"][0]["count"], 2) << "one of them is in the errors";
}

TEST_F(HandOut, RedactsErrorsToo) {
    (void)text(true, Format::kText);
    const std::string errors = GetCapturedStderr();
    CaptureStderr();
    EXPECT_THAT(errors, testing::StartsWith("rcpinspect: token=<redacted:"));
}

TEST_F(HandOut, RedactsAnUnfinishedLineAndWhatItGivesAway) {
    options_.isRedacted = true;
    CaptureStdout();
    EXPECT_EQ(handOut(tellUnfinished, options_), kSuccess);
    const std::string output = GetCapturedStdout();
    const std::string errors = GetCapturedStderr();
    CaptureStderr();
    const std::string mark = "<redacted:[0-9a-f]{6}>";
    const std::regex lines("(rcpinspect: )?found " + mark + "\nat token=" + mark + "([^]*)");
    EXPECT_TRUE(std::regex_match(output, lines)) << output;
    EXPECT_TRUE(std::regex_match(errors, lines)) << errors;
    EXPECT_THAT(output, HasSubstr("\nRedacted:\n"));
}

TEST_F(HandOut, KnowsAndListsWhatItsErrorsGiveAway) {
    options_.isRedacted = true;
    for (const Format format : {Format::kText, Format::kJson}) {
        options_.format = format;
        CaptureStdout();
        EXPECT_EQ(handOut(tellInErrors, options_), kSuccess);
        const std::string output = GetCapturedStdout();
        EXPECT_TRUE(std::regex_search(output, std::regex("found <redacted:[0-9a-f]{6}>")))
            << output;
        const bool isListed =
            format == Format::kText
                ? std::regex_search(output, std::regex("\ntoken [0-9a-f]{6}, 2 times\n"))
                : nlohmann::json::parse(output)["redacted"][0]["count"] == 2;
        EXPECT_TRUE(isListed) << output;
    }
}

TEST_F(HandOut, MakesThePageOfTheDocumentAndSaysHowItWasMade) {
    const std::string redacted = page(true);
    EXPECT_THAT(redacted, HasSubstr(R"("made":{"locale":)"));
    EXPECT_THAT(redacted, Not(HasSubstr("hunter2")));
    EXPECT_THAT(redacted, Not(HasSubstr(R"("host")")));
    const std::string whole = page(false);
    EXPECT_THAT(whole, HasSubstr("hunter2"));
    EXPECT_THAT(whole, HasSubstr(R"("host":")" + hostName()));
}

TEST_F(HandOut, APageThatCannotBeWrittenIsSaid) {
    options_.page = folder_.narrow("missing/page.html");
    options_.format = Format::kHtml;
    EXPECT_EQ(handOut(tell, options_), kCannotCreate);
    const std::string errors = GetCapturedStderr();
    CaptureStderr();
    EXPECT_THAT(errors, HasSubstr("missing/page.html: "));
}

TEST_F(HandOut, OfACommandThatFailsThereIsNoPage) {
    options_.page = folder_.narrow("page.html");
    options_.format = Format::kHtml;
    EXPECT_EQ(handOut(fail, options_), kFailure);
    EXPECT_FALSE(folder_.has("page.html"));
}

}  // namespace
}  // namespace rcp::inspect
