// Launches that are refused because of their arguments.
#include "checks.h"

namespace acceptance {

namespace {

constexpr const char* kBadCount =
    "ZYPRA0069E: rcplauncher invoked with an invalid URL handler action - bad argument count.";
constexpr const char* kDoubleQuote =
    "ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument.";

class ArgumentChecks : public testing::Test {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }

    void expectRefused(const Texts& arguments, const std::string& record) {
        const Launch launch = velmo.launch(arguments);
        expectEarlyFatal(launch, record);
        EXPECT_TRUE(hasLineStart(launch.temporaryLog, record + " : "))
            << "the system's error text stands behind it";
        EXPECT_FALSE(fileExists(velmo.workspace + "/logs")) << "the check comes before the log";
        EXPECT_TRUE(fileExists(velmo.workspace)) << "and after the workspace";
    }

    Installation velmo;
};

TEST_F(ArgumentChecks, StatedCountIncludesTheProgramAndTheAppendedPair) {
    EXPECT_EQ(velmo.start({"-maxargcnt", "6", "url"}).after("-maxargcnt"), "6");
    EXPECT_EQ(velmo.start({"-maxargcnt", " 5x"}).after("-maxargcnt"), " 5x");
}

TEST_F(ArgumentChecks, AnyOtherCountIsRefused) {
    expectRefused({"-maxargcnt", "4", "url"}, kBadCount);
    expectRefused({"-maxargcnt", "7", "url"}, kBadCount);
    expectRefused({"-maxargcnt", "url", "6"}, kBadCount);
    expectRefused({"-maxargcnt", "99999999999999999999999999"}, kBadCount);
}

TEST_F(ArgumentChecks, CountOptionAtTheEndAlwaysFails) {
    expectRefused({"-maxargcnt"}, kBadCount);
    expectRefused({"-restart", "-maxargcnt"}, kBadCount);
}

TEST_F(ArgumentChecks, RestartCountsOneArgumentLess) {
    expectRefused({"-restart", "-maxargcnt", "4"}, kBadCount);
    EXPECT_EQ(velmo.start({"-restart", "-maxargcnt", "3"}).after("-maxargcnt"), "3");
}

TEST_F(ArgumentChecks, DoubleQuoteIsRefusedAnywhere) {
    expectRefused({"\""}, kDoubleQuote);
    expectRefused({"-a", "b\"c"}, kDoubleQuote);
    expectRefused({"-vmargs", "-Dx=\""}, kDoubleQuote);
    velmo.programName = "rcp\"launcher";
    expectRefused({}, kDoubleQuote);
}

TEST_F(ArgumentChecks, LibraryPathAndJavaHomeAreRefusedAsSubstrings) {
    expectRefused({"-Djvm.library.path=/x"},
                  "ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not "
                  "allowed.");
    expectRefused({"-vmargs", "-Djava.library.path=/x"},
                  "ZYPRA0191E: rcplauncher invoked with arg containing \"java.library.path\" - not "
                  "allowed.");
    expectRefused({"-Dfoo=java.home.x"},
                  "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not "
                  "allowed.");
}

TEST_F(ArgumentChecks, SubstringsAreCaseSensitive) {
    EXPECT_TRUE(velmo.start({"-DJava.Home=/x"}).has("-DJava.Home=/x"));
}

TEST_F(ArgumentChecks, OneArgumentIsTestedForAllThreeBeforeTheNext) {
    expectRefused({"-Da=java.home", "-Djvm.library.path=/x"},
                  "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not "
                  "allowed.");
    expectRefused({"java.home,jvm.library.path"},
                  "ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not "
                  "allowed.");
}

TEST_F(ArgumentChecks, CountComesBeforeQuotesAndQuotesBeforePaths) {
    expectRefused({"\"", "-maxargcnt", "1", "java.home"}, kBadCount);
    expectRefused({"java.home", "\""}, kDoubleQuote);
}

TEST_F(ArgumentChecks, ArgumentsOfAConfigurationExtensionAreCheckedToo) {
    velmo.set("config.x.1", "-Djava.home=/x");
    expectRefused({"-config", "x"},
                  "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not "
                  "allowed.");
}

TEST_F(ArgumentChecks, InstallingPassesInTheMainLauncher) {
    EXPECT_TRUE(velmo.start({"-provManifest"}).has("-provManifest"));
}

TEST_F(ArgumentChecks, InstallingIsRefusedWhileAPlatformRuns) {
    StayingLaunch first = velmo.startStaying();
    first.platform();
    const Launch second = velmo.launch({"-provManifest"});
    const std::string record = "ZYPRA0122E: Attempting to install while process " +
                               std::to_string(first.pid()) + " is running.";
    expectLateFatal(second, record);
    expectBareRecord(second.log, record);
    EXPECT_EQ(first.finish().status, 0);
}

}  // namespace

}  // namespace acceptance
