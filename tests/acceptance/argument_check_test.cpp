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
        expectBareRecord(launch.temporaryLog, record);
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

// An argument is recorded for a restart and the record is read in the same launch. What a line of it
// cannot hold must not become a property: a link in a web page can be as long as it likes.
TEST(LongArgument, RestIsNoProperty) {
    const char* const rests[] = {"vmarg.zz=-agentpath:/x", "env.set.LD_LIBRARY_PATH=/x",
                                 "Xbootclasspath.append=/x", "=x=-agentpath:/x"};
    Installation velmo;
    const Report ordinary = velmo.start({"velmo://"});
    for (const char* rest : rests) {
        for (const std::size_t length : {1990U, 2009U, 2010U, 2011U, 2012U, 4033U, 4034U}) {
            const std::string url = "velmo://" + std::string(length, 'a') + rest;
            const Report platform = velmo.start({"-maxargcnt", "6", url});
            EXPECT_EQ(platform.behind("-vmargs"), ordinary.behind("-vmargs")) << length << rest;
            EXPECT_EQ(platform.variable("LD_LIBRARY_PATH"), "(unset)");
            EXPECT_TRUE(platform.has(url));
        }
    }
}

// What the checks refuse must not come in through a placeholder either.
TEST(HandedOverArgument, IsCheckedOnceMoreAfterItsPlaceholdersWereReplaced) {
    Installation velmo;
    velmo.environment["QUOTE"] = "\"";
    velmo.environment["NAME"] = "java.home";
    const std::pair<const char*, const char*> refused[] = {
        {"vmarg.z=-Djava${env.NOPE,}.library.path=/x",
         "ZYPRA0191E: rcplauncher invoked with arg containing \"java.library.path\" - not "
         "allowed."},
        {"vmarg.z=-Djvm${env.NOPE,}.library.path=/x",
         "ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not allowed."},
        {"vmarg.z=-D${env.NAME}=/x",
         "ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not allowed."},
        {"vmarg.z=-Dx=${env.QUOTE}",
         "ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument."},
    };
    for (const auto& [argument, record] : refused) {
        const Launch launch = velmo.launch({argument});
        EXPECT_EQ(launch.status, 255) << argument;
        EXPECT_FALSE(launch.platform.has_value()) << argument;
        EXPECT_TRUE(hasLineStart(launch.log, record)) << launch.log;
    }
    velmo.set("vmarg.z", "-Dinstalled=${env.NAME}");
    EXPECT_TRUE(velmo.start().has("-Dinstalled=java.home")) << "the installation may";
}

}  // namespace

}  // namespace acceptance
