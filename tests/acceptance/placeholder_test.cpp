// "${...}" in values: which are replaced where, and what happens to those that cannot be.
#include "checks.h"

namespace acceptance {

namespace {

// What the VM argument -Dx=TEXT becomes.
std::string resolved(Installation& velmo, const std::string& text) {
    velmo.set("vmarg.x", "-Dx=" + text);
    for (const std::string& argument : velmo.start().behind("-vmargs")) {
        if (argument.starts_with("-Dx=")) {
            return argument.substr(4);
        }
    }
    return "(not there)";
}

void expectUnresolvable(Installation& velmo, const std::string& text, const std::string& reported) {
    velmo.set("vmarg.x", "-Dx=" + text);
    expectLateFatal(velmo.launch(),
                    "ZYPRA0088E: property substitution is invalid (-Dx=" + reported + ")");
}

TEST(Placeholders, StandardOnesStandForTheLaunchersPlaces) {
    Installation velmo;
    EXPECT_EQ(resolved(velmo, "${rcp.home}/rcp/deploy"), velmo.home + "/rcp/deploy");
    EXPECT_EQ(resolved(velmo, "${workspace.location}"), velmo.workspace);
    EXPECT_EQ(resolved(velmo, "${rcp.data}"), velmo.workspace);
    EXPECT_EQ(resolved(velmo, "${rcp.home}:${rcp.home}"), velmo.home + ":" + velmo.home);
}

TEST(Placeholders, EnvironmentVariablesResolve) {
    Installation velmo;
    velmo.environment["SOME"] = "thing";
    velmo.environment["EMPTY"] = "";
    EXPECT_EQ(resolved(velmo, "a${env.SOME}b"), "athingb");
    EXPECT_EQ(resolved(velmo, "${env.SOME,other}"), "thing");
    EXPECT_EQ(resolved(velmo, "${env.NOPE,fallback}"), "fallback");
    EXPECT_EQ(resolved(velmo, "${env.NOPE,b,c}"), "b,c");
    EXPECT_EQ(resolved(velmo, "[${env.NOPE,}]"), "[]");
    EXPECT_EQ(resolved(velmo, "[${env.EMPTY,unused}]"), "[]");
}

TEST(Placeholders, UnsetVariableWithoutDefaultIsFatal) {
    Installation velmo;
    expectUnresolvable(velmo, "${env.NOPE}", "${env.NOPE}");
}

TEST(Placeholders, TheMessageShowsTheTextAfterTheStandardOnes) {
    Installation velmo;
    velmo.environment["SOME"] = "thing";
    expectUnresolvable(velmo, "${rcp.home}${env.SOME}${env.NOPE}",
                       velmo.home + "${env.SOME}${env.NOPE}");
}

TEST(Placeholders, UnknownNamesAreFatal) {
    for (const char* text : {"${foo}", "${}", "${prop.missing}", "${env.}", "${ rcp.home}"}) {
        Installation velmo;
        expectUnresolvable(velmo, text, text);
    }
}

TEST(Placeholders, PropertiesResolveToTheirFirstValue) {
    Installation velmo;
    velmo.addLine("k=first").addLine("k=second");
    EXPECT_EQ(resolved(velmo, "${prop.k}"), "first");
}

TEST(Placeholders, NestedOnesResolveFromTheInside) {
    Installation velmo;
    velmo.set("which", "SOME");
    velmo.environment["SOME"] = "thing";
    EXPECT_EQ(resolved(velmo, "${env.${prop.which}}"), "thing");
    EXPECT_EQ(resolved(velmo, "${prop.${env.NOPE,which}}"), "SOME");
}

TEST(Placeholders, InsertedValuesAreSearchedAgain) {
    Installation velmo;
    velmo.set("a", "<${prop.b}>").set("b", "<${env.SOME}>");
    velmo.environment["SOME"] = "thing";
    EXPECT_EQ(resolved(velmo, "${prop.a}-${prop.b}"), "<<thing>>-<thing>");
}

TEST(Placeholders, ValuesThatBringThemselvesBackAreUnresolvable) {
    Installation velmo;
    velmo.set("a", "${prop.a}").set("b", "x${prop.c}y").set("c", "${prop.b}${prop.b}");
    expectUnresolvable(velmo, "${prop.a}", "${prop.a}");
    expectUnresolvable(velmo, "${prop.b}", "${prop.b}");
}

TEST(Placeholders, EmptyValueAtTheStartEndsTheSearch) {
    Installation velmo;
    velmo.set("empty", "").set("vmarg.x", "${prop.empty}-Dy=1");
    EXPECT_TRUE(velmo.start().has("-Dy=1"));
}

TEST(Placeholders, UnbalancedTextStays) {
    Installation velmo;
    EXPECT_EQ(resolved(velmo, "${open"), "${open");
    EXPECT_EQ(resolved(velmo, "}${"), "}${");
    EXPECT_EQ(resolved(velmo, "$SOME {x}"), "$SOME {x}");
}

TEST(Placeholders, CommandLineArgumentsReceiveTheStandardOnesOnly) {
    Installation velmo;
    const Report platform =
        velmo.start({"-a=${rcp.home}/x", "-b=${env.HOME}", "-c=${workspace.location}", "-vmargs",
                     "-Dx=${env.HOME}", "-Dy=${rcp.data}"});
    expectList({"--launcher.suppressErrors", "-a=" + velmo.home + "/x", "-b=${env.HOME}",
                "-c=" + velmo.workspace},
               platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
    EXPECT_EQ(platform.after("-vmargs"), "-Dx=${env.HOME}");
    EXPECT_TRUE(platform.has("-Dy=" + velmo.workspace));
}

TEST(Placeholders, LauncherPropertiesAsSuchAreNotReplaced) {
    Installation velmo;
    velmo.set("-Dx", "${rcp.home}")
        .set("cp", "${rcp.home}/a.jar")
        .set("application", "${env.NOPE}");
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Dx=${rcp.home}"));
    EXPECT_EQ(platform.after("-cp"), "${rcp.home}/a.jar");
    EXPECT_EQ(platform.after("-application"), "${env.NOPE}");
}

TEST(Placeholders, UserListResolvesAgainstItself) {
    Installation velmo;
    velmo.set("which", "launcher");
    velmo.addInstallLine("which=user");
    velmo.addInstallLine("osgi.splashPath=${rcp.home}/${prop.which}");
    velmo.set("vmarg.x", "-Dx=${prop.which}");
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Dosgi.splashPath=" + velmo.home + "/user"));
    EXPECT_TRUE(platform.has("-Dx=launcher"));
}

TEST(Placeholders, WorkspaceIsPublishedAsAPropertyOfBothLists) {
    Installation velmo;
    velmo.addInstallLine("osgi.splashPath=${prop.velmo.workspace.loc}/splash");
    EXPECT_EQ(resolved(velmo, "${prop.velmo.workspace.loc}"), velmo.workspace);
    EXPECT_TRUE(velmo.start().has("-Dosgi.splashPath=" + velmo.workspace + "/splash"));
}

TEST(Placeholders, BaseLocationIsStoredResolved) {
    Installation velmo;
    EXPECT_EQ(resolved(velmo, "${prop.rcp.base.location}"), velmo.base);
}

}  // namespace

}  // namespace acceptance
