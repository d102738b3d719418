#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace rcp::inspect::test {
namespace {

class DoctorTest : public StatusTest {
  protected:
    Words variables_;

    std::string run(const Words& options, int status) const {
        Words all{seen(INSPECT_PROGRAM), "doctor", "--install", installation()};
        all.insert(all.end(), options.begin(), options.end());
        Words environment = this->environment();
        environment.insert(environment.end(), variables_.begin(), variables_.end());
        Program program(all, environment);
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return output;
    }
    [[nodiscard]] Json answer(const std::string& question, int status,
                              const Words& arguments = {}) const {
        Words options{"--format", "json", "--"};
        options.insert(options.end(), arguments.begin(), arguments.end());
        const Json told = Json::parse(run(options, status));
        for (const Json& answer : told["answers"]) {
            if (answer["question"] == question) {
                return answer;
            }
        }
        ADD_FAILURE() << question << " is not asked";
        return {};
    }
    // The one problem of an answer, and that all others are good.
    [[nodiscard]] Json onlyProblem(const std::string& question, int status) const {
        const Json told = Json::parse(run({"--format", "json"}, status));
        Json found;
        for (const Json& answer : told["answers"]) {
            if (answer["question"] == question) {
                EXPECT_EQ(answer["problems"].size(), 1U) << answer.dump(1);
                found = answer["problems"][0];
            } else {
                EXPECT_EQ(answer["mark"], "good") << answer.dump(1);
            }
        }
        return found;
    }
};

TEST_F(DoctorTest, OfASoundInstallationEveryAnswerIsGoodAndOneLine) {
    const std::string text = run({}, 0);
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 24) << text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.starts_with("✓ ")) << line;
    }
    EXPECT_NE(text.find("\n✓ locale                  characters are "), std::string::npos) << text;
}

TEST_F(DoctorTest, IsWhatHappensWithoutACommand) {
    Program program(
        {"/bin/sh", "-c", "cd '" + installation() + "' && exec '" + seen(INSPECT_PROGRAM) + "'"},
        environment());
    EXPECT_EQ(program.rest(), run({}, 0));
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(DoctorTest, AWarningIsOddAndComesWithItsPlaceAndRemedy) {
    append(kProperties, "colour=red\n");
    const Json problem = onlyProblem("settings", 1);
    EXPECT_EQ(problem["mark"], "odd");
    EXPECT_EQ(problem["cause"], "RI202 nothing looks at \"colour\"");
    EXPECT_TRUE(problem["place"].get<std::string>().starts_with("rcp/rcplauncher.properties:"));
    EXPECT_EQ(problem["remedy"], "Correct its name, or take the entry out.");
    EXPECT_NE(run({}, 1).find("\n    -> Correct its name, or take the entry out.\n"),
              std::string::npos);
}

TEST_F(DoctorTest, OfManyProblemsTheWorstAreShown) {
    append(kProperties, "a.b=1\na.c=1\na.d=1\nvmarg.x=${prop.nothing}\n");
    const std::string text = run({}, 2);
    EXPECT_NE(text.find("RI301"), std::string::npos) << text;
    EXPECT_NE(text.find("… and 2 more; rcpinspect check lists them"), std::string::npos) << text;
}

TEST_F(DoctorTest, ALaunchThatEndsIsBadWithItsRecordAndRemedy) {
    std::filesystem::remove(folder_.path() / "client/rcp/plugin_customization.ini");
    const Json answered = answer("launch", 2);
    EXPECT_EQ(answered["mark"], "bad");
    EXPECT_TRUE(answered["problems"][0]["cause"].get<std::string>().starts_with("ZYPRA0050E"));
    EXPECT_NE(answered["problems"][0]["remedy"], "");
    EXPECT_EQ(launch(), 255);
}

TEST_F(DoctorTest, AFileThatIsThereAndCannotBeReadIsNotCalledMissing) {
    const std::string name = "client/rcp/plugin_customization.ini";
    std::filesystem::remove(folder_.path() / name);
    const auto cause = [&] {
        return answer("installation", 2)["problems"][0]["cause"].get<std::string>();
    };
    EXPECT_TRUE(cause().ends_with("\" is missing")) << cause();
    std::filesystem::create_symlink("plugin_customization.ini", folder_.path() / name);
    EXPECT_NE(cause().find("\" cannot be read: "), std::string::npos) << cause();
}

TEST_F(DoctorTest, AMasterThatCannotBeReadIsToldAndNotWhereElseItCouldBe) {
    const std::string name = "client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini";
    std::filesystem::remove(folder_.path() / name);
    std::filesystem::create_symlink("config.ini", folder_.path() / name);
    const std::string cause = answer("base location", 2)["problems"][0]["cause"];
    EXPECT_NE(cause.find("config/user/config.ini\" cannot be read: "), std::string::npos) << cause;
}

TEST_F(DoctorTest, WithoutSettingsNothingThatTheyTellIsGood) {
    std::filesystem::remove(folder_.path() / kProperties);
    const Json settings = answer("settings", 2);
    EXPECT_EQ(settings["mark"], "bad");
    const std::string cause = settings["problems"][0]["cause"];
    EXPECT_TRUE(cause.ends_with("rcplauncher.properties\" is missing")) << cause;
    EXPECT_EQ(answer("base location", 2)["mark"], "odd");
    EXPECT_EQ(answer("bundles", 2)["mark"], "odd");
}

TEST_F(DoctorTest, VariablesThatChangeTheJvmBehindTheLauncherAreOdd) {
    variables_ = {"JAVA_TOOL_OPTIONS=-Xmx1m"};
    const Json problem = onlyProblem("environment", 1);
    EXPECT_TRUE(
        problem["cause"].get<std::string>().starts_with("RI809 JAVA_TOOL_OPTIONS is \"-Xmx1m\""));
}

TEST_F(DoctorTest, AJvmThatIsNotThereIsToldOfTheJvm) {
    const Words arguments = {"-vm", "/nowhere/java"};
    const Json problems = answer("JVM", 2, arguments)["problems"];
    ASSERT_EQ(problems.size(), 1U) << problems.dump(1);
    EXPECT_TRUE(problems[0]["cause"].get<std::string>().starts_with("RI601 \"/nowhere/java\""));
    EXPECT_EQ(answer("installation", 2, arguments)["mark"], "good");
    EXPECT_EQ(answer("launch", 2, arguments)["problems"][0]["cause"],
              "the platform cannot be started: RI601");
}

TEST_F(DoctorTest, AWorkspaceThatCannotBeMadeIsBad) {
    // Nobody makes a folder there, whatever permissions say.
    const Json space = answer("space and permissions", 2, {"-data", "/proc/ws"});
    EXPECT_EQ(space["mark"], "bad") << space.dump(1);
    EXPECT_EQ(space["problems"][0]["mark"], "bad") << space.dump(1);
    const Json& last = space["problems"].back();  // a launch may do with the little that there is
    EXPECT_TRUE(last["cause"].get<std::string>().ends_with(" bytes left")) << space.dump(1);
    EXPECT_EQ(last["mark"], "odd") << space.dump(1);
    EXPECT_EQ(answer("user's area", 2, {"-data", "/proc/ws"})["text"], "/proc/ws, new");
    EXPECT_EQ(launch({"-data", "/proc/ws"}), 255);
}

TEST_F(DoctorTest, AWorkspaceBelowAFileIsBadAndTheArgumentIsNamed) {
    folder_.write("home/file", "");
    const std::string file = folder_.narrow("home/file");
    const Words arguments = {"-clean", "-data", file + "/ws"};
    EXPECT_EQ(answer("user's area", 2, arguments)["text"], file + "/ws, new");
    EXPECT_EQ(answer("space and permissions", 2, arguments)["problems"][0]["cause"],
              file + " is no folder");
    const Json problem = answer("launch", 2, arguments)["problems"][0];
    EXPECT_TRUE(problem["cause"].get<std::string>().starts_with("ZYPRA0083E")) << problem;
    EXPECT_EQ(problem["place"], "argument 3");
    EXPECT_EQ(launch(arguments), 255);
}

TEST_F(DoctorTest, AWorkspaceThatIsAFileHoldsNoLockFile) {
    folder_.write("home/file", "");
    const Words arguments = {"-data", folder_.narrow("home/file")};
    EXPECT_EQ(answer("lock and platform", 2, arguments)["mark"], "good");
    EXPECT_EQ(launch(arguments), 255);
}

// For root it is a file system without the right to write: permissions do not count for him.
TEST_F(DoctorTest, AWorkspaceWhereNobodyMayWriteIsBad) {
    const bool isRoot = geteuid() == 0;
    if (isRoot && access("/usr", W_OK) == 0) {
        GTEST_SKIP() << "root may write everywhere: " << rcp::test::sandboxObstacle();
    }
    const std::string folder = isRoot ? "/usr" : folder_.narrow("home");
    if (!isRoot) {
        std::filesystem::permissions(
            folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    }
    const Json problem = answer("space and permissions", 2, {"-data", folder + "/ws"});
    EXPECT_EQ(problem["mark"], "bad");
    EXPECT_EQ(problem["problems"][0]["cause"], folder + " may not be written");
}

TEST_F(DoctorTest, SpaceIsNotLookedAtWithoutAWorkspace) {
    std::filesystem::remove(folder_.path() / "client/rcp/rcplauncher.properties");
    const std::string told = answer("space and permissions", 2)["text"];
    EXPECT_TRUE(
        told.ends_with("; not looked at, for the launch ends before its workspace is known"))
        << told;
}

TEST_F(DoctorTest, ARunningPlatformAndAFailedStartAreTold) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    EXPECT_EQ(answer("lock and platform", 0)["text"],
              "process " + std::to_string(platform->id()) + " is the running platform");
    EXPECT_EQ(answer("launch", 0)["text"], "passes its arguments on to the running platform");
    EXPECT_NE(answer("last start", 0)["text"].get<std::string>().find(", handed off"),
              std::string::npos);
}

// A JVM whose program writes what it was given, in the folder where it is.
TEST_F(DoctorTest, AJvmIsStartedOnlyWhenItIsToBeTried) {
    const std::string java = folder_.narrow("client/jre/bin/java");
    std::filesystem::remove(java);
    std::ofstream(java) << "#!/bin/sh\ntouch '" + folder_.narrow("started") +
                               "'\necho version of mine; ls; echo \"$@\"\nexit ${TRIAL_STATUS-0}\n";
    std::filesystem::permissions(java, std::filesystem::perms::owner_all);
    (void)run({}, 0);
    EXPECT_FALSE(folder_.has("started"));
    const std::string text = run({"--try-jvm"}, 0);
    EXPECT_NE(text.find("; tried, it said: version of mine\n"), std::string::npos) << text;
    EXPECT_TRUE(folder_.has("started"));
    variables_ = {"TRIAL_STATUS=3"};
    const std::string refused = run({"--try-jvm"}, 2);
    EXPECT_NE(refused.find("RI810"), std::string::npos) << refused;
    EXPECT_NE(refused.find("ends with status 3: version of mine; "
                           "-XX:+IgnoreUnrecognizedVMOptions -Dsample.greeting=hello"),
              std::string::npos)
        << refused;
    EXPECT_NE(refused.find(" -version"), std::string::npos) << refused;
}

}  // namespace
}  // namespace rcp::inspect::test
