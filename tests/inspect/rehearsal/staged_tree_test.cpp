#include "inspect/rehearsal/staged_tree.h"

#include "inspect/quiet_read.h"
#include "inspect/rehearsal/rehearsed_calls.h"
#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace rcp::inspect::test {
namespace {

using ::testing::HasSubstr;

class Staging : public ::testing::Test {
  protected:
    Staging() {
        for (const char* folder : {"opt/x-1", "etc", "usr"}) {
            std::filesystem::create_directories(folder_.path() / "stage" / folder);
        }
        folder_.write("stage/opt/x-1/file", "staged");
        EXPECT_TRUE(stage(root_));
    }
    ~Staging() override { stage("/"); }
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;
    Staging(Staging&&) = delete;
    Staging& operator=(Staging&&) = delete;

    const InstalledCalls quiet_{quietCalls()};
    rcp::test::TestFolder folder_;
    std::string root_ = std::filesystem::canonical(folder_.path()).string() + "/stage";
};

TEST_F(Staging, WhatTheTreeHoldsIsReadFromIt) {
    EXPECT_EQ(placeOf("/opt/x-1/file"), root_ + "/opt/x-1/file");
    EXPECT_EQ(readQuietly("/opt/x-1/file"), "staged");
    EXPECT_EQ(pathOfPlace(root_ + "/opt/x-1/file"), "/opt/x-1/file");
    EXPECT_EQ(pathOfPlace(root_ + "-2/file"), root_ + "-2/file");
    EXPECT_TRUE(isStaged("/opt/x-1"));
}

TEST_F(Staging, WhatItDoesNotHoldIsTheSystems) {
    const std::string outside = folder_.narrow("outside");
    folder_.write("outside", "system");
    EXPECT_EQ(placeOf(outside), outside);
    EXPECT_EQ(readQuietly(outside), "system");
    EXPECT_FALSE(isStaged(outside));
}

TEST_F(Staging, LinksLeadThroughTheTree) {
    std::filesystem::create_symlink("/opt/x-1", root_ + "/opt/x");
    std::filesystem::create_symlink("../../../../../opt/x/file", root_ + "/opt/y");
    EXPECT_EQ(placeOf("/opt/x/file"), root_ + "/opt/x-1/file");
    EXPECT_EQ(placeOf("/opt/y"), root_ + "/opt/x-1/file");
    EXPECT_EQ(placeOf("/opt/y", LastLink::kKept), root_ + "/opt/y");
    EXPECT_EQ(placeOf("/opt/x/", LastLink::kKept), root_ + "/opt/x-1");
}

TEST_F(Staging, AWayThatEndsLeadsNowhere) {
    std::filesystem::create_symlink("loop", root_ + "/opt/loop");
    for (const char* path : {"", "/opt/x-1/none/file", "/opt/x-1/file/below", "/opt/loop"}) {
        EXPECT_EQ(placeOf(path), "") << path;
        EXPECT_FALSE(isThere(path)) << path;
    }
}

TEST_F(Staging, SettingsOfTheMachineThatMakesThePackageDoNotCount) {
    EXPECT_EQ(placeOf("/etc/passwd"), root_ + "/etc/passwd");
    EXPECT_FALSE(isThere("/etc/passwd"));
    EXPECT_EQ(placeOf("/etc/ld.so.cache"), "/etc/ld.so.cache");
    std::filesystem::remove(root_ + "/etc");
    EXPECT_FALSE(isThere("/etc/passwd"));
}

TEST_F(Staging, AnInstallationIsOnlyWhatIsStaged) {
    std::filesystem::create_directories(root_ + folder_.narrow("client"));
    std::filesystem::create_directories(folder_.path() / "client");
    folder_.write("client/old", "");
    const std::string installation = folder_.narrow("client");
    folder_.write("stage" + installation + "/new", "");
    EXPECT_EQ(entryNames(installation), (std::set<std::string>{"new", "old"}));
    stageAlone(installation);
    EXPECT_FALSE(isThere(installation + "/old"));
    EXPECT_EQ(entryNames(installation), std::set<std::string>{"new"});
}

TEST_F(Staging, ForAWhileItIsNotThere) {
    {
        const Unstaged own;
        EXPECT_EQ(placeOf("/opt/x-1/file"), "/opt/x-1/file");
        EXPECT_TRUE(isThere("/etc/passwd"));
    }
    EXPECT_EQ(placeOf("/opt/x-1/file"), root_ + "/opt/x-1/file");
}

TEST_F(Staging, NeedsAFolder) {
    EXPECT_FALSE(stage(root_ + "/none"));
    EXPECT_FALSE(stage(root_ + "/opt/x-1/file"));
}

// The sample installation, which names its own folder in its settings, staged or in its place.
class StagedInstallation : public ExplainTest {
  protected:
    struct Told {
        int status = 0;
        std::string text;  // of both streams
    };

    [[nodiscard]] Told told(const Words& words) const {
        Words all{"/bin/sh", "-c", "exec \"$@\" 2>&1", "sh", seen(INSPECT_PROGRAM)};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.end(), {"--install", installation()});
        Program program(all, launchEnvironment());
        std::string text = program.rest();
        static const std::regex time("[0-9]{8}_[0-9]{6}_[0-9]{3}|[0-9]+ MB free");
        return {program.wait(), std::regex_replace(text, time, "TIME")};
    }
    [[nodiscard]] Told toldOfStaged(Words words) const {
        words.insert(words.end(), {"--root", stage_});
        return told(words);
    }
    void stageIt() const {
        std::filesystem::create_directories(
            std::filesystem::path(stage_ + installation()).parent_path());
        std::filesystem::rename(installation(), stage_ + installation());
    }

    std::string stage_ = folder_.narrow("stage");
};

const Words kCommands[] = {
    {"doctor"},
    {"doctor", "--format", "json"},
    {"explain", "--all"},
    {"explain", "--format", "json"},
    {"explain", "--redact", "--all"},
    {"check"},
    {"check", "--format", "json"},
    {"check", "--format", "sarif"},
    {"config"},
    {"config", "--files"},
    {"why", "-Xmx"},
    {"why", "plugincustomization"},
    {"status"},
};

TEST_F(StagedInstallation, IsToldOfAsIfItWereInItsPlace) {
    // What is said of a fault names paths, too.
    std::filesystem::remove(folder_.path() / "client/rcp/eclipse/plugins/sample.report.jar");
    std::vector<Told> inPlace;
    for (const Words& words : kCommands) {
        inPlace.push_back(told(words));
    }
    EXPECT_THAT(inPlace.front().text, HasSubstr("sample.report"));
    stageIt();
    std::size_t index = 0;
    for (const Words& words : kCommands) {
        const Told staged = toldOfStaged(words);
        const std::string name = words.front() + " " + words.back();
        EXPECT_EQ(staged.status, inPlace[index].status) << name;
        EXPECT_EQ(staged.text, inPlace[index++].text) << name;
        EXPECT_EQ(staged.text.find(stage_), std::string::npos) << name;
    }
}

TEST_F(StagedInstallation, IsLaunchedAsWasExplained) {
    stageIt();
    const Json told = Json::parse(toldOfStaged({"explain", "--format", "json"}).text);
    EXPECT_EQ(told["outcome"]["kind"], "execv");
    std::filesystem::rename(stage_ + installation(), installation());
    ASSERT_EQ(launch(), 0);
    for (const Json& element : told["elements"]) {
        EXPECT_TRUE(hasStarted(element["text"])) << element;
    }
    EXPECT_TRUE(hasElement(told, "-Dosgi.install.area=" + installation() + "/rcp/eclipse"));
}

TEST_F(StagedInstallation, IsComparedWithTheOneThatIsInstalled) {
    std::filesystem::create_directories(
        std::filesystem::path(stage_ + installation()).parent_path());
    std::filesystem::copy(installation(), stage_ + installation(),
                          std::filesystem::copy_options::recursive);
    const Words words{"diff", "--with", installation()};
    EXPECT_EQ(toldOfStaged(words).status, 0) << toldOfStaged(words).text;
    append("stage" + installation() + "/rcp/rcplauncher.properties", "-Dnew=1\n");
    folder_.write("client/rcp/gone", "");
    const Told different = toldOfStaged(words);
    EXPECT_EQ(different.status, 1);
    EXPECT_THAT(different.text, HasSubstr("+ -Dnew=1"));
    EXPECT_THAT(different.text, HasSubstr("- rcp/gone"));
    EXPECT_EQ(different.text.find(stage_), std::string::npos);
}

TEST_F(StagedInstallation, IsMailedAsIfItWereInItsPlace) {
    stageIt();
    const std::string archive = folder_.narrow("report.zip");
    const Told made = toldOfStaged({"report", "--show-secrets", "-o", archive});
    EXPECT_EQ(made.status, 0) << made.text;
    EXPECT_THAT(folder_.read("report.zip"), HasSubstr("plugincustomization"));
    EXPECT_EQ(folder_.read("report.zip").find(stage_), std::string::npos);
}

TEST_F(StagedInstallation, ManyAreCheckedAtOnce) {
    stageIt();
    Program program({seen(INSPECT_PROGRAM), "check", "--root", stage_, "/nowhere", installation()},
                    launchEnvironment());
    EXPECT_THAT(program.rest(), HasSubstr("✓ " + installation() + ": nothing found\n"));
    EXPECT_EQ(program.wait(), 2);
}

TEST_F(StagedInstallation, IsNotLookedForOnTheRunningSystem) {
    std::filesystem::create_directories(stage_);
    const Told nothing = toldOfStaged({"explain"});
    EXPECT_EQ(nothing.status, 64);
    EXPECT_THAT(nothing.text, HasSubstr("no launcher at " + installation() + " of the tree in"));
}

TEST_F(StagedInstallation, IsNotStarted) {
    stageIt();
    EXPECT_EQ(toldOfStaged({"check", "--try-jvm"}).status, 64);
    EXPECT_THAT(told({"check", "--root", folder_.narrow("none")}).text, HasSubstr("no folder "));
}

}  // namespace
}  // namespace rcp::inspect::test
