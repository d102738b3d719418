// The part of the command line that is for the JVM: arguments behind "-vmargs", the console fix,
// "vmarg." arguments from all sources, system properties, "-X" options and the class path.
#include "checks.h"

namespace acceptance {

namespace {

// What stands between the separator and the first system property of the launcher's own.
Texts ownArguments(const Installation& velmo, const Report& platform) {
    return platform.between("-vmargs", "-Drcp.home=" + velmo.home);
}

TEST(JvmArguments, TailOfTheCommandLineIsCopiedWithoutItsJvm) {
    Installation velmo;
    const Report platform =
        velmo.start({"-vmargs", "-Xmx1g", "-vm", "/x/java", "-Dy=1", "-vmargs", "-z"});
    expectList({"-Xmx1g", "-Dy=1", "-vmargs", "-z"}, ownArguments(velmo, platform));
    EXPECT_EQ(platform.after("-vm"), "/x/java") << "it counts as given all the same";
}

TEST(JvmArguments, JvmOptionAtTheVeryEndOfTheTailIsDroppedAlone) {
    Installation velmo;
    const Launch launch = velmo.launch({"-restart", "-vm", "/j", "-vmargs", "-a", "-vm"});
    ASSERT_TRUE(launch.platform.has_value()) << launch.log;
    expectList({"-a"}, ownArguments(velmo, *launch.platform));
}

TEST(JvmArguments, MapIsWrittenInKeyOrderWhateverTheFileOrder) {
    Installation velmo;
    velmo.set("vmarg.b", "-Db")
        .set("vmarg.a", "-Da")
        .set("vmarg.B", "-DB")
        .set("vmarg.a.a", "-Daa");
    velmo.set("vmarg.", "-Dnone").set("vmarg.ä", "-Dumlaut").set("vmarg.10", "-D10");
    velmo.set("vmarg.9", "-D9");
    expectList({"-Dnone", "-D10", "-D9", "-DB", "-Da", "-Daa", "-Db", "-Dumlaut"},
               ownArguments(velmo, velmo.start()));
}

TEST(JvmArguments, CommandLineWinsOverEveryFile) {
    Installation velmo;
    velmo.set("vmarg.x", "-Dx=properties");
    velmo.addInstallLine("vmarg.x=-Dx=user").addInstallLine("vmarg.y=-Dy=user");
    velmo.write("Velmo/rcp/deploy/jvm.properties", "vmarg.x=-Dx=jvm\nvmarg.y=-Dy=jvm\n");
    expectList({"-Dx=given=1", "-Dy=given"},
               ownArguments(velmo, velmo.start({"vmarg.x=-Dx=given=1", "vmarg.y=-Dy=given",
                                                "vmarg.x=-Dx=again"})));
}

TEST(JvmArguments, FileReadFirstWins) {
    Installation velmo;
    velmo.set("vmarg.1", "-D1=properties").addLine("vmarg.1=-D1=properties again");
    velmo.addInstallLine("vmarg.1=-D1=user").addInstallLine("vmarg.2=-D2=user");
    velmo.write("Velmo/rcp/deploy/jvm.properties",
                "vmarg.1=-D1=jvm\nvmarg.2=-D2=jvm\nvmarg.3=-D3=jvm\nvmarg.4=-D4=jvm\n");
    velmo.write(velmo.configuration() + "/args.properties",
                "vmarg.1=-D1=args\nvmarg.2=-D2=args\nvmarg.3=-D3=args\n");
    expectList({"-D1=properties", "-D2=user", "-D3=args", "-D4=jvm"},
               ownArguments(velmo, velmo.start({"-restart"})));
}

TEST(JvmArguments, EmptyValueSwitchesALaterOneOff) {
    Installation velmo;
    velmo.set("vmarg.a", "").set("vmarg.b", "-Db");
    velmo.write("Velmo/rcp/deploy/jvm.properties", "vmarg.a=-Da\nvmarg.c=-Dc\n");
    expectList({"-Db"}, ownArguments(velmo, velmo.start({"vmarg.c="})));
}

TEST(JvmArguments, KeysOfTheMapAreNoPropertiesAnyMore) {
    Installation velmo;
    velmo.set("vmarg.a", "-Da").set("vmarg.x", "-Dx=${prop.vmarg.a}");
    expectLateFatal(velmo.launch(),
                    "ZYPRA0088E: property substitution is invalid (-Dx=${prop.vmarg.a})");
}

TEST(JvmArguments, ArgumentWithoutAnEqualsSignIsFatal) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    expectEarlyFatal(velmo.launch({"vmarg.x"}),
                     "ZYPRA0033E: rcplauncher invoked with an invalid vmarg.");
    velmo.set("config.x.1", "vmarg.y");
    expectEarlyFatal(velmo.launch({"-config", "x"}),
                     "ZYPRA0128E: rcplauncher invoked with an invalid vmarg.");
}

TEST(JvmArguments, ConsoleFixIsWrittenUnlessThereIsAConsole) {
    Installation velmo;
    velmo.set("vmfix.noconsole", "-Dlog=${workspace.location}\\\\x:${workspace.location}");
    velmo.set("vmarg.a", "-Da");
    const std::string fix = "-Dlog=" + velmo.workspace + "/x:${workspace.location}";
    expectList({"-tail", fix, "-Da"}, ownArguments(velmo, velmo.start({"-vmargs", "-tail"})));
    expectList({"-Da"}, ownArguments(velmo, velmo.start({"-console"})));
    expectList({fix, "-Da"}, ownArguments(velmo, velmo.start({"-restart", "-console"})));
}

TEST(JvmArguments, ConsoleFixIsTheFirstPropertyOfThatPrefix) {
    Installation velmo;
    velmo.set("vmfix.noconsole.mac", "-Dfirst").set("vmfix.noconsole", "-Dsecond");
    expectList({"-Dfirst"}, ownArguments(velmo, velmo.start()));
}

TEST(JvmArguments, EmptyConsoleFixAddsNothing) {
    Installation velmo;
    velmo.set("vmfix.noconsole", "");
    expectList({}, ownArguments(velmo, velmo.start()));
}

TEST(JvmArguments, SystemPropertiesStandInTheirOrder) {
    Installation velmo;
    velmo.addInstallLine("osgi.splashPath=/splash");
    velmo.set("-Db", "2").set("-Da", "1").set("-Da.b", "");
    expectList(
        {"-Drcp.home=" + velmo.home, "-Drcp.data=" + velmo.workspace, "-Dosgi.splashPath=/splash",
         "-Dcom.ovr.rcp.install.id=abc123", "-Drcp.install.config=user", "-Db=2", "-Da=1",
         "-Da.b=", "-Drcp.osgi.install.area=" + velmo.home + "/rcp/eclipse",
         "-Dfile.encoding=UTF-8", "-XstartOnFirstThread"},
        velmo.start().behind("-vmargs"));
}

TEST(JvmArguments, SplashPathOfTheLaunchersOwnPropertiesIsNotAsked) {
    Installation velmo;
    velmo.set("osgi.splashPath", "/splash");
    EXPECT_FALSE(velmo.start().has("-Dosgi.splashPath=/splash"));
}

TEST(JvmArguments, InstallConfigurationIsNamed) {
    for (const char* name :
         {"lockdown", "user", "serial.multiuser", "multiuser", "userpb", "service"}) {
        Installation velmo;
        velmo.useOwnJvm();
        velmo.set("install.configuration", name);
        EXPECT_TRUE(velmo.start().has(std::string("-Drcp.install.config=") + name)) << name;
    }
}

TEST(JvmArguments, UnknownInstallConfigurationIsFatal) {
    for (const char* name : {"Service", "", "users", "other"}) {
        Installation velmo;
        velmo.set("install.configuration", name);
        expectLateFatal(velmo.launch(),
                        "ZYPRA0025E: The platform rcp.install.id must be provided for this "
                        "configuration!");
    }
}

TEST(JvmArguments, OptionPropertiesAndBootClassPathFollow) {
    Installation velmo;
    velmo.addLine("-Xss").addLine("-Xmx 512m").addLine("-Xshare:off").addLine("-Xms=1m");
    velmo.set("Xbootclasspath.append", "/a.jar").set("Xbootclasspath.prepend", "/p.jar:/q.jar");
    velmo.set("cp", "/c.jar:/d.jar");
    expectList({"-Xss", "-Xmx512m", "-Xshare:off", "-Xms=1m", "-Xbootclasspath/p:/p.jar:/q.jar",
                "-Xbootclasspath/a:/a.jar", "-cp", "/c.jar:/d.jar", "-Dfile.encoding=UTF-8",
                "-XstartOnFirstThread"},
               velmo.start().behind("-Drcp.osgi.install.area=" + velmo.home + "/rcp/eclipse"));
}

TEST(JvmArguments, BootClassPathOfAnEmptyPropertyIsWrittenAllTheSame) {
    Installation velmo;
    velmo.set("Xbootclasspath.prepend", "").set("cp", "");
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Xbootclasspath/p:"));
    EXPECT_EQ(platform.after("-cp"), "");
}

TEST(JvmArguments, WithoutAClassPathThereIsNoOption) {
    Installation velmo;
    EXPECT_FALSE(velmo.start().has("-cp"));
}

}  // namespace

}  // namespace acceptance
