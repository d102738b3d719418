#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

class ConfigTest : public ExplainTest {
  protected:
    [[nodiscard]] std::string config(const Words& options = {}, int status = 0) const {
        Words all{seen(INSPECT_PROGRAM), "config", "--install", installation()};
        all.insert(all.end(), options.begin(), options.end());
        Program program(all, launchEnvironment());
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return portable(output);
    }
};

TEST_F(ConfigTest, TellsEveryEntryThatCountsWithItsPlace) {
    append(kJvmFile, "provisioning=true\n");
    const std::string text = config();
    EXPECT_NE(text.find("provisioning=false    (rcplauncher.properties:" +
                        std::to_string(lineOf("provisioning=")) + ", used)\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("provisioning=true"), std::string::npos) << text;
    EXPECT_NE(text.find("product=sample.product    (rcpinstall.properties:"), std::string::npos)
        << text;
}

TEST_F(ConfigTest, TellsWhatIsNotSetAndTheVariables) {
    const std::string text = config();
    EXPECT_NE(text.find("\n# eclipse.name is not set: "), std::string::npos) << text;
    EXPECT_EQ(text.find("# rcp.data is not set"), std::string::npos) << text;
    EXPECT_NE(text.find("\n$USER=ann\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n$SAMPLE_SET=(not set) becomes set by the launcher    ("),
              std::string::npos)
        << text;
}

TEST_F(ConfigTest, ShowsTheFilesAsTheyStandWithThePlaceOfEveryLine) {
    const std::string text = config({"--files"});
    EXPECT_NE(text.find("client/rcp/rcplauncher.properties:" + std::to_string(lineOf("rcp.data=")) +
                        ":rcp.data=${env.HOME}/workspace/${env.USER,nobody}\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\nclient/jre/lib/jvm.properties:1:"), std::string::npos) << text;
    EXPECT_EQ(config({"--files", "--format", "json"}, 64), "");
}

TEST_F(ConfigTest, JsonHasTheDocumentedLayout) {
    const Json told = Json::parse(config({"--format", "json"}));
    EXPECT_EQ(told["layout"], 1);
    EXPECT_EQ(told["command"], "config");
    for (const char* member : {"entries", "unset", "variables"}) {
        EXPECT_FALSE(told[member].empty()) << member;
    }
    for (const char* member : {"key", "value", "file", "line", "state", "by"}) {
        EXPECT_TRUE(told["entries"][0].contains(member)) << member;
    }
}

}  // namespace
}  // namespace rcp::inspect::test
