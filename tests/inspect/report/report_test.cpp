#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>

namespace rcp::inspect::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ReportTest : public ExplainTest {
  protected:
    // What it prints.
    [[nodiscard]] std::string report(const Words& options = {}, int status = 0,
                                     const Words& variables = {}) const {
        Words words{"/bin/sh",
                    "-c",
                    "cd \"$0\" && exec \"$@\" 2>&1",
                    folder_.narrow(),
                    seen(INSPECT_PROGRAM),
                    "report",
                    "--install",
                    installation()};
        words.insert(words.end(), options.begin(), options.end());
        Words environment = launchEnvironment();
        environment.insert(environment.begin(), variables.begin(), variables.end());
        Program program(words, environment);
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return output;
    }
    // The archive with its bytes as they are: nothing is compressed.
    [[nodiscard]] std::string archive(const Words& options = {}) const {
        std::filesystem::remove(folder_.path() / "x.zip");
        Words all{"-o", "x.zip"};
        all.insert(all.end(), options.begin(), options.end());
        (void)report(all);
        return folder_.read("x.zip");
    }
};

TEST_F(ReportTest, HoldsWhatAllCommandsTellAndTheLogs) {
    folder_.write(area("logs/rcplauncher.log"), "ZYPRA0133I: the launcher's log\n");
    folder_.write(area(".metadata/.log"), "!SESSION the platform's log\n");
    const std::string bytes = archive();
    for (const char* name :
         {"about.txt", "doctor.txt", "doctor.json", "explain.txt", "explain.json", "check.txt",
          "check.json", "status.txt", "status.json", "config.txt", "config.json", "files.txt",
          "logs/1-rcplauncher.log", "logs/2-platform.log", "redacted.txt"}) {
        EXPECT_TRUE(std::regex_search(
            bytes, std::regex("rcpinspect-[0-9]{4}-[0-9]{2}-[0-9]{2}/" + std::string(name))))
            << name;
    }
    EXPECT_THAT(bytes, HasSubstr("ZYPRA0133I: the launcher's log\n"));
    EXPECT_THAT(bytes, HasSubstr("!SESSION the platform's log\n"));
    EXPECT_THAT(bytes, HasSubstr("\"command\": \"status\""));
    EXPECT_THAT(bytes, HasSubstr("\nlauncher      "));
}

TEST_F(ReportTest, TakesADigestForAValueEverywhere) {
    append(kProperties, "vmarg.one=-Done.password=hunter2\n");
    folder_.write(area("logs/rcplauncher.log"), "Error: hunter2 was refused\n");
    const std::string bytes = archive();
    EXPECT_THAT(bytes, Not(HasSubstr("hunter2")));
    std::smatch found;
    ASSERT_TRUE(std::regex_search(bytes, found, std::regex("Error: (<redacted:[0-9a-f]{6}>) was")));
    EXPECT_THAT(bytes, HasSubstr("-Done.password=" + found[1].str()));
    EXPECT_THAT(archive({"--show-secrets"}), HasSubstr("Error: hunter2 was refused"));
}

TEST_F(ReportTest, NamesItsLogsWithoutWhatIsSecret) {
    append(kProperties, "vmarg.one=-Done.password=hunter2\n");
    folder_.write(area("logs/rcplauncher-ann-hunter2.log"), "ZYPRA0133I: a log\n");
    const std::string bytes = archive();
    EXPECT_THAT(bytes, Not(HasSubstr("hunter2")));
    EXPECT_TRUE(std::regex_search(
        bytes, std::regex("/logs/1-rcplauncher-user-redacted-[0-9a-f]{6}\\.log")));
}

TEST_F(ReportTest, TellsTheArgumentsByTheirNumbers) {
    const std::string bytes = archive({"--", "-token", "java", "-clean"});
    EXPECT_TRUE(std::regex_search(
        bytes,
        std::regex("\narguments\n   1  -token\n   2  <redacted:[0-9a-f]{6}>\n   3  -clean\n")));
}

TEST_F(ReportTest, NamesTheHostOnlyWhenAskedTo) {
    EXPECT_THAT(archive(), Not(HasSubstr("\nhost          ")));
    EXPECT_THAT(archive({"--host"}), HasSubstr("\nhost          "));
}

TEST_F(ReportTest, NeverReplacesAFile) {
    folder_.write("x.zip", "mine");
    EXPECT_THAT(report({"-o", "x.zip"}, 73), HasSubstr("x.zip: File exists"));
    EXPECT_EQ(folder_.read("x.zip"), "mine");
    const std::string first = report();
    const std::string second = report();
    const std::string name = first.substr(0, first.find(".zip"));
    EXPECT_THAT(name, ::testing::MatchesRegex("rcpinspect-[0-9]{4}-[0-9]{2}-[0-9]{2}"));
    EXPECT_THAT(second, ::testing::StartsWith(name + "-2.zip: "));
    EXPECT_TRUE(folder_.has(name + ".zip"));
}

TEST_F(ReportTest, IsForItsUsersEyes) {
    (void)archive();
    struct stat status {};
    ASSERT_EQ(stat(folder_.narrow("x.zip").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(ReportTest, IsMadeWhereNoLaunchCanBeRehearsed) {
    folder_.write("x.zip.tmp", "mine");
    (void)report({"-o", "x.zip"});
    EXPECT_EQ(folder_.read("x.zip.tmp"), "mine");
    (void)report({"-o", "y.zip"}, 0, {"TMPDIR=/nowhere"});
    EXPECT_THAT(folder_.read("y.zip"), HasSubstr("about.txt"));
    EXPECT_THAT(folder_.read("y.zip"), HasSubstr("errors.txt"));
}

TEST_F(ReportTest, ThatCannotBeWrittenLeavesNothing) {
    EXPECT_THAT(report({"-o", "missing/x.zip"}, 73), HasSubstr("missing/x.zip: "));
    EXPECT_FALSE(folder_.has("missing"));
}

}  // namespace
}  // namespace rcp::inspect::test
