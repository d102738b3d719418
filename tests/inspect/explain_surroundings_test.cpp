// What is not in the argument list, the environment, and what became of every property.
#include "tests/inspect/explain_fixture.h"

#include <regex>

namespace rcp::inspect::test {
namespace {

class ExplainDropped : public ExplainTest {};
class ExplainFiles : public ExplainTest {};
class ExplainEnvironment : public ExplainTest {
  protected:
    static Json variable(const Json& explanation, const std::string& name) {
        for (const Json& variable : explanation["environment"]) {
            if (variable["name"] == name) {
                return variable;
            }
        }
        ADD_FAILURE() << name << " does not change";
        return {};
    }
};

TEST_F(ExplainDropped, AreTheLaunchersOwnOptions) {
    const Json told =
        explain({"-config", "sample", "-data", folder_.narrow("mine"), "-configuration", "area",
                 "-resetconfig", "-vm", "/java", "-vmargs", "-Xa"});
    EXPECT_EQ(whyDropped(told, 1), "stands for the arguments of a configuration extension");
    EXPECT_EQ(whyDropped(told, 2), "names the configuration extension");
    EXPECT_EQ(whyDropped(told, 3), "becomes the launcher's own -data");
    EXPECT_EQ(whyDropped(told, 4), "becomes the launcher's own -data");
    EXPECT_EQ(whyDropped(told, 5), "the configuration area is always the launcher's own");
    EXPECT_EQ(whyDropped(told, 6), "the configuration area is always the launcher's own");
    EXPECT_EQ(whyDropped(told, 7), "asks the launcher for a new configuration area");
    EXPECT_EQ(whyDropped(told, 8), "becomes the launcher's own -vm");
    EXPECT_EQ(whyDropped(told, 9), "not dropped");
    EXPECT_EQ(whyDropped(told, 10), "becomes the launcher's own -vmargs");
    EXPECT_EQ(whyDropped(told, 11), "not dropped");
}

TEST_F(ExplainDropped, AreOptionsWithoutAValue) {
    const Json last = explain({"-x", "-data"});
    EXPECT_EQ(whyDropped(last, 2), "has no value");
    EXPECT_EQ(sourceOf(valueOf(last, "-data")), "rcplauncher.properties rcp.data");
    const Json told = explain({"-data", "-vmargs", "-Xa"});
    EXPECT_EQ(whyDropped(told, 1), "has no value");
    EXPECT_EQ(whyDropped(told, 2), "becomes the launcher's own -vmargs");
}

TEST_F(ExplainDropped, AreDebugAndConsoleOfARestart) {
    const Json told = explain({"-restart", "-rcp_old_pid", "1", "-debug", "-console"});
    EXPECT_EQ(whyDropped(told, 1), "tells the launcher that its platform is started anew");
    EXPECT_EQ(whyDropped(told, 2), "names the process whose end the launcher waits for");
    EXPECT_EQ(whyDropped(told, 3), "the process whose end the launcher waits for");
    EXPECT_EQ(whyDropped(told, 4), "a restarted platform gets no debug console");
    EXPECT_EQ(whyDropped(told, 5), "a restarted platform gets no debug console");
    EXPECT_EQ(whyDropped(explain({"-debug"}), 1), "not dropped");
}

TEST_F(ExplainDropped, AreRepetitionsBesideAnExtension) {
    const Json told =
        explain({"-config", "sample", "-product", "a", "-product", "b", "-console", "-console"});
    EXPECT_EQ(whyDropped(told, 3), "not dropped");
    EXPECT_EQ(whyDropped(told, 5), "repeats an option");
    EXPECT_EQ(whyDropped(told, 6), "repeats an option");
    EXPECT_EQ(whyDropped(told, 8), "repeats an option");
}

TEST_F(ExplainDropped, IsAllThatTheInitialConfigurationStandsInFor) {
    append(kProperties,
           "config.initial.1=-first\nconfig.initial.2=-initialCompleteFlag\n"
           "config.initial.3=initial.complete\n");
    const Json told = explain({"-x", "-console", "-data", folder_.narrow("mine")});
    EXPECT_TRUE(hasElement(told, "-first"));
    EXPECT_EQ(whyDropped(told, 1), "the initial configuration is started instead");
    EXPECT_EQ(whyDropped(told, 2), "not dropped");
    EXPECT_EQ(whyDropped(told, 3), "becomes the launcher's own -data");
}

TEST_F(ExplainDropped, IsNothingOfALaunchThatStartsNothing) {
    EXPECT_EQ(explain({"-x=\"quoted\""})["dropped"], Json::array());
}

// --- Properties ---------------------------------------------------------------------------------------

TEST_F(ExplainFiles, TellWhatUsesAnEntry) {
    const Json told = explain({"-config", "sample"});
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "vmarg.sample.heap").substr(0, 13),
              "used: element");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "install.configuration").substr(0, 13),
              "used: element");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "invoke.eclipse.dylib"),
              "used: the choice of the hand-off\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "rcp.base.location"), "used: element 0, 19\n");
    EXPECT_EQ(useOf(told, "jvm.properties", "jvm.feature.id"),
              "used: ${jvm.feature.id} in platform.xml\n");
}

TEST_F(ExplainFiles, TellWhatThisLaunchDoesNotNeed) {
    EXPECT_EQ(useOf(explain(), "rcplauncher.properties", "config.sample.1"),
              "unused: not needed in this launch: what -config NAME stands for\n");
}

TEST_F(ExplainFiles, TellKeysThatNothingReadsThereOrAnywhere) {
    append(kProperties, "aplication=x\nosgi.splashPath=x\n");
    ASSERT_EQ(launch(), 0);
    const Json told = explain();
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "aplication"),
              "unused: nothing reads this key\n");
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "osgi.splashPath"),
              "unused: nothing reads it there\n");
    EXPECT_EQ(useOf(told, "rcpinstall.properties", "rcp.base.location"),
              "unused: nothing reads it there\n");
}

TEST_F(ExplainFiles, TellThatAPlaceholderReadsAKeyOfTheMakersOwn) {
    append(kProperties, "own=x\nvmarg.own=-Down=${prop.own}\n");
    EXPECT_EQ(useOf(explain(), "rcplauncher.properties", "own"), "used: a step of the launch\n");
}

TEST_F(ExplainFiles, TellThatAnEmptyVmargKeepsOthersOut) {
    append(kProperties, "vmarg.sample.jvm=\n");
    const Json told = explain();
    EXPECT_EQ(useOf(told, "rcplauncher.properties", "vmarg.sample.jvm"),
              "used: keeps later arguments of its name out\n");
    EXPECT_EQ(
        useOf(told, "jvm.properties", "vmarg.sample.jvm"),
        "overridden: rcplauncher.properties:" + std::to_string(lineOf("vmarg.sample.jvm=")) + "\n");
}

TEST_F(ExplainFiles, TellThatEveryDefinitionOfOneNameIsPassedOn) {
    append(kProperties, "-Dtwice=1\n-Dtwice=2\n");
    const std::string use = useOf(explain(), "rcplauncher.properties", "-Dtwice");
    EXPECT_TRUE(std::regex_match(use, std::regex("used: element \\d+\nused: element \\d+\n")))
        << use;
}

TEST_F(ExplainFiles, AreThoseOfTheLaunchInTheOrderOfReading) {
    std::string names;
    const Json told = explain();
    for (const Json& file : told["files"]) {
        const std::string path = file["path"];
        names += path.substr(path.rfind('/') + 1) + "\n";
    }
    EXPECT_EQ(names,
              "rcplauncher.properties\nrcpinstall.properties\nargs.properties\njvm.properties\n");
}

TEST_F(ExplainFiles, TellThatTheLaunchersOwnVariableCountsInsteadOfOneThatIsSet) {
    append(kProperties, "env.set.JAVA_HIGH_ZIPFDS=9\n");
    EXPECT_EQ(useOf(explain(), "rcplauncher.properties", "env.set.JAVA_HIGH_ZIPFDS"),
              "overridden: the launcher\n");
}

// --- Variables ----------------------------------------------------------------------------------------

TEST_F(ExplainEnvironment, HasBeforeAfterAndSource) {
    variables_ = {"SAMPLE_SET=before", "SAMPLE_REMOVED=here"};
    const Json told = explain();
    EXPECT_EQ(variable(told, "SAMPLE_SET")["before"], "before");
    EXPECT_EQ(variable(told, "SAMPLE_SET")["after"], "set by the launcher");
    EXPECT_EQ(sourceOf(variable(told, "SAMPLE_SET")), "rcplauncher.properties env.set.SAMPLE_SET");
    EXPECT_EQ(variable(told, "SAMPLE_REMOVED")["after"], nullptr);
    EXPECT_EQ(sourceOf(variable(told, "SAMPLE_REMOVED")),
              "rcplauncher.properties env.unset.SAMPLE_REMOVED");
}

TEST_F(ExplainEnvironment, NamesThePropertiesOfVariablesThatHaveTheirOwn) {
    Json told = explain();
    EXPECT_EQ(sourceOf(variable(told, "DYLD_LIBRARY_PATH")),
              "rcplauncher.properties library.path.prepend");
    EXPECT_EQ(sourceOf(variable(told, "JAVA_HIGH_ZIPFDS")), "computed");
    append(kProperties, "env.JAVA_HIGH_ZIPFDS=7\nenv.set.JAVA_HIGH_ZIPFDS=8\n");
    told = explain();
    EXPECT_EQ(variable(told, "JAVA_HIGH_ZIPFDS")["after"], "7");
    EXPECT_EQ(sourceOf(variable(told, "JAVA_HIGH_ZIPFDS")),
              "rcplauncher.properties env.JAVA_HIGH_ZIPFDS");
}

TEST_F(ExplainEnvironment, TakesTheLastEntryOfAVariable) {
    append(kProperties, "env.set.SAMPLE_SET=again\n");
    const Json told = explain();
    EXPECT_EQ(variable(told, "SAMPLE_SET")["after"], "again");
    EXPECT_EQ(variable(told, "SAMPLE_SET")["source"]["line"], lineOf("env.set.SAMPLE_SET="));
    EXPECT_EQ(
        useOf(told, "rcplauncher.properties", "env.set.SAMPLE_SET"),
        "overridden: rcplauncher.properties:" + std::to_string(lineOf("env.set.SAMPLE_SET=")) +
            "\nused: a variable that is set\n");
}

}  // namespace
}  // namespace rcp::inspect::test
