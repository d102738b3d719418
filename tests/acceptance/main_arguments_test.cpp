// What the launcher makes of its own arguments before anything else: encoding, the Java extension
// folders, the JVM that it appends, and the version question.
#include "checks.h"

namespace acceptance {

namespace {

const std::string kExtensions = ":/Applications/ZUN Velmo.app/jre/Contents/Home/lib/ext";

TEST(MainArguments, AppendedJvmIsTheBundlesOwnByDefault) {
    Installation velmo;
    EXPECT_EQ(velmo.start().after("-vm"), kDefaultJvm);
}

TEST(MainArguments, AppendedJvmFollowsTheProperties) {
    Installation velmo;
    velmo.set("jvm.location", "/opt/some jre");
    EXPECT_EQ(velmo.start().after("-vm"), "/opt/some jre/Contents/Home/lib/jli/libjli.dylib");
    velmo.set("jvm.libpath", "/lib/server/libjvm.so");
    EXPECT_EQ(velmo.start().after("-vm"), "/opt/some jre/lib/server/libjvm.so");
    velmo.set("jvm.location", "");
    EXPECT_EQ(velmo.start().after("-vm"), "/Applications/ZUN Velmo.app/jre/lib/server/libjvm.so");
    velmo.set("jvm.libpath", "");
    EXPECT_EQ(velmo.start().after("-vm"), kDefaultJvm);
}

TEST(MainArguments, JvmOfTheUserComesBeforeTheAppendedOne) {
    Installation velmo;
    const Report platform = velmo.start({"-vm", "/users/java"});
    EXPECT_EQ(platform.count("-vm"), 1);
    EXPECT_EQ(platform.after("-vm"), "/users/java");
    EXPECT_FALSE(platform.has(kDefaultJvm));
}

TEST(MainArguments, JvmPathMayBeLongerThanAnyFixedBuffer) {
    Installation velmo;
    const std::string location = "/" + std::string(2000, 'j');
    const std::string library = "/" + std::string(2000, 'l');
    // One line of a property file holds 2024 bytes; a continued entry holds more.
    velmo.addLine("jvm.location=" + location + "\\").addLine(std::string(1900, 'k'));
    velmo.addLine("jvm.libpath=" + library + "\\").addLine(std::string(1900, 'm'));
    EXPECT_EQ(velmo.start().after("-vm"),
              location + std::string(1900, 'k') + library + std::string(1900, 'm'));
}

TEST(MainArguments, ExtensionFoldersAreExtendedByTheJvms) {
    Installation velmo;
    EXPECT_TRUE(velmo.start({"-Djava.ext.dirs=/x"}).has("-Djava.ext.dirs=/x" + kExtensions));
    velmo.set("jvm.location", "/jre").set("jvm.extpath", "/ext");
    EXPECT_TRUE(velmo.start({"-Djava.ext.dirs=/x"}).has("-Djava.ext.dirs=/x:/jre/ext"));
    velmo.set("jvm.extpath", "");
    EXPECT_TRUE(velmo.start({"-Djava.ext.dirs"}).has("-Djava.ext.dirs:/jre/Contents/Home/lib/ext"));
}

TEST(MainArguments, ExtensionFoldersAreAPrefixAndCountBehindVmargsToo) {
    Installation velmo;
    const Report platform = velmo.start({"-vmargs", "-Djava.ext.dirsX=/x", "-djava.ext.dirs=/y"});
    expectList({"-Djava.ext.dirsX=/x" + kExtensions, "-djava.ext.dirs=/y"},
               platform.between("-vmargs", "-Drcp.home=" + velmo.home));
}

TEST(MainArguments, SeveralExtensionFoldersAllGetTheTextOfTheLast) {
    Installation velmo;
    const Report platform =
        velmo.start({"-Djava.ext.dirs=/a", "-one", "-Djava.ext.dirs=/b", "-Djava.ext.dirs=/c"});
    const std::string last = "-Djava.ext.dirs=/c" + kExtensions;
    expectList({"--launcher.suppressErrors", last, "-one", last, last},
               platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
}

TEST(MainArguments, LongExtensionFoldersAreNotCut) {
    Installation velmo;
    const std::string given = "-Djava.ext.dirs=/" + std::string(9000, 'x');
    EXPECT_TRUE(velmo.start({given}).has(given + kExtensions));
}

TEST(MainArguments, RestartReceivesNeitherTheExtensionFoldersNorTheJvm) {
    Installation velmo;
    const Report platform = velmo.start({"-restart", "-Djava.ext.dirs=/x"});
    EXPECT_TRUE(platform.has("-Djava.ext.dirs=/x"));
    EXPECT_FALSE(platform.has("-vm"));
}

TEST(MainArguments, VersionOptionAloneDoesNotMatchBecauseOfTheAppendedPair) {
    Installation velmo;
    EXPECT_TRUE(velmo.start({"-version"}).has("-version"));
}

TEST(MainArguments, TextIsUtf8WhateverTheLocale) {
    const std::string usual = Installation().environment.at("LANG");
    for (const std::string& locale : {std::string("C"), std::string(), usual}) {
        Installation velmo;
        velmo.environment["LANG"] = locale;
        velmo.set("-Dö", "ß");
        const Report platform = velmo.start({"日本", "😀"});
        EXPECT_TRUE(platform.has("日本")) << locale;
        EXPECT_TRUE(platform.has("😀")) << locale;
        EXPECT_TRUE(platform.has("-Dö=ß")) << locale;
    }
}

TEST(MainArguments, UnknownLocaleIsFatal) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.environment["LC_ALL"] = "xx_YY.nowhere";
    expectEarlyFatal(velmo.launch(), "ZYPRA0182E: Set locale error!");
}

TEST(MainArguments, BytesThatAreNoTextAreSurvived) {
    Installation velmo;
    const Report platform = velmo.start({"-one", "\xff\xfe", "-two"});
    expectList({"--launcher.suppressErrors", "-one", "", "-two"},
               platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
}

TEST(MainArguments, MegabyteOfArgumentsPasses) {
    Installation velmo;
    Texts arguments;
    for (int i = 0; i < 10000; ++i) {
        arguments.push_back("-argument" + std::to_string(i) + std::string(85, 'x'));
    }
    const Report platform = velmo.start(arguments);
    expectList(arguments, platform.between("--launcher.suppressErrors", "-data"));
}

// --- Options without a value --------------------------------------------------------------------

TEST(OptionThatStandsLast, NeverTakesTheAppendedJvmForItsValue) {
    Installation velmo;
    for (const char* option : {"-data", "-config", "-bundleIdentifier", "-perfJar", "-product"}) {
        const Launch launch = velmo.launch({"-nosplash", option});
        EXPECT_EQ(launch.status, 0) << option;
        ASSERT_TRUE(launch.platform.has_value()) << option;
        EXPECT_EQ(launch.platform->after("-data"), velmo.workspace) << option;
        EXPECT_EQ(launch.platform->after("-vm"), kDefaultJvm) << option;
        EXPECT_EQ(launch.platform->count(kDefaultJvm), 1) << option;
        EXPECT_TRUE(hasLine(launch.log, std::string("Error: startup: option ") + option +
                                            " stands last and has no value."))
            << launch.log;
    }
    EXPECT_FALSE(fileExists(velmo.folder + "/-vm"));
}

TEST(OptionThatStandsLast, LeavesNoRecordWhenItHasAValue) {
    Installation velmo;
    const Launch launch = velmo.launch({"-product", "mine"});
    EXPECT_EQ(launch.log.find("stands last"), std::string::npos) << launch.log;
}

TEST(RepeatedOption, KeepsTheUsersSeparatorBehindARepeatedOptionWithoutValue) {
    Installation velmo;
    velmo.set("config.c.1", "-nl");
    const Report platform = velmo.start({"-config", "c", "-nl", "de", "-vmargs", "-Dx=y"});
    EXPECT_EQ(platform.count("-Dx=y"), 1);
    EXPECT_GT(platform.indexOf("-Dx=y"), platform.indexOf("-vmargs"));
}

TEST(ComputedProperties, AreTracedLikeEveryOther) {
    Installation velmo;
    velmo.launch({"-debug"});
    const Texts names = velmo.logNames();
    ASSERT_FALSE(names.empty());
    const std::string log = readFile(velmo.workspace + "/logs/" + names.front());
    EXPECT_TRUE(hasLine(log, "ZYPRA0126I:   key = \"velmo.workspace.loc\"")) << log;
    EXPECT_TRUE(hasLine(log, "ZYPRA0127I:   value  = \"" + velmo.workspace + "\""));
}

TEST(Environment, ValueThatIsNoTextOfTheLocaleLeavesTheVariable) {
    Installation velmo;
    velmo.environment["KEPT"] = "before";
    velmo.set("env.set.KEPT", "a\\ud800b").set("env.set.FACE", "\\ud83d\\ude00");
    const Launch launch = velmo.launch();
    ASSERT_TRUE(launch.platform.has_value());
    EXPECT_EQ(launch.platform->variable("KEPT"), "before");
    EXPECT_EQ(launch.platform->variable("FACE"), "\xF0\x9F\x98\x80");
    EXPECT_TRUE(hasLine(launch.log,
                        "Error: setEnv: the value of KEPT is no text of this locale; "
                        "the variable stays."))
        << launch.log;
}

}  // namespace

}  // namespace acceptance
