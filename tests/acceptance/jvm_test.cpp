// Which JVM is named on the command line, and the jvm.properties that comes with it.
#include "checks.h"

namespace acceptance {

namespace {

// Shows a property of the launcher's list as the system property "show".
std::string property(Installation& velmo, const std::string& name, const Texts& arguments) {
    velmo.set("vmarg.show", "-Dshow=${prop." + name + "}");
    for (const std::string& argument : velmo.start(arguments).arguments) {
        if (argument.starts_with("-Dshow=")) {
            return argument.substr(7);
        }
    }
    return "(not shown)";
}

std::string root(Installation& velmo, const Texts& arguments) {
    return property(velmo, "jvm.root", arguments);
}

TEST(Jvm, NoneIsNamedWithoutOptionAndProperty) {
    Installation velmo;
    EXPECT_FALSE(velmo.start({"-restart"}).has("-vm"));
    EXPECT_EQ(root(velmo, {"-restart"}), velmo.home + "/rcp/deploy/");
    const std::string log = velmo.launch({"-restart"}).log;
    EXPECT_TRUE(hasLine(log, "ZYPRA0119I: VM specified is \"external JVM\""));
    EXPECT_FALSE(hasLineStart(log, "ZYPRA0021I"));
}

TEST(Jvm, EmptyPropertyIsNoJvmForTheSearch) {
    Installation velmo;
    velmo.set("vm", "");
    EXPECT_TRUE(
        hasLine(velmo.launch({"-restart"}).log, "ZYPRA0119I: VM specified is \"external JVM\""));
}

TEST(Jvm, OptionWinsOverThePropertyEverywhere) {
    Installation velmo;
    velmo.write("one/jvm.properties", "-Dfrom=one\n");
    velmo.write("two/jvm.properties", "-Dfrom=two\n");
    velmo.set("vm", velmo.path("one/bin/java"));
    Report platform = velmo.start({"-restart"});
    EXPECT_EQ(platform.after("-vm"), velmo.path("one/bin/java"));
    EXPECT_TRUE(platform.has("-Dfrom=one"));
    platform = velmo.start({"-restart", "-vm", velmo.path("two/bin/java")});
    EXPECT_EQ(platform.after("-vm"), velmo.path("two/bin/java"));
    EXPECT_TRUE(platform.has("-Dfrom=two"));
    EXPECT_FALSE(platform.has("-Dfrom=one"));
}

TEST(Jvm, PluginThatHoldsTheJvmIsItsRoot) {
    Installation velmo;
    velmo.write("x/eclipse/plugins/com.jvm_1/jvm.properties", "-Dfrom=plugin\n");
    velmo.write("x/eclipse/plugins/com.jvm_1/jre/jvm.properties", "-Dfrom=jre\n");
    const std::string java = velmo.path("x/eclipse/plugins/com.jvm_1/jre/bin/java");
    EXPECT_EQ(root(velmo, {"-vm", java}), velmo.path("x/eclipse/plugins/com.jvm_1/"));
    EXPECT_TRUE(velmo.start({"-vm", java}).has("-Dfrom=plugin"));
}

TEST(Jvm, HomeOfTheJvmIsTheRootWhenThePluginHoldsNoFile) {
    Installation velmo;
    velmo.write("x/eclipse/plugins/com.jvm_1/jre/jvm.properties", "-Dfrom=jre\n");
    const std::string java = velmo.path("x/eclipse/plugins/com.jvm_1/jre/bin/java");
    EXPECT_EQ(root(velmo, {"-vm", java}), velmo.path("x/eclipse/plugins/com.jvm_1/jre/"));
}

TEST(Jvm, HomeOutsideAnyPluginIsTheRoot) {
    Installation velmo;
    velmo.write("jre/jvm.properties", "-Dfrom=jre\n");
    EXPECT_EQ(root(velmo, {"-vm", velmo.path("jre/bin/java")}), velmo.path("jre/"));
}

TEST(Jvm, PathsWithoutARootFallBackToTheDeployFolder) {
    Installation velmo;
    for (const char* java : {"/java", "java", "bin/java", "/x/eclipse/plugins/java"}) {
        EXPECT_EQ(root(velmo, {"-vm", java}), velmo.home + "/rcp/deploy/") << java;
    }
}

TEST(Jvm, HomePlaceholderAndBackslashesAreResolvedForTheSearch) {
    Installation velmo;
    velmo.write("Velmo/jre/jvm.properties", "");
    EXPECT_EQ(root(velmo, {"-vm", "${rcp.home}/jre/bin/java"}), velmo.home + "/jre/");
    EXPECT_EQ(root(velmo, {"-vm", "${rcp.home}\\jre\\bin\\java"}), velmo.home + "/jre/");
    EXPECT_EQ(velmo.start({"-vm", "${rcp.home}/jre/bin/java"}).after("-vm"),
              velmo.home + "/jre/bin/java");
}

TEST(Jvm, FileIsReadAndNamedInTheLog) {
    Installation velmo;
    const std::string file =
        velmo.write("Velmo/rcp/deploy/jvm.properties", "vmarg.gc=-Xgc\n-Ddeploy=1\n-Xss 2m\n");
    const Launch launch = velmo.launch();
    ASSERT_TRUE(launch.platform.has_value());
    EXPECT_TRUE(launch.platform->has("-Xgc"));
    EXPECT_TRUE(launch.platform->has("-Ddeploy=1"));
    EXPECT_TRUE(launch.platform->has("-Xss2m"));
    EXPECT_TRUE(
        hasLine(launch.log, std::string("ZYPRA0021I: VM specified is \"") + kDefaultJvm + "\""));
    EXPECT_TRUE(hasLine(launch.log, "ZYPRA0077I: loading jvm.properties at \"" + file + "\""));
    EXPECT_FALSE(hasLineStart(launch.log, "ZYPRA0125I"));
}

TEST(Jvm, MissingFileIsOnlyLogged) {
    Installation velmo;
    const Launch launch = velmo.launch();
    EXPECT_EQ(launch.status, 0);
    EXPECT_TRUE(hasLine(launch.log, "ZYPRA0077I: loading jvm.properties at \"" + velmo.home +
                                        "/rcp/deploy/jvm.properties\""));
    EXPECT_TRUE(hasLine(launch.log,
                        "ZYPRA0125I: No jvm.properties file was loaded. A default file should be "
                        "at \"${rcp.home}/rcp/deploy\""));
}

TEST(Jvm, LibraryPathIsTakenRelativeToTheJavaHome) {
    Installation velmo;
    velmo.write("jre/jvm.properties",
                "java.home=/the/home\njvm.library.path=lib:${prop.java.home}/x:a\\\\b\n");
    EXPECT_EQ(property(velmo, "jvm.library.path", {"-vm", velmo.path("jre/bin/java")}),
              "/the/home/lib:/the/home/x:/the/home/a/b");
}

TEST(Jvm, EmptyElementsOfTheLibraryPathAreDropped) {
    Installation velmo;
    velmo.write("jre/jvm.properties", "java.home=/h\njvm.library.path=a::b:\n");
    EXPECT_EQ(property(velmo, "jvm.library.path", {"-vm", velmo.path("jre/bin/java")}),
              "/h/a:/h/b");
}

TEST(Jvm, JavaHomeIsComputedFromABundledJvm) {
    Installation velmo;
    velmo.write("jvm/jvm.properties", "java.home=/ignored\n");
    EXPECT_EQ(property(velmo, "java.home", {"-vm", velmo.path("jvm/bin/java")}), velmo.root);
    velmo.write("plain/jvm.properties", "java.home=/kept\n");
    EXPECT_EQ(property(velmo, "java.home", {"-vm", velmo.path("plain/bin/java")}), "/kept");
}

TEST(Jvm, JavaHomeIsAddedWhenTheDeployFolderIsTheRoot) {
    Installation velmo;
    EXPECT_EQ(property(velmo, "java.home", {"-vm", velmo.path("x/jvm/bin/java")}), velmo.path("x"));
}

TEST(Jvm, OptionWithoutAPathIsFatal) {
    Installation velmo;
    const std::string record =
        "ZYPRA0079E: -vm on command line must be followed by a valid jvm path.";
    expectLateFatal(velmo.launch({"-restart", "-vm"}), record);
    expectLateFatal(velmo.launch({"-vm", ""}), record);
}

TEST(Jvm, SuffixDecidesTheConsoleFix) {
    const struct {
        const char* jvm;
        bool fixed;
    } cases[] = {
        {"/jre/bin/java", true},
        {"/jre/default.ee", false},
        {"/jre/jvm.dll", false},
        {"/jre/jvm.DLL", true},
        {"/x.ee/bin/java", true},
        {"x", true},
        {"xx", false},
        {"xyz", false},
        {"wxyz", true},
    };
    for (const auto& each : cases) {
        Installation velmo;
        velmo.set("vmfix.noconsole", "-Dfix=1");
        EXPECT_EQ(velmo.start({"-vm", each.jvm}).has("-Dfix=1"), each.fixed) << each.jvm;
    }
}

TEST(Jvm, PlainJavaCommandLineWithoutAnyJvmIsRefused) {
    Installation velmo;
    velmo.useServiceConfiguration();
    expectLateFatal(velmo.launch({"-restart"}),
                    "ZYPRA0002E: vm must be specified with -vm argument!");
}

}  // namespace

}  // namespace acceptance
