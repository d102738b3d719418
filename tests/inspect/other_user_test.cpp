#include "inspect/other_user.h"

#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

using ::testing::HasSubstr;

class OtherUserTest : public ExplainTest {
  protected:
    [[nodiscard]] std::string told(const Words& words, int status = 0) const {
        Words all{"/bin/sh", "-c", "exec \"$@\" 2>&1", "sh", seen(INSPECT_PROGRAM)};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.end(), {"--install", installation()});
        Program program(all, launchEnvironment());
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return output;
    }
    [[nodiscard]] std::string workspace(const Words& options) const {
        Words words{"explain", "--format", "json"};
        words.insert(words.end(), options.begin(), options.end());
        return portable(Json::parse(told(words))["facts"]["workspace"]);
    }
};

TEST_F(OtherUserTest, HasHisOwnWorkspace) {
    std::filesystem::create_directories(folder_.path() / "bobs");
    EXPECT_EQ(workspace({}), "home/workspace/ann");
    EXPECT_EQ(workspace({"--user", "bob"}), "home/workspace/bob");
    EXPECT_EQ(workspace({"--user", "bob", "--home", folder_.narrow("bobs")}), "bobs/workspace/bob");
}

TEST_F(OtherUserTest, HasTheVariablesOfHisFileAndNoOther) {
    append(kProperties, "vmarg.a=-Da=${env.PLACE,none}\nvmarg.b=-Db=${env.MINE,none}\n");
    variables_ = {"MINE=1"};
    folder_.write("bob.env", "# of env\nUSER=bob\nHOME=" + folder_.narrow("home") +
                                 "\nPATH=/usr/bin:/bin\nPLACE=one\ntwo\n");
    const Json explanation =
        Json::parse(told({"explain", "--format", "json", "--env-file", folder_.narrow("bob.env")}));
    EXPECT_TRUE(hasElement(explanation, "-Da=one\ntwo"));
    EXPECT_TRUE(hasElement(explanation, "-Db=none"));
    EXPECT_EQ(workspace({"--env-file", folder_.narrow("bob.env")}), "home/workspace/bob");
    EXPECT_EQ(workspace({"--env-file", folder_.narrow("bob.env"), "--user", "eve"}),
              "home/workspace/eve");
}

TEST_F(OtherUserTest, AFunctionOfHisShellIsAVariableOfItsOwn) {
    folder_.write("bob.env",
                  "HOME=" + folder_.narrow("home") +
                      "\nUSER=bob\nBASH_FUNC_module%%=() {  local a=1;\n b=2\n}\nLANG=C.UTF-8\n");
    EXPECT_EQ(workspace({"--env-file", folder_.narrow("bob.env")}), "home/workspace/bob");
}

TEST_F(OtherUserTest, HisHomeFolderMayBeNamedFromHere) {
    Program program(
        {"/bin/sh", "-c", R"(cd "$2" && "$0" explain --format json --install "$1" --home home)",
         seen(INSPECT_PROGRAM), installation(), folder_.narrow()},
        launchEnvironment());
    EXPECT_EQ(portable(Json::parse(program.rest())["facts"]["workspace"]), "home/workspace/ann");
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(OtherUserTest, IsToldWhereAVariableOfHisStands) {
    folder_.write("bob.env", "USER=bob\nHOME=" + folder_.narrow("home") +
                                 "\nPATH=one\ntwo\nJAVA_TOOL_OPTIONS=-Da=b\n");
    EXPECT_THAT(told({"check", "--env-file", folder_.narrow("bob.env")}, 1),
                HasSubstr(folder_.narrow("bob.env") + "\n  5: warning RI809"));
    // A name alone would be that of a file of the installation.
    Program program({"/bin/sh", "-c", R"(cd "$2" && "$0" check --install "$1" --env-file bob.env)",
                     seen(INSPECT_PROGRAM), installation(), folder_.narrow()},
                    launchEnvironment());
    EXPECT_THAT(program.rest(), HasSubstr(folder_.narrow("bob.env") + "\n  5: warning RI809"));
    EXPECT_EQ(program.wait(), 1);
}

TEST_F(OtherUserTest, HisVariablesMayComeThroughAPipe) {
    Program program(
        {"/bin/sh", "-c",
         "printf 'USER=bob\\nHOME=/nowhere\\n' | \"$0\" explain --format json --install "
         "\"$1\" --env-file /dev/stdin",
         seen(INSPECT_PROGRAM), installation()},
        launchEnvironment());
    EXPECT_EQ(Json::parse(program.rest())["facts"]["workspace"], "/nowhere/workspace/bob");
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(OtherUserTest, HasHisOwnLocale) {
    EXPECT_THAT(told({"doctor", "--format", "json", "--locale", "C"}, 0),
                HasSubstr("characters are "));
    EXPECT_THAT(told({"doctor", "--locale", "xx_NOWHERE"}, 64),
                HasSubstr("no locale xx_NOWHERE on this machine"));
}

TEST_F(OtherUserTest, IsRefusedWithoutWhatDescribesHim) {
    for (const char* name : {"none", "."}) {
        EXPECT_THAT(told({"explain", "--env-file", folder_.narrow(name)}, 64),
                    HasSubstr("no variables can be read from "));
    }
    folder_.write("bad.env", "what is this\n");
    const std::string problem = told({"explain", "--env-file", folder_.narrow("bad.env")}, 64);
    EXPECT_THAT(problem, HasSubstr("bad.env:1: this is not NAME=VALUE"));
    EXPECT_THAT(problem, ::testing::Not(HasSubstr("what is this")));  // It may be a secret.
}

}  // namespace
}  // namespace rcp::inspect::test
