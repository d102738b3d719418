// The options for the platform: what is copied from the command line, what is dropped, and what the
// properties add.
#include "checks.h"

#include <filesystem>

namespace acceptance {

namespace {

// The options between the program and the launcher's own "-data".
Texts copied(const Installation& velmo, const Texts& arguments) {
    return velmo.start(arguments).between("--launcher.suppressErrors", "-data");
}

TEST(PlatformOptions, EverythingUnknownIsCopiedInOrder) {
    Installation velmo;
    const Texts given = {"-one", "", "two words", "-nosplash", "file.txt", "-DATA", "--data=x"};
    expectList(given, copied(velmo, given));
}

TEST(PlatformOptions, OptionsOfTheLauncherAreDroppedEachTimeTheyOccur) {
    Installation velmo;
    expectList({"-a", "-b", "-c", "-d", "-e"}, copied(velmo, {"-a",
                                                              "-data",
                                                              velmo.workspace,
                                                              "-configuration",
                                                              "/c",
                                                              "-b",
                                                              "-data",
                                                              "/d",
                                                              "-vm",
                                                              "/v",
                                                              "-configuration",
                                                              "/c",
                                                              "-c",
                                                              "-rcp_old_pid",
                                                              "1",
                                                              "-resetconfig",
                                                              "-rcp_old_pid",
                                                              "2",
                                                              "-d",
                                                              "-resetconfig",
                                                              "-vm",
                                                              "/w",
                                                              "-e"}));
}

TEST(PlatformOptions, RestartIsDroppedAlone) {
    Installation velmo;
    expectList({"-a", "-b"}, copied(velmo, {"-a", "-restart", "-b"}));
}

TEST(PlatformOptions, ValueNeverSwallowsTheSeparator) {
    for (const char* option :
         {"-application", "-product", "-personality", "-plugincustomization"}) {
        Installation velmo;
        const Report platform = velmo.start({"-a", option, "-vmargs", "-Dx=1"});
        expectList({"--launcher.suppressErrors", "-a", option},
                   platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
        EXPECT_EQ(platform.after("-vmargs"), "-Dx=1");
    }
    for (const char* option : {"-configuration", "-rcp_old_pid"}) {
        Installation velmo;
        const Report platform = velmo.start({"-a", option, "-vmargs", "-Dx=1"});
        expectList({"--launcher.suppressErrors", "-a"},
                   platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
        EXPECT_EQ(platform.after("-vmargs"), "-Dx=1");
    }
}

TEST(PlatformOptions, TracingShowsPlatformErrors) {
    Installation velmo;
    const Report platform = velmo.start({"-debug"});
    EXPECT_EQ(platform.arguments.at(1), "-debug");
    EXPECT_FALSE(platform.has("--launcher.suppressErrors"));
    EXPECT_EQ(velmo.start().arguments.at(1), "--launcher.suppressErrors");
}

TEST(PlatformOptions, PropertiesAddWhatTheCommandLineLacks) {
    Installation velmo;
    velmo.set("application", "app").set("product", "prod").set("personality", "pers");
    const Report platform = velmo.start();
    expectList({velmo.workspace, "-configuration", velmo.configuration(), "-application", "app",
                "-plugincustomization", velmo.base + "/plugin_customization.ini", "-product",
                "prod", "-personality", "pers"},
               platform.between("-data", "-vm"));
}

TEST(PlatformOptions, CommandLineSuppressesTheProperties) {
    Installation velmo;
    velmo.set("application", "app").set("product", "prod").set("personality", "pers");
    velmo.addInstallLine("product=user");
    velmo.unset("plugincustomization");
    const Texts given = {"-application", "a", "-plugincustomization", "/not/there.ini",
                         "-product",     "p", "-personality",         "q"};
    const Report platform = velmo.start(given);
    expectList(given, platform.between("--launcher.suppressErrors", "-data"));
    expectList({velmo.workspace, "-configuration", velmo.configuration()},
               platform.between("-data", "-vm"));
}

TEST(PlatformOptions, OptionBehindVmargsCountsAsGiven) {
    Installation velmo;
    velmo.set("application", "app").set("personality", "pers");
    const Report platform = velmo.start({"-vmargs", "-application", "-Dx=1"});
    EXPECT_EQ(platform.count("-application"), 1);
    EXPECT_EQ(platform.after("-application"), "-Dx=1");
    EXPECT_TRUE(platform.has("-personality"));
}

TEST(PlatformOptions, ProductOfTheUserWinsOverTheInstallations) {
    Installation velmo;
    velmo.set("product", "prod");
    velmo.addInstallLine("product=user");
    const Report platform = velmo.start();
    EXPECT_EQ(platform.after("-product"), "user");
    EXPECT_EQ(platform.count("-product"), 1);
}

TEST(PlatformOptions, MissingCustomizationFileIsFatal) {
    Installation velmo;
    velmo.set("plugincustomization", "/not/there.ini");
    expectLateFatal(velmo.launch(),
                    "ZYPRA0050E:  plugin_customization.ini is missing from /not/there.ini");
}

TEST(PlatformOptions, MissingCustomizationPropertyIsFatal) {
    Installation velmo;
    velmo.unset("plugincustomization");
    expectLateFatal(velmo.launch(), "ZYPRA0050E:  plugin_customization.ini is missing from ");
}

TEST(PlatformOptions, CustomizationFileIsNamedWithSlashes) {
    Installation velmo;
    std::string doubled = velmo.base + "/plugin_customization.ini";
    for (size_t at = doubled.find('/'); at != std::string::npos; at = doubled.find('/', at + 2)) {
        doubled.replace(at, 1, "\\\\");
    }
    velmo.set("plugincustomization", doubled);
    EXPECT_EQ(velmo.start().after("-plugincustomization"),
              velmo.base + "/plugin_customization.ini");
}

TEST(PlatformOptions, StartupJarIsTheBaseLocationsUnlessOneIsGiven) {
    Installation velmo;
    EXPECT_EQ(velmo.start().after("-startup"), velmo.base + "/launcher.jar");
    const Report platform = velmo.start({"-perfJar", "/perf.jar"});
    EXPECT_EQ(platform.after("-startup"), "/perf.jar");
    expectList({"-perfJar", "/perf.jar"}, platform.between("--launcher.suppressErrors", "-data"));
}

TEST(PlatformOptions, OptionsWithoutTheirValueAtTheEndAreSurvived) {
    for (const char* option : {"-perfJar", "-application", "-plugincustomization", "-rcp_old_pid",
                               "-configuration", "-product"}) {
        Installation velmo;
        const Report platform = velmo.start({"-restart", option});
        EXPECT_TRUE(platform.has("-startup")) << option;
        EXPECT_EQ(platform.after("-data"), velmo.workspace) << option;
    }
}

TEST(PlatformOptions, JvmArgumentsByNameStayAmongTheCopiedOptions) {
    Installation velmo;
    const Report platform = velmo.start({"vmarg.x=-Dx=1"});
    EXPECT_EQ(platform.arguments.at(2), "vmarg.x=-Dx=1");
    EXPECT_EQ(platform.count("-Dx=1"), 1);
}

TEST(PlatformOptions, DaemonIsToldTheRunningPlatform) {
    Installation velmo;
    StayingLaunch first = velmo.startStaying();
    EXPECT_FALSE(first.platform().has("-useDaemon"));
    const Report second = velmo.start();
    expectList({kDefaultJvm, "-useDaemon", std::to_string(first.pid()), "-startup"},
               {second.arguments.begin() + second.indexOf("-vm") + 1,
                second.arguments.begin() + second.indexOf("-vm") + 5});
    EXPECT_EQ(first.finish().status, 0);
    EXPECT_FALSE(velmo.start().has("-useDaemon"));
}

TEST(PlatformOptions, DaemonIsToldThePlatformInALaunchersProcess) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    StayingLaunch first = velmo.startStaying();
    first.platform();
    EXPECT_EQ(velmo.start().after("-useDaemon"), std::to_string(first.pid()));
    EXPECT_EQ(first.finish().status, 0);
}

TEST(PlatformOptions, MissingPiecesOfTheBaseLocationAreFatal) {
    Installation velmo;
    const std::string folder = velmo.base + "/macosx/x86/";
    velmo.set("eclipse.name", "other");
    expectLateFatal(velmo.launch(),
                    "ZYPRA0007E: " + folder + "other is not executable or does not exist.");
    velmo.write(folder + "other", "", 0655);
    expectLateFatal(velmo.launch(),
                    "ZYPRA0007E: " + folder + "other is not executable or does not exist.");
    velmo.unset("eclipse.name");
    std::filesystem::remove(folder + "eclipse_1615.so");
    expectLateFatal(velmo.launch(), "Error: addBaseEclipseToCommandLine: " + folder +
                                        "eclipse_1615.so is not executable or does not exist.");
}

TEST(PlatformOptions, LinkToAnExecutableIsExecutable) {
    Installation velmo;
    const std::string folder = velmo.base + "/macosx/x86/";
    std::filesystem::rename(folder + "eclipse", folder + "real");
    std::filesystem::create_symlink("real", folder + "eclipse");
    EXPECT_EQ(velmo.start().arguments.at(0), folder + "eclipse");
}

}  // namespace

}  // namespace acceptance
