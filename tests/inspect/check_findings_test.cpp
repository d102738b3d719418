// For every finding an installation that has it and one that has not.
#include "check_fixture.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <set>

namespace rcp::inspect {
namespace {

std::vector<Case> allCases() {
    std::vector<Case> all;
    for (const auto& group : {lineCases(), keyCases(), valueCases(), placeholderCases(), jvmCases(),
                              extensionCases(), fileCases(), handOffCases()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

std::string shown(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += std::string(finding.rule->code) + " " + finding.file + ":" +
                std::to_string(finding.line) + " " + finding.message + "\n";
    }
    return text;
}

std::size_t expectedLine(const Case& one, std::size_t ownLines) {
    return one.line < 0 ? static_cast<std::size_t>(-1 - one.line)
                        : ownLines + static_cast<std::size_t>(one.line);
}

class CheckFinding : public ::testing::TestWithParam<Case> {
  protected:
    // Which cases set.
    void TearDown() override {
        unsetenv("JAVA_TOOL_OPTIONS");
        unsetenv("JDK_JAVA_OPTIONS");
    }
};

TEST(CheckFindings, NoneInAnInstallationWithoutMistakes) {
    EXPECT_EQ(shown(Maker().check()), "");
}

TEST_P(CheckFinding, IsReportedWhereItIs) {
    const Maker maker;
    const bool hasLines = std::string_view(GetParam().file).ends_with(".properties");
    const std::size_t line =
        expectedLine(GetParam(), hasLines ? maker.lineCount(GetParam().file) : 0);
    GetParam().with(maker);
    const std::vector<Finding> findings = maker.check();
    EXPECT_TRUE(std::any_of(findings.begin(), findings.end(),
                            [&](const Finding& finding) {
                                return finding.rule->code == std::string_view(GetParam().code) &&
                                       finding.file == GetParam().file && finding.line == line;
                            }))
        << GetParam().code << " " << GetParam().file << ":" << line << " is not among\n"
        << shown(findings);
}

TEST_P(CheckFinding, IsNotReportedWithoutIt) {
    const Maker maker;
    GetParam().without(maker);
    const std::vector<Finding> findings = maker.check();
    EXPECT_TRUE(std::none_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.rule->code == std::string_view(GetParam().code);
    })) << shown(findings);
}

INSTANTIATE_TEST_SUITE_P(Of, CheckFinding, ::testing::ValuesIn(allCases()), [](const auto& info) {
    return std::string(info.param.code) + info.param.name;
});

// Whoever looks for a file that is there does not mend what it suffers from.
TEST(CheckFindings, CallNothingMissingThatIsThere) {
    const Maker maker;
    const std::string jar = std::string(kBaseFolder) + "/launcher.jar";
    isLinkToItself(jar)(maker);
    std::size_t told = 0;
    for (const Finding& finding : maker.check()) {
        if (finding.message.find("launcher.jar") != std::string::npos) {
            EXPECT_NE(finding.message.find(std::string("cannot be read: ") + strerror(ELOOP)),
                      std::string::npos)
                << finding.message;
            ++told;
        }
    }
    EXPECT_GT(told, 0U);
}

TEST(CheckFindings, EveryOneHasATest) {
    std::set<std::string> tested;
    for (const Case& one : allCases()) {
        tested.insert(one.code);
    }
    std::set<std::string> known;
    for (const FindingRule& rule : findingRules()) {
        const std::string_view code = rule.code;
        // check_bundle_test.cpp, check_many_test.cpp, check_report_test.cpp, rehearsed_end_test.cpp, room_test.cpp,
        // locale_test.cpp and doctor_test.cpp have these.
        if (!code.starts_with("RI7") && code != "RI504" && code != "RI505" && code != "RI506" &&
            code != "RI609" && code != "RI810" && code != "RI814" && code != "RI815") {
            known.insert(rule.code);
        }
    }
    EXPECT_EQ(tested, known);
}

}  // namespace
}  // namespace rcp::inspect
