#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

class WhyTest : public ExplainTest {
  protected:
    [[nodiscard]] std::string why(const std::string& subject, int status = 0,
                                  const Words& arguments = {}) const {
        Words all{seen(INSPECT_PROGRAM), "why", subject, "--install", installation(), "--"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        Program program(all, launchEnvironment());
        std::string output = program.rest();
        EXPECT_EQ(program.wait(), status) << output;
        return portable(output);
    }
    [[nodiscard]] std::string placeOf(const std::string& beginning) const {
        return "rcplauncher.properties:" + std::to_string(lineOf(beginning));
    }
};

TEST_F(WhyTest, AnOptionIsFollowedToItsPlaceAndRule) {
    EXPECT_TRUE(why("-Xmx").starts_with(
        "element 20: -Xmx128m\n  from      " + placeOf("vmarg.sample.heap=") +
        " vmarg.sample.heap\n  rule      JVM argument sample.heap"));
}

TEST_F(WhyTest, OfTwoJvmOptionsTheOneIsNamedThatTheJvmTakes) {
    append(kProperties, "-Xmx5m\n");
    EXPECT_NE(
        why("-Xmx").find("\nthe JVM takes -Xmx5m\n  rule      of several it takes the last\n"),
        std::string::npos);
    EXPECT_EQ(why("-Dsample").find("the JVM takes"), std::string::npos);
}

TEST_F(WhyTest, AnOptionWithAValueIsToldWithItAndWithWhatLost) {
    const std::string text = why("-application", 0, {"-application", "other"});
    EXPECT_NE(text.find("-application other\n  from      argument 2\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("nothing reads"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  not       sample.report (" + placeOf("application=") +
                        " application): the command line wins\n"),
              std::string::npos)
        << text;
}

TEST_F(WhyTest, AnArgumentThatIsNotPassedOnIsSaidToBeDropped) {
    const std::string text = why("-config", 0, {"-config", "sample"});
    EXPECT_NE(text.find("argument 1: -config, not passed on\n"), std::string::npos) << text;
}

TEST_F(WhyTest, AKeyIsToldWithItsEntryItsUseAndWhereItCounts) {
    EXPECT_EQ(
        why("rcp.data"),
        "rcp.data=${env.HOME}/workspace/${env.USER,nobody}\n  at        client/rcp/" +
            placeOf("rcp.data=") +
            "\n  becomes   home/workspace/ann\n  used      element 3, 5, 25\n\nrcp.data is a key\n"
            "  read as   the workspace when -data is not given\n"
            "  counts in rcplauncher.properties\n");
    EXPECT_TRUE(why("eclipse.name").starts_with("eclipse.name is not set\n  read as   "));
}

TEST_F(WhyTest, OfAKeyThatNothingReadsTheNearOneIsNamed) {
    EXPECT_EQ(why("rcp.instal.id"),
              "nothing reads a key rcp.instal.id\n  did you mean rcp.install.id?\n");
}

TEST_F(WhyTest, AVariableIsToldWithWhatReadsAndWhatSetsIt) {
    EXPECT_EQ(why("SAMPLE_GREETING"),
              "SAMPLE_GREETING is not set\n  read by   vmarg.sample.greeting=-Dsample.greeting="
              "${env.SAMPLE_GREETING,hello}\n  at        client/rcp/" +
                  placeOf("vmarg.sample.greeting=") + "\n");
    EXPECT_EQ(why("SAMPLE_SET"), "SAMPLE_SET=set by the launcher\n  from      " +
                                     placeOf("env.set.SAMPLE_SET=") +
                                     " env.set.SAMPLE_SET\n  before    not set\n");
}

TEST_F(WhyTest, AVariableThatTheLauncherReadsIsToldWithWhatFor) {
    variables_.emplace_back("LC_ALL=C.UTF-8");
    EXPECT_EQ(why("LC_ALL"),
              "LC_ALL=C.UTF-8\n  read as   the character set; UTF-8 instead of \"C\"\n");
    EXPECT_TRUE(
        why("HOME").starts_with("HOME=home\n  read as   the user's home directory\n\nHOME=home\n"))
        << why("HOME");
}

TEST_F(WhyTest, AVariableThatWouldBeRemovedIsToldWithTheEntry) {
    EXPECT_EQ(why("SAMPLE_REMOVED"),
              "SAMPLE_REMOVED is not set\n  removed by env.unset.SAMPLE_REMOVED\n  "
              "at        client/rcp/" +
                  placeOf("env.unset.SAMPLE_REMOVED=") + "\n");
}

TEST_F(WhyTest, APathIsToldWithWhatTheLaunchDoesToIt) {
    EXPECT_EQ(why(folder_.narrow("home/workspace/ann/.rcp.lock")),
              "home/workspace/ann/.rcp.lock\n  changed   file made by the launch\n");
    EXPECT_EQ(why(folder_.narrow(kProperties)).substr(0, 6), "client");
}

TEST_F(WhyTest, ASettingOfThePlatformIsToldWithItsPlaceAndWithWhatLost) {
    const std::string folder = "client/rcp/eclipse/plugins/com.ovr.rcp.base/";
    const std::string master = folder + "config/user/config.ini";
    const auto read = "\n  read by   the platform, as a property of its own\n";
    folder_.write(master, "#\nosgi.framework=file:plugins/f.jar\nosgi.bundles=a@start,b\n");
    EXPECT_EQ(why("osgi.framework"),
              "osgi.framework=file:plugins/f.jar\n  at        " + master + ":2" + read);
    EXPECT_EQ(why("osgi.bundles"), "osgi.bundles=a@start,b\n  at        " + master + ":3" + read);
    append(kProperties, "vmarg.b=-Dosgi.bundles=c\n");
    EXPECT_EQ(why("osgi.bundles"), "osgi.bundles=c\n  at        client/rcp/" + placeOf("vmarg.b=") +
                                       read + "  not       a@start,b (" + master + ":3)\n");
}

TEST_F(WhyTest, ASettingOfThePlatformThatNothingSetsIsToldWithWhatFollows) {
    const std::string folder = "client/rcp/eclipse/plugins/";
    const std::string master = folder + "com.ovr.rcp.base/config/user/config.ini";
    const std::string start = " is not set\n  not in    " + master +
                              "\n  read by   the platform, as a property of its own\n  so        ";
    EXPECT_EQ(why("osgi.startLevel"),
              "osgi.startLevel" + start + "the framework goes to start level 6\n");
    folder_.write(master, "osgi.bundles=a\nosgi.framework=\n");
    folder_.write(folder + "org.eclipse.osgi_3.jar", "");
    const std::string told = why("osgi.framework");
    EXPECT_TRUE(told.starts_with("osgi.framework is empty\n  at        " + master + ":2\n"))
        << told;
    EXPECT_TRUE(told.ends_with("\n  here      " + folder + "org.eclipse.osgi_3.jar\n")) << told;
    (void)why("osgi.of.nobody", 1);
}

TEST_F(WhyTest, AJarThatThePlatformReadsIsToldWithWhereItIsNamedAndWhatIsTheMatter) {
    const std::string plugins = "client/rcp/eclipse/plugins/";
    const std::string master = plugins + "com.ovr.rcp.base/config/user/config.ini";
    std::filesystem::create_directories(folder_.path() / (plugins + "b_1.0/META-INF"));
    folder_.write(plugins + "b_1.0/META-INF/MANIFEST.MF", "");
    folder_.write(master, "osgi.framework=file:./plugins/f.jar\nosgi.bundles=b@start\n");
    EXPECT_EQ(why(folder_.narrow(plugins + "f.jar")),
              plugins + "f.jar\n  named at  " + master +
                  ":1\n  read by   the platform, of its framework\n  RI805     osgi.framework: \"" +
                  "client/rcp/eclipse/./plugins/f.jar\" is missing\n");
    EXPECT_EQ(why(folder_.narrow(plugins + "b_1.0")),
              plugins + "b_1.0\n  named at  " + master +
                  ":2\n  read by   the platform, of its bundles\n");
}

TEST_F(WhyTest, OfTheConfigurationAndItsMasterItIsToldWhichThePlatformReads) {
    const std::string master = "client/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini";
    const std::string own = "home/workspace/ann/.config/config.ini";
    EXPECT_NE(
        why(folder_.narrow(master)).find("\n  read by   the platform, as its configuration\n"),
        std::string::npos);
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(why(folder_.narrow(master)),
              master +
                  "\n  copied    by a launch when the user has none\n  not read  the platform "
                  "reads " +
                  own + "\n");
    EXPECT_EQ(why(folder_.narrow(own)), own + "\n  read by   the platform, as its configuration\n");
}

TEST_F(WhyTest, AVariableThatTheJvmReadsIsToldWhileItIsSet) {
    (void)why("JAVA_TOOL_OPTIONS", 1);
    variables_.emplace_back("JAVA_TOOL_OPTIONS=-Dx=1");
    EXPECT_EQ(why("JAVA_TOOL_OPTIONS"),
              "JAVA_TOOL_OPTIONS=-Dx=1\n  from      the environment of the launch\n  read by   "
              "the JVM\n  RI809     JAVA_TOOL_OPTIONS is \"-Dx=1\"\n");
}

TEST_F(WhyTest, AVariableOfTheProgramJavaIsNotReadByALibrary) {
    variables_.emplace_back("JDK_JAVA_OPTIONS=-Dx=1");
    EXPECT_EQ(why("JDK_JAVA_OPTIONS"),
              "JDK_JAVA_OPTIONS=-Dx=1\n  not read  the program java reads it, and the launch loads "
              "a library\n");
}

TEST_F(WhyTest, WhatNothingHasToDoWithIsStatusOne) {
    EXPECT_EQ(why("foo.bar", 1), "nothing of a launch has to do with \"foo.bar\"\n");
}

TEST_F(WhyTest, MessagesAndFindingsNeedNoInstallation) {
    for (const auto& [number, text] : {std::pair{"ZYPRA0050E", "ZYPRA0050E: "},
                                       {"RI601", "RI601 missing-file, of check: error\n"},
                                       {"ri601", "RI601 missing-file, of check: error\n"},
                                       {"zypra0050e", "ZYPRA0050E: "},
                                       {"missing-file", "RI601 missing-file, of check: error\n"}}) {
        Program program(
            {seen(INSPECT_PROGRAM), "why", number, "--install", folder_.narrow("nowhere")},
            environment());
        const std::string output = program.rest();
        EXPECT_TRUE(output.starts_with(text)) << output;
        EXPECT_NE(output.find("\n  remedy    "), std::string::npos) << output;
        EXPECT_EQ(program.wait(), 0);
    }
}

TEST_F(WhyTest, WithoutASubjectItIsWrongUse) {
    Program program({seen(INSPECT_PROGRAM), "why", "--install", installation()}, environment());
    EXPECT_EQ(program.rest(), "");
    EXPECT_EQ(program.wait(), 64);
}

}  // namespace
}  // namespace rcp::inspect::test
