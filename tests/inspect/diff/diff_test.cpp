#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

#include <regex>

namespace rcp::inspect::test {
namespace {

class DiffTest : public StatusTest {
  protected:
    // The older one; it is compared with installation().
    static constexpr const char* kOldProperties = "old/rcp/rcplauncher.properties";

    int run(const Words& options, std::string& output) const {
        Words all{seen(INSPECT_PROGRAM), "diff", "--install", installation()};
        all.insert(all.end(), options.begin(), options.end());
        Program program(all, environment());
        output = program.rest();
        return program.wait();
    }
    [[nodiscard]] std::string same(const Words& options) const {
        std::string output;
        EXPECT_EQ(run(options, output), 0);
        return output;
    }
    [[nodiscard]] std::string differing(const Words& options) const {
        std::string output;
        EXPECT_EQ(run(options, output), 1) << output;
        return output;
    }
    // The same installation in another place.
    [[nodiscard]] std::string copy() const {
        const std::string other = folder_.narrow("old");
        std::filesystem::copy(installation(), other,
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::copy_symlinks);
        folder_.write(kOldProperties, std::regex_replace(folder_.read(kOldProperties),
                                                         std::regex(installation()), other));
        return other;
    }
    // The lines of one part of the text, in one.
    static std::string part(const std::string& text, const std::string& title) {
        const std::size_t at = text.find("\n" + title + "\n");
        if (at == std::string::npos) {
            return "no part " + title + " in:\n" + text;
        }
        const std::size_t begin = at + title.size() + 2;
        return text.substr(begin, text.find("\n\n", begin) + 1 - begin);
    }
};

TEST_F(DiffTest, ThePlaceOfAnInstallationIsNoDifference) {
    EXPECT_EQ(same({"--with", copy()}), "no difference\n");
}

TEST_F(DiffTest, WhatBothShareIsNoDifferenceWhereItNamesOneOfThem) {
    append(kProperties,
           "-Dshared=" + installation() + "/x\nenv.set.SHARED=" + installation() + "/x\n");
    ASSERT_EQ(launch(), 0);  // the user's file names the installation now
    const std::string old = copy();
    folder_.write(kOldProperties,
                  std::regex_replace(folder_.read(kOldProperties), std::regex(old + "/x"),
                                     installation() + "/x"));
    std::string output;
    EXPECT_EQ(run({"--with", old}, output), 0) << output;
}

TEST_F(DiffTest, WhatIsOldIsMinusAndWhatIsNewIsPlus) {
    const std::string old = copy();
    replaceIn(kProperties, "-Xmx128m", "-Xmx99m");
    append(kProperties, "vmarg.zzz=-Dmore=1\nenv.set.MORE=yes\n");
    const std::string text = differing({"--with", old});
    EXPECT_TRUE(std::regex_search(
        text, std::regex("^- " + old + ", level 1, settings of .* UTC\n\\+ " + installation() +
                         ", level 1, settings of .* UTC\n"
                         "both: starts the platform\n")))
        << text;
    EXPECT_TRUE(std::regex_match(
        part(text, "Command line"),
        std::regex("- -Xmx128m    \\(rcplauncher.properties:[0-9]+ vmarg.sample.heap\\)\n"
                   "\\+ -Xmx99m    \\(rcplauncher.properties:[0-9]+ vmarg.sample.heap\\)\n"
                   "\\+ -Dmore=1    \\(rcplauncher.properties:[0-9]+ vmarg.zzz\\)\n")))
        << text;
    EXPECT_TRUE(std::regex_match(
        part(text, "Environment"),
        std::regex("\\+ MORE=yes    \\(rcplauncher.properties:[0-9]+ env.set.MORE\\)\n")))
        << text;
    EXPECT_TRUE(std::regex_match(
        part(text, "Properties"),
        std::regex("\\+ env.set.MORE=yes    \\(rcplauncher.properties:[0-9]+\\)\n"
                   "- vmarg.sample.heap=-Xmx128m    \\(rcplauncher.properties:[0-9]+\\)\n"
                   "\\+ vmarg.sample.heap=-Xmx99m    \\(rcplauncher.properties:[0-9]+\\)\n"
                   "\\+ vmarg.zzz=-Dmore=1    \\(rcplauncher.properties:[0-9]+\\)\n")))
        << text;
}

TEST_F(DiffTest, TheOutcomeStandsInFront) {
    const std::string old = copy();
    replaceIn(kProperties, "provisioning=false", "provisioning=true");
    replaceIn(kProperties, "manifest.version=1", "manifest.version=2");
    const std::string text = differing({"--with", old});
    EXPECT_NE(text.find("UTC\nthe first starts the platform; the second provisions first\n"),
              std::string::npos)
        << text;
}

TEST_F(DiffTest, FilesAreComparedByWhatTheyHold) {
    folder_.write("client/rcp/gone.jar", "x");
    folder_.write("client/rcp/same.txt", "lies in " + installation() + "/rcp\n");
    std::filesystem::create_symlink(installation() + "/rcp", folder_.path() / "client/link");
    folder_.write("client/rcp/edited.ini", "a");
    const std::string old = copy();
    folder_.write("old/rcp/same.txt", "lies in " + old + "/rcp\n");
    std::filesystem::remove(folder_.path() / "old/link");
    std::filesystem::create_symlink(old + "/rcp", folder_.path() / "old/link");
    std::filesystem::remove(folder_.path() / "client/rcp/gone.jar");
    folder_.write("client/rcp/new.jar", "x");
    folder_.write("client/rcp/edited.ini", "b");
    EXPECT_EQ(part(differing({"--with", old}) + "\n", "Files"),
              "~ rcp/edited.ini\n- rcp/gone.jar\n+ rcp/new.jar\n");
}

TEST_F(DiffTest, OfALongListTheBeginningIsShownUnlessAllIsAskedFor) {
    const std::string old = copy();
    for (int i = 0; i < 30; ++i) {
        folder_.write("client/new/" + std::to_string(i), "x");
    }
    EXPECT_NE(differing({"--with", old}).find("\n  … and 10 more; --all lists them\n"),
              std::string::npos);
    const std::string whole = differing({"--with", old, "--all"});
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '+'), 31) << whole;
}

TEST_F(DiffTest, FindingsThatCameOrWentAreTold) {
    append(kProperties, "color=red\n");
    const std::string old = copy();
    replaceIn(kProperties, "color=red", "colour=red");
    const std::string text = part(differing({"--with", old}) + "\n", "Findings of check");
    EXPECT_TRUE(std::regex_match(
        text,
        std::regex("- RI202 rcp/rcplauncher.properties:[0-9]+: nothing looks at \"color\"\n"
                   "\\+ RI202 rcp/rcplauncher.properties:[0-9]+: nothing looks at \"colour\"\n")))
        << text;
}

TEST_F(DiffTest, TheUsersCopiesAreComparedWithTheNewMasters) {
    const std::string old = copy();
    ASSERT_EQ(launch(), 0);
    append("client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini",
           "sample.added=yes\n");
    const std::string text = part(differing({"--with", old}), "User's copies of master files");
    EXPECT_TRUE(std::regex_match(
        text,
        std::regex("\\+ .*/.config/config.ini: \"sample.added\" is missing in the user's copy; its "
                   "master has \"yes\"\n")))
        << text;
}

TEST_F(DiffTest, TheRecordedLastLaunchIsComparedElementByElement) {
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(same({"--since-last"}), "no difference\n");
    replaceIn(kProperties, "-Xmx128m", "-Xmx99m");
    const std::string text = differing({"--since-last"});
    EXPECT_TRUE(
        std::regex_search(text, std::regex("^- the launch of .*, recorded in .*rcplauncher.log\n")))
        << text;
    EXPECT_TRUE(std::regex_match(
        part(text + "\n", "Command line"),
        std::regex("- -Xmx128m\n\\+ -Xmx99m    \\(rcplauncher.properties:.*\\)\n")))
        << text;
}

TEST_F(DiffTest, TheRecordedLaunchIsComparedWithOneOfItsArguments) {
    ASSERT_EQ(launch({"-config", "sample", "-first", "one, two", "", "x=y"}), 0);
    EXPECT_EQ(same({"--since-last"}), "no difference\n");
    EXPECT_EQ(same({"--since-last", "--", "-ignored"}), "no difference\n");
}

TEST_F(DiffTest, TheWorkspaceOfTheRecordedLaunchMayBeNamed) {
    ASSERT_EQ(launch({"-data", folder_.narrow("elsewhere")}), 0);
    std::string output;
    EXPECT_EQ(run({"--since-last"}, output), 70);
    EXPECT_EQ(same({"--since-last", "--", "-data", folder_.narrow("elsewhere")}),
              "no difference\n");
}

TEST_F(DiffTest, JsonNamesBothSidesAndEveryDifference) {
    const std::string old = copy();
    append(kProperties, "vmarg.zzz=-Dmore=1\n");
    const Json result = Json::parse(differing({"--with", old, "--format", "json"}));
    EXPECT_EQ(result["layout"], 1);
    EXPECT_EQ(result["command"], "diff");
    EXPECT_EQ(result["isDifferent"], true);
    EXPECT_EQ(result["first"]["installation"], old);
    EXPECT_EQ(result["second"]["installation"], installation());
    EXPECT_EQ(result["second"]["outcome"], Json({{"kind", "execv"}, {"role", "main"}}));
    ASSERT_EQ(result["elements"].size(), 1U);
    EXPECT_EQ(result["elements"][0]["change"], "added");
    EXPECT_EQ(result["elements"][0]["text"], "-Dmore=1");
    EXPECT_EQ(result["elements"][0]["source"]["key"], "vmarg.zzz");
    ASSERT_EQ(result["properties"].size(), 1U);
    EXPECT_EQ(result["properties"][0]["name"], "vmarg.zzz");
    for (const char* part : {"environment", "copies", "files", "findings"}) {
        EXPECT_EQ(result[part], Json::array()) << part;
    }
}

TEST_F(DiffTest, ThePageHoldsTheSame) {
    const std::string old = copy();
    append(kProperties, "vmarg.zzz=-Dmore=1\n");
    EXPECT_EQ(differing({"--with", old, "--format", "html", folder_.narrow("page.html")}), "");
    EXPECT_NE(folder_.read("page.html").find("\"command\":\"diff\""), std::string::npos);
}

TEST_F(DiffTest, ALinkThatLeadsElsewhereIsAnotherFile) {
    const std::string old = copy();
    std::filesystem::create_symlink("rcp", folder_.path() / "old/link");
    std::filesystem::create_symlink("jre", installation() + "/link");
    EXPECT_EQ(part(differing({"--with", old}), "Files"), "~ link\n");
}

TEST_F(DiffTest, AFileThatBecameALinkIsToldAsThatAndTheOtherWay) {
    folder_.write("client/held", "x");
    std::filesystem::create_symlink("held", folder_.path() / "client/first");
    folder_.write("client/second", "x");
    const std::string old = copy();
    for (const char* name : {"first", "second"}) {
        std::filesystem::remove(folder_.path() / "client" / name);
    }
    folder_.write("client/first", "x");
    std::filesystem::create_symlink("held", folder_.path() / "client/second");
    EXPECT_EQ(part(differing({"--with", old}), "Files"),
              "~ first    (is a file now)\n~ second    (is a link now)\n");
    const Json files = Json::parse(differing({"--with", old, "--format", "json"}))["files"];
    EXPECT_EQ(files[1], Json({{"change", "changed"}, {"path", "second"}, {"became", "link"}}));
}

// Whichever of them a launch comes to read.
TEST_F(DiffTest, OfSettingsItIsToldWhetherTheyAreThere) {
    folder_.write("client/jre/lib/jvm.properties", "# nothing\n");
    const std::string old = copy();
    const std::string settings = folder_.read(kProperties);
    replaceIn(kProperties, "rcp.install.id", "x");
    folder_.write("client/jre/lib/jvm.properties", "# nothing else\n");
    EXPECT_EQ(differing({"--with", old}).find("\nFiles\n"), std::string::npos);
    folder_.write(kProperties, settings);
    EXPECT_EQ(same({"--with", old}), "no difference\n");
    std::filesystem::remove(folder_.path() / "old/jre/lib/jvm.properties");
    EXPECT_EQ(part(differing({"--with", old}) + "\n", "Files"), "+ jre/lib/jvm.properties\n");
}

TEST_F(DiffTest, TheUsersAreaIsNoFileOfAnInstallation) {
    replaceIn(kProperties, "install.configuration=user", "install.configuration=service");
    const std::string old = copy();
    folder_.write("client/eclipse/.config/config.ini", "x");
    folder_.write("client/eclipse/.workspace/x", "x");
    std::string output;
    (void)run({"--with", old, "--format", "json"}, output);
    EXPECT_EQ(Json::parse(output)["files"], Json::array()) << output;
}

TEST_F(DiffTest, ALaunchWhosePlatformCannotStartIsToldFirst) {
    const std::string old = copy();
    replaceIn(kProperties, "jvm.libpath=/lib/server/libjvm.so", "jvm.libpath=/lib/libnone.so");
    EXPECT_NE(
        differing({"--with", old})
            .find("the first starts the platform; the second cannot start the platform: RI601"),
        std::string::npos);
}

TEST_F(DiffTest, ALaunchThatWouldFailIsNotTakenForOneWithoutElements) {
    const std::string old = copy();
    replaceIn(kProperties, "rcp.install.id", "x");
    EXPECT_NE(differing({"--with", old})
                  .find("the first starts the platform; the second ends with ZYPRA0016E"),
              std::string::npos);
    const Json result = Json::parse(differing({"--with", old, "--format", "json"}));
    EXPECT_TRUE(result["second"]["outcome"]["record"].get<std::string>().starts_with("ZYPRA0016E"));
    EXPECT_FALSE(result["first"]["outcome"].contains("record"));
}

TEST_F(DiffTest, ThatThePlatformCannotStartAnyMoreDiffersFromTheLastLaunch) {
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(same({"--since-last"}), "no difference\n");
    folder_.write("client/jre/lib/server/libjvm.so", "");
    EXPECT_NE(differing({"--since-last"})
                  .find("it started the platform; the next cannot start the platform: RI802"),
              std::string::npos);
}

TEST_F(DiffTest, WithoutAnythingToCompareWithItIsWrongUse) {
    std::string output;
    EXPECT_EQ(run({}, output), 64);
    EXPECT_EQ(run({"--since-last", "--with", installation()}, output), 64);
}

TEST_F(DiffTest, ARecordIsNotLookedForInAllOfALogThatNobodyReads) {
    ASSERT_EQ(launch(), 0);
    const std::string log = area("logs/rcplauncher.log");
    const std::string record = folder_.read(log);
    folder_.write(log, std::string(std::size_t{16} << 20U, '\n') + record);
    Program program({"/bin/sh", "-c", "exec \"$@\" 2>&1", "sh", seen(INSPECT_PROGRAM), "diff",
                     "--install", installation(), "--since-last"},
                    environment());
    const std::string output = program.rest();
    EXPECT_EQ(program.wait(), 70);
    EXPECT_NE(output.find("rcplauncher.log is too long"), std::string::npos) << output;
}

TEST_F(DiffTest, WithoutARecordedLaunchItFails) {
    std::string output;
    EXPECT_EQ(run({"--since-last"}, output), 70);
}

}  // namespace
}  // namespace rcp::inspect::test
