// What check says of a launch that ends, against what the launch then does.
#include "inspect/handoff/rehearsed_end.h"

#include "inspect/check/groups.h"
#include "tests/inspect/check_fixture.h"
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

namespace fs = std::filesystem;

class RehearsedEnd : public test::StatusTest {
  protected:
    static constexpr const char* kMasterIni =
        "client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini";

    // "CODE FILE:LINE MESSAGE" of each error.
    [[nodiscard]] std::vector<std::string> errors(const test::Words& arguments = {}) const {
        test::Words words{test::seen(INSPECT_PROGRAM),
                          "check",
                          "--install",
                          installation(),
                          "--format",
                          "json",
                          "--"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        test::Program program(words, environment());
        const test::Json told = test::Json::parse(program.rest());
        std::vector<std::string> all;
        for (const test::Json& finding : told["findings"]) {
            if (finding["level"] == "error") {
                all.push_back(finding["code"].get<std::string>() + " " +
                              finding["file"].get<std::string>() + ":" + finding["line"].dump() +
                              " " + finding["message"].get<std::string>());
            }
        }
        EXPECT_EQ(program.wait(), all.empty() ? 0 : 2) << told;
        return all;
    }
    // That the one error is this, and that the launch ends so.
    void expectEnd(const std::string& error, const test::Words& arguments = {}) const {
        const std::vector<std::string> all = errors(arguments);
        ASSERT_EQ(all.size(), 1U);
        EXPECT_NE(all[0].find(error), std::string::npos) << all[0];
        EXPECT_EQ(launch(arguments), 255);
    }
};

TEST_F(RehearsedEnd, IsNoneOfASoundInstallation) {
    EXPECT_TRUE(errors().empty());
    EXPECT_EQ(launch(), 0);
}

TEST_F(RehearsedEnd, OfAWorkspaceThatIsAFileIsFound) {
    folder_.write("home/workspace/ann", "");
    expectEnd(" ZYPRA0083E: Unable to create " + folder_.narrow("home/workspace/ann"));
    EXPECT_TRUE(errors()[0].starts_with("RI505 rcp/rcplauncher.properties:"));
}

TEST_F(RehearsedEnd, NamesTheArgumentThatHasBroughtItAbout) {
    folder_.write("home/file", "");
    expectEnd(" (argument 2)", {"-data", folder_.narrow("home/file") + "/ws"});
}

TEST_F(RehearsedEnd, OfAMasterThatIsNoFileIsFound) {
    fs::remove(folder_.path() / kMasterIni);
    ASSERT_EQ(mkfifo(folder_.narrow(kMasterIni).c_str(), 0600), 0);
    expectEnd("RI505 rcp/rcplauncher.properties:0 ZYPRA0190E");
}

TEST_F(RehearsedEnd, IsToldBesideAnErrorThatHasNothingToDoWithIt) {
    fs::remove(folder_.path() / kMasterIni);
    ASSERT_EQ(mkfifo(folder_.narrow(kMasterIni).c_str(), 0600), 0);
    const std::vector<std::string> all = errors({"-config", "nope"});
    ASSERT_EQ(all.size(), 2U);
    EXPECT_TRUE(all[0].starts_with("RI504 ")) << all[0];
    EXPECT_TRUE(all[1].starts_with("RI505 ")) << all[1];
    EXPECT_EQ(launch({"-config", "nope"}), 255);
}

TEST_F(RehearsedEnd, IsNotToldWhereAFindingTellsTheCause) {
    fs::remove(folder_.path() / kMasterIni);
    expectEnd("RI601 ");
}

TEST_F(RehearsedEnd, OfAVariableThatIsNotSetIsAMatterOfWhereItIsStarted) {
    append(kProperties, "vmarg.x=${env.NOT_SET_HERE}\n");
    test::Program program({test::seen(INSPECT_PROGRAM), "check", "--install", installation()},
                          environment());
    const std::string text = program.rest();
    EXPECT_NE(text.find("warning RI302"), std::string::npos) << text;
    EXPECT_EQ(program.wait(), 1) << text;
    EXPECT_EQ(launch(), 255);
}

std::vector<Case> casesOfAllGroups() {
    std::vector<Case> all;
    for (const auto& group : {lineCases(), keyCases(), valueCases(), placeholderCases(), jvmCases(),
                              extensionCases(), fileCases(), handOffCases()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

TEST(RehearsedEndOfEveryCase, IsToldByOneFindingAlone) {
    for (const Case& one : casesOfAllGroups()) {
        const Maker maker;
        one.with(maker);
        const Options options = maker.options();
        const Examination examination = examine(options);
        Findings findings = findEverything(examination);
        const std::size_t before = findings.sorted().size();
        if (examination.file(kLauncherFile) != nullptr) {
            findInRehearsal(options, examination, findings);
        }
        EXPECT_EQ(findings.sorted().size(), before) << one.code << one.name;
    }
    unsetenv("JAVA_TOOL_OPTIONS");  // which some of them set
    unsetenv("JDK_JAVA_OPTIONS");
}

}  // namespace
}  // namespace rcp::inspect
