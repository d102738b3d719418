// Reasons that are not in the element itself: what it was made from, and which of several counts.
#include "tests/inspect/explain_fixture.h"

namespace rcp::inspect::test {
namespace {

class ExplainReasons : public ExplainTest {};

TEST_F(ExplainReasons, OfARepeatedOptionAreThatTheFirstOneCounts) {
    const Json told = explain({"-data", folder_.narrow("first"), "-data", folder_.narrow("second"),
                               "-vm", "/first", "-vmargs", "-vm", "/second"});
    EXPECT_EQ(valueOf(told, "-data")["text"], folder_.narrow("first"));
    EXPECT_TRUE(hasElement(told, "/first"));
    EXPECT_EQ(whyDropped(told, 2), "becomes the launcher's own -data");
    for (const std::size_t position : {3U, 4U, 8U, 9U}) {
        EXPECT_EQ(whyDropped(told, position), "repeats an option; the first one counts");
    }
}

TEST_F(ExplainReasons, OfTheStartUpJarNameWhatItIs) {
    const Json jar = valueOf(explain(), "-startup");
    EXPECT_EQ(jar["rule"], "the start-up jar, below the base location");
    EXPECT_EQ(sourceOf(jar), "rcplauncher.properties rcp.base.location");
    EXPECT_EQ(valueOf(explain({"-perfJar", "/mine.jar"}), "-startup")["rule"],
              "the start-up jar that the user names with -perfJar");
}

TEST_F(ExplainReasons, OfAJvmThatNobodyNamesAreThatItIsTheJvm) {
    replaceIn(kProperties, "\njvm.location=[^\n]*", "");
    const Json jvm = valueOf(explain(), "-vm");
    EXPECT_EQ(jvm["rule"], "the JVM");
    EXPECT_EQ(sourceOf(jvm), "computed");
}

TEST_F(ExplainReasons, OfTheKindOfInstallationNameItsProperty) {
    EXPECT_EQ(sourceOf(element(explain(), "-Drcp.install.config=user")),
              "rcplauncher.properties install.configuration");
    replaceIn(kProperties, "\ninstall.configuration=[^\n]*", "");
    EXPECT_EQ(sourceOf(element(explain(), "-Drcp.install.config=user")), "computed");
}

TEST_F(ExplainReasons, OfRecordedArgumentsAreThatTheyAreForARestart) {
    EXPECT_EQ(useOf(explain(), "args.properties", "argc"), "unused: kept for a restart\n");
}

TEST_F(ExplainReasons, OfAPlaceholderBeginWithItsWholeText) {
    const std::string text = explainText();
    EXPECT_NE(text.find("\n        ${env.SAMPLE_GREETING,hello} = hello: "
                        "SAMPLE_GREETING is not set, its default is used\n"),
              std::string::npos);
    EXPECT_NE(text.find("\n        ${rcp.home} = " + installation() + "\n"), std::string::npos);
}

TEST_F(ExplainReasons, AreNotListedForALaunchThatHasNoElements) {
    replaceIn(kProperties, "rcp.base.location=", "rcp.base.place=");
    EXPECT_EQ(explainText().find("The command line"), std::string::npos);
}

}  // namespace
}  // namespace rcp::inspect::test
