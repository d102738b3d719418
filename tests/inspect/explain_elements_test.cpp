// Every element of the final argument list: which rule put it there, where it comes from, what was
// replaced on the way and what lost against it.
#include "tests/inspect/explain_fixture.h"

namespace rcp::inspect::test {
namespace {

class ExplainElements : public ExplainTest {};

TEST_F(ExplainElements, FromAPropertyHaveFileLineKeyAndTheValueAsWritten) {
    const Json source = element(explain(), "-Xmx128m")["source"];
    EXPECT_EQ(source["file"], folder_.narrow(kProperties));
    EXPECT_EQ(source["line"], lineOf("vmarg.sample.heap="));
    EXPECT_EQ(source["key"], "vmarg.sample.heap");
    EXPECT_EQ(source["value"], "-Xmx128m");
}

TEST_F(ExplainElements, FromTheCommandLineHaveTheirPositionAmongTheArgumentsAsGiven) {
    const Json told = explain({"-restart", "-x", "value"});
    EXPECT_EQ(sourceOf(element(told, "-x")), "argument 2");
    EXPECT_EQ(sourceOf(element(told, "value")), "argument 3");
    EXPECT_EQ(element(told, "-x")["rule"], "the user's argument, passed on as it is");
}

TEST_F(ExplainElements, OfTheLaunchersOwnMakingAreComputed) {
    const Json told = explain();
    for (const char* text : {"-data", "-vmargs", "-Dfile.encoding=UTF-8", "-startup"}) {
        EXPECT_EQ(sourceOf(element(told, text)), "computed");
        EXPECT_NE(element(told, text)["rule"], "");
    }
}

TEST_F(ExplainElements, OfAWorkspaceThatNobodyNamesComeFromTheHomeDirectory) {
    replaceIn(kProperties, "\nrcp.data=[^\n]*", "");
    const Json told = explain();
    EXPECT_EQ(sourceOf(valueOf(told, "-data")), "variable HOME");
    EXPECT_EQ(sourceOf(valueOf(told, "-configuration")), "variable HOME");
}

TEST_F(ExplainElements, OfAServicesWorkspaceAreComputedWhateverNamesAnother) {
    makeInstallation({"--mode", "service"});
    const Json told = explain({"-data", folder_.narrow("mine")});
    EXPECT_EQ(sourceOf(valueOf(told, "-data")), "computed");
    EXPECT_EQ(losersOf(valueOf(told, "-data")), "");
}

TEST_F(ExplainElements, OfTheDebugMarkerComeFromTheFileAsAWhole) {
    folder_.write("client/rcp/rcplauncher.debug", "");
    const Json console = element(explain(), "-console");
    EXPECT_EQ(console["source"]["file"], folder_.narrow("client/rcp/rcplauncher.debug"));
    EXPECT_EQ(console["source"]["line"], 0);
    EXPECT_EQ(console["rule"], "while this file exists every launch is a debugging one");
}

TEST_F(ExplainElements, OfAnExtensionNameItsProperty) {
    const Json language = element(explain({"-config", "sample"}), "-nl");
    EXPECT_EQ(sourceOf(language), "rcplauncher.properties config.sample.1");
    EXPECT_EQ(language["rule"], "the configuration extension puts it in: config.sample.1");
}

TEST_F(ExplainElements, BeginWithTheProgramBelowTheBaseLocation) {
    const Json program = explain()["elements"][0];
    EXPECT_EQ(sourceOf(program), "rcplauncher.properties rcp.base.location");
    EXPECT_NE(program["rule"].get<std::string>().find("eclipse.name"), std::string::npos);
    EXPECT_EQ(placeholdersOf(program), "${rcp.home}=" + installation() + "\n");
}

TEST_F(ExplainElements, OfAServiceBeginWithTheJvm) {
    makeInstallation({"--mode", "service"});
    const Json program = explain()["elements"][0];
    EXPECT_EQ(program["text"], installation() + "/jre/bin/java");
    EXPECT_EQ(program["rule"], "what is started: the JVM itself");
    EXPECT_EQ(sourceOf(program), "rcplauncher.properties jvm.location");
}

// --- Placeholders -------------------------------------------------------------------------------------

TEST_F(ExplainElements, ShowNestedPlaceholdersFromTheInsideOut) {
    append(kProperties,
           "vmarg.way=-Dway=${env.WAY_${prop.which}}/${workspace.location}\nwhich=B\n");
    variables_ = {"WAY_B=there"};
    const Json way = element(explain(), "-Dway=there/" + folder_.narrow("home/workspace/ann"));
    EXPECT_EQ(portable(placeholdersOf(way)),
              "${workspace.location}=home/workspace/ann\nprop.which=B\nenv.WAY_B=there\n");
    EXPECT_EQ(way["placeholders"][1]["after"],
              "-Dway=${env.WAY_B}/" + folder_.narrow("home/workspace/ann"));
}

TEST_F(ExplainElements, ShowTheDefaultOfAVariableThatIsNotSet) {
    EXPECT_EQ(placeholdersOf(element(explain(), "-Dsample.greeting=hello")),
              "env.SAMPLE_GREETING,hello=hello\n");
    variables_ = {"SAMPLE_GREETING=hi"};
    EXPECT_EQ(placeholdersOf(element(explain(), "-Dsample.greeting=hi")),
              "env.SAMPLE_GREETING,hello=hi\n");
}

TEST_F(ExplainElements, ShowThePlaceholdersOfTheWorkspace) {
    EXPECT_EQ(portable(placeholdersOf(valueOf(explain(), "-data"))),
              "env.USER,nobody=ann\nenv.HOME=" + portable(folder_.narrow("home")) + "\n");
    EXPECT_EQ(portable(placeholdersOf(valueOf(explain({"-data", "${rcp.home}/ws"}), "-data"))),
              "${rcp.home}=" + portable(installation()) + "\n");
}

TEST_F(ExplainElements, ShowThePlaceholdersOfVmargsGivenAsArguments) {
    const Json own = element(explain({"vmarg.own=-Down=${rcp.home}"}), "-Down=" + installation());
    EXPECT_EQ(sourceOf(own), "argument 1");
    EXPECT_EQ(own["rule"], "JVM argument own; in the order of the names");
    EXPECT_EQ(placeholdersOf(own), "${rcp.home}=" + installation() + "\n");
}

// --- What lost ----------------------------------------------------------------------------------------

TEST_F(ExplainElements, ShowTheLaterFilesWithTheSameVmarg) {
    append(kJvmFile, "vmarg.sample.heap=-Xmx1g\n");
    append(kMaster, "vmarg.sample.heap=-Xmx2g\n");
    const Json told = explain();
    EXPECT_EQ(losersOf(element(told, "-Xmx128m")),
              "-Xmx2g from rcpinstall.properties vmarg.sample.heap: the entry read first wins\n"
              "-Xmx1g from jvm.properties vmarg.sample.heap: the entry read first wins\n");
    EXPECT_EQ(useOf(told, "jvm.properties", "vmarg.sample.heap"),
              "overridden: rcplauncher.properties:" + std::to_string(lineOf("vmarg.sample.heap=")) +
                  "\n");
    EXPECT_EQ(useOf(told, "rcpinstall.properties", "vmarg.sample.heap"),
              "overridden: rcplauncher.properties:" + std::to_string(lineOf("vmarg.sample.heap=")) +
                  "\n");
}

TEST_F(ExplainElements, ShowWhatAVmargOfTheCommandLineOverrides) {
    const Json told = explain({"vmarg.sample.heap=-Xmx9m"});
    EXPECT_EQ(losersOf(element(told, "-Xmx9m")),
              "-Xmx128m from rcplauncher.properties vmarg.sample.heap: the command line wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "vmarg.sample.heap"),
              "overridden: the command line\n");
}

TEST_F(ExplainElements, ShowWhatAVmargOfAnExtensionOverrides) {
    append(kProperties, "config.sample.5=vmarg.sample.heap=-Xmx9m\n");
    const Json told = explain({"-config", "sample"});
    EXPECT_EQ(losersOf(element(told, "-Xmx9m")),
              "-Xmx128m from rcplauncher.properties vmarg.sample.heap: the configuration extension "
              "wins\n");
}

TEST_F(ExplainElements, ShowThePropertyThatAnOptionReplaces) {
    const Json told = explain({"-application", "other", "-personality", "mine"});
    EXPECT_EQ(losersOf(element(told, "other")),
              "sample.report from rcplauncher.properties application: the command line wins\n");
    EXPECT_EQ(
        losersOf(element(told, "mine")),
        "sample.personality from rcplauncher.properties personality: the command line wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "application"),
              "overridden: the command line\n");
    EXPECT_EQ(losersOf(valueOf(told, "-product")), "");
}

TEST_F(ExplainElements, ShowThePropertyThatAnExtensionReplaces) {
    append(kProperties, "config.other.1=-application\nconfig.other.2=other\n");
    const Json told = explain({"-config", "other"});
    EXPECT_EQ(losersOf(element(told, "other")),
              "sample.report from rcplauncher.properties application: the configuration extension "
              "wins\n");
    EXPECT_EQ(
        useOf(told, "rcplauncher.properties", "application"),
        "overridden: rcplauncher.properties:" + std::to_string(lineOf("config.other.2=")) + "\n");
}

TEST_F(ExplainElements, ShowTheOptionOfAnExtensionThatTheCommandLineReplaces) {
    append(kProperties, "config.other.1=-application\nconfig.other.2=other\n");
    const Json told = explain({"-config", "other", "-application", "mine"});
    EXPECT_EQ(losersOf(element(told, "-application")), "") << "the option's name is the same";
    EXPECT_EQ(losersOf(element(told, "mine")),
              "other from rcplauncher.properties config.other.2: the command line wins\n"
              "sample.report from rcplauncher.properties application: the command line wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "config.other.2"),
              "overridden: the command line\n");
}

TEST_F(ExplainElements, ShowThePropertyThatTheInstallationsJvmReplaces) {
    EXPECT_EQ(
        losersOf(valueOf(explain(), "-vm")),
        valueIn("vm") + " from rcplauncher.properties vm: the JVM of the installation wins\n");
}

TEST_F(ExplainElements, ShowTheLaunchersProductBehindTheUsers) {
    append(kProperties, "product=launchers\n");
    const Json told = explain();
    EXPECT_EQ(losersOf(element(told, "sample.product")),
              "launchers from rcplauncher.properties product: the user's file wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "product"),
              "overridden: rcpinstall.properties:4\n");
}

TEST_F(ExplainElements, ShowTheWorkspaceThatDataReplaces) {
    const Json told = explain({"-data", folder_.narrow("mine")});
    const Json workspace = valueOf(told, "-data");
    EXPECT_EQ(sourceOf(workspace), "argument 2");
    EXPECT_EQ(losersOf(workspace),
              "${env.HOME}/workspace/${env.USER,nobody} from rcplauncher.properties rcp.data: the "
              "command line wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "rcp.data"), "overridden: the command line\n");
}

TEST_F(ExplainElements, ShowTheWorkspaceThatAnExtensionReplaces) {
    append(kProperties, "config.mine.1=-data\nconfig.mine.2=" + folder_.narrow("mine") + "\n");
    const Json workspace = valueOf(explain({"-config", "mine"}), "-data");
    EXPECT_EQ(sourceOf(workspace), "rcplauncher.properties config.mine.2");
    EXPECT_EQ(losersOf(workspace),
              "${env.HOME}/workspace/${env.USER,nobody} from rcplauncher.properties rcp.data: the "
              "configuration extension wins\n");
}

TEST_F(ExplainElements, DoNotShowTheWinnerAmongItsLosers) {
    append(kProperties, "config.again.1=-data\nconfig.again.2=/tmp/one\n");
    const Json told = explain({"-data", "/tmp/one", "-data", "/tmp/two", "-config", "again"});
    for (const char* option : {"-data", "-configuration"}) {
        const std::string losers = losersOf(valueOf(told, option));
        EXPECT_NE(losers.find("/tmp/two from argument 4"), std::string::npos) << losers;
        EXPECT_EQ(losers.find("/tmp/one"), std::string::npos) << losers;
    }
}

TEST_F(ExplainElements, ShowTheJvmThatVmReplaces) {
    const Json told = explain({"-vm", "/other/java"});
    EXPECT_EQ(element(told, "/other/java")["rule"], "the JVM that the user names with -vm");
    EXPECT_EQ(losersOf(element(told, "/other/java")),
              "${rcp.home}/jre from rcplauncher.properties jvm.location: the command line wins\n" +
                  valueIn("vm") + " from rcplauncher.properties vm: the command line wins\n");
}

TEST_F(ExplainElements, ShowNoLosersWhereTheirKeyDoesNotCount) {
    append(kMaster, "eclipse.name=other\napplication=other\n");
    ASSERT_EQ(launch(), 0);
    const Json told = explain();
    EXPECT_EQ(losersOf(told["elements"][0]), "");
    EXPECT_EQ(losersOf(valueOf(told, "-application")), "");
    EXPECT_EQ(losersOf(valueOf(told, "-startup")), "");
}

TEST_F(ExplainElements, ShowTheSameKeyTwiceInOneFile) {
    append(kProperties, "application=second\n");
    const Json told = explain();
    EXPECT_EQ(losersOf(valueOf(told, "-application")),
              "second from rcplauncher.properties application: the entry read first wins\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "application").substr(0, 13), "used: element");
}

}  // namespace
}  // namespace rcp::inspect::test
