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

TEST_F(ConfigTest, TellsThatNothingCanBeRead) {
    std::filesystem::remove(folder_.path() / kProperties);
    for (const Words& options : {Words{}, Words{"--files"}}) {
        const std::string text = config(options);
        EXPECT_TRUE(text.starts_with("# no file can be read: ZYPRA0096E: ")) << text;
    }
}

TEST_F(ConfigTest, TellsWhatIsNotSetAndTheVariables) {
    const std::string text = config();
    EXPECT_NE(text.find("\neclipse.name=eclipse    (the default)\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n# update.policy.managed is not set: "), std::string::npos) << text;
    EXPECT_EQ(text.find("# rcp.data is not set"), std::string::npos) << text;
    EXPECT_NE(text.find("\n$USER=ann    (the user's name; in rcp.data)\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\n$SAMPLE_GREETING=(not set)    (in vmarg.sample.greeting)\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("    (where ps is found)\n"), std::string::npos) << text;
    for (const char* name : {"HOME", "LC_ALL", "LC_CTYPE", "LANG", "PATH", "TMPDIR"}) {
        EXPECT_NE(text.find("\n$" + std::string(name) + "="), std::string::npos) << name;
    }
    EXPECT_NE(text.find("\n$SAMPLE_SET=(not set) becomes set by the launcher    ("),
              std::string::npos)
        << text;
}

TEST_F(ConfigTest, ValuesAreWhatALaunchMakesOfThem) {
    append(kProperties, "jvm.extpath=${rcp.home}/ext\nconfig.sample.5=${env.HOME}\n");
    const std::string text = config();
    for (const char* entry :
         {"rcp.data=home/workspace/ann    (", "jvm.location=client/jre    (",
          "rcp.base.location=client/rcp/eclipse/plugins/com.ovr.rcp.base    (",
          "vmarg.sample.greeting=-Dsample.greeting=hello    (", "jvm.extpath=client/ext    (",
          "config.sample.5=${env.HOME}    (", "osgi.splashPath=file:client/rcp/splash    ("}) {
        EXPECT_NE(("\n" + text).find("\n" + std::string(entry)), std::string::npos)
            << entry << " is not in\n"
            << text;
    }
}

TEST_F(ConfigTest, EachPartOfAMergedPathHasItsSource) {
    replaceIn(kProperties, "library.path.prepend=.*", "library.path.prepend=/first");
    replaceIn(kProperties, "library.path.append=.*", "library.path.append=/last");
    variables_ = {"DYLD_LIBRARY_PATH=/middle"};
    const auto place = [&](const std::string& key) {
        return " (rcplauncher.properties:" + std::to_string(lineOf(key + "=")) + " " + key + ")\n";
    };
    const std::string parts = "    /first" + place("library.path.prepend") +
                              "    /middle (args.properties:5 "
                              "com.ovr.rcp.core.internal.librarypath)\n    /last" +
                              place("library.path.append");
    const std::string text = config();
    EXPECT_NE(text.find("\n$DYLD_LIBRARY_PATH=/middle becomes /first:/middle:/last    ("),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(parts), std::string::npos) << parts << " is not in\n" << text;
    EXPECT_NE(explainText({}, {}).find("        /last" + place("library.path.append")),
              std::string::npos);
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
    for (const char* member : {"key", "value", "file", "line", "state", "by", "effective"}) {
        EXPECT_TRUE(told["entries"][0].contains(member)) << member;
    }
}

}  // namespace
}  // namespace rcp::inspect::test
