// The final command line, every element in its place, for each of the three shapes: once with every
// piece that there is, once with none.
#include "checks.h"
#include "tests/acceptance/paths.h"

#include <algorithm>

namespace acceptance {

namespace {

// Fills in every property that adds something to a command line or to the environment.
void useEveryPiece(Installation& velmo) {
    velmo.set("application", "com.ovr.app").set("personality", "com.ovr.personality");
    velmo.set("product", "com.ovr.product");
    velmo.addInstallLine("product=com.ovr.user.product");
    velmo.addInstallLine("osgi.splashPath=${workspace.location}/splash");
    velmo.addInstallLine("vmarg.3.user=-D3.user=1");
    velmo.set("vmfix.noconsole", "-Dconsole=${workspace.location}/console");
    velmo.set("vmarg.4.properties", "-D4.properties=${rcp.home}");
    velmo.set("vmarg.1.given", "-Dnever").set("vmarg.2.extension", "-Dnever");
    velmo.set("vmarg.0.off", "");
    velmo.set("-Dsecond", "2").set("-Dfirst", "1");
    velmo.addLine("-Xss 2m").addLine("-Xrs").addLine("-Xshare:off");
    velmo.set("Xbootclasspath.prepend", "/p.jar").set("Xbootclasspath.append", "/a.jar");
    velmo.set("cp", "/c.jar:/d.jar");
    velmo.set("library.path.prepend", "/lib/p").set("library.path.append", "/lib/a");
    velmo.set("env.set.FOO", "bar").set("env.unset.GONE", "").set("env.JAVA_HIGH_ZIPFDS", "9");
    velmo.set("library.preload", "/hook.so");
    velmo.environment["GONE"] = "1";
    velmo.set("config.full.1", "-dir").set("config.full.2", "ltr").set("config.full.3", "");
    velmo.set("config.full.4", "vmarg.2.extension=-D2.extension=1");
    velmo.set("config.full.5", "-vmargs").set("config.full.6", "-Dbehind=1");
}

// Arguments that use every rule for them; `jvm` has its own jvm.properties.
Texts everyArgument(const Installation& velmo, const std::string& jvm) {
    return {"-vm",
            jvm,
            "-one",
            "-config",
            "full",
            "-perfJar",
            "/perf.jar",
            "-data",
            velmo.path("data area"),
            "-configuration",
            "/ignored",
            "-rcp_old_pid",
            "4711",
            "-resetconfig",
            "two words",
            "vmarg.1.given=-D1.given=1",
            "-vmargs",
            "-Dtail=1",
            "-vm",
            "/dropped",
            "-Dtail=2"};
}

const Texts kCopied = {"-one",
                       "-perfJar",
                       "/perf.jar",
                       "two words",
                       "vmarg.1.given=-D1.given=1",
                       "-dir",
                       "ltr",
                       "vmarg.2.extension=-D2.extension=1"};

std::string jvmWithProperties(const Installation& velmo) {
    velmo.write("jvm home/jvm.properties",
                "vmarg.5.jvm=-D5.jvm=1\nvmarg.3.user=-Dnever\n"
                "-Dfrom.jvm=1\n");
    return velmo.place(ACCEPTANCE_STANDIN_PROGRAM, "jvm home/bin/java");
}

Texts joined(const std::vector<Texts>& pieces) {
    Texts all;
    for (const Texts& piece : pieces) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

// The JVM's part from the tail of the command line to the class path, every piece present.
Texts fullJvmPart(const Installation& velmo, const std::string& configuration,
                  const std::string& workspace) {
    return {"-Dtail=1",
            "-Dtail=2",
            "-Dbehind=1",
            "-Dconsole=" + workspace + "/console",
            "-D1.given=1",
            "-D2.extension=1",
            "-D3.user=1",
            "-D4.properties=" + velmo.home,
            "-D5.jvm=1",
            "-Drcp.home=" + velmo.home,
            "-Drcp.data=" + workspace,
            "-Dosgi.splashPath=" + workspace + "/splash",
            "-Dcom.ovr.rcp.install.id=abc123",
            "-Drcp.install.config=" + configuration,
            "-Dsecond=2",
            "-Dfirst=1",
            "-Dfrom.jvm=1",
            "-Drcp.osgi.install.area=" + velmo.home + "/rcp/eclipse",
            "-Xss2m",
            "-Xrs",
            "-Xshare:off",
            "-Xbootclasspath/p:/p.jar",
            "-Xbootclasspath/a:/a.jar",
            "-cp",
            "/c.jar:/d.jar"};
}

Texts bareJvmPart(const Installation& velmo, const std::string& configuration,
                  const std::string& workspace) {
    return {"-Drcp.home=" + velmo.home, "-Drcp.data=" + workspace,
            "-Dcom.ovr.rcp.install.id=abc123", "-Drcp.install.config=" + configuration,
            "-Drcp.osgi.install.area=" + velmo.home + "/rcp/eclipse"};
}

Texts areas(const std::string& workspace, const std::string& configuration) {
    return {"-data", workspace, "-configuration", configuration};
}

Texts fullProductPart(const Installation& velmo) {
    return {"-application",
            "com.ovr.app",
            "-plugincustomization",
            velmo.base + "/plugin_customization.ini",
            "-product",
            "com.ovr.user.product",
            "-personality",
            "com.ovr.personality"};
}

Texts customization(const Installation& velmo) {
    return {"-plugincustomization", velmo.base + "/plugin_customization.ini"};
}

const Texts kEnd = {"-Dfile.encoding=UTF-8", "-XstartOnFirstThread"};

std::map<std::string, std::string> fullEnvironment(const Installation& velmo) {
    auto expected = velmo.environment;
    expected.erase("GONE");
    expected["FOO"] = "bar";
    expected["JAVA_HIGH_ZIPFDS"] = "9";
    expected["DYLD_LIBRARY_PATH"] = "/lib/p:/lib/a";
    expected["LD_PRELOAD"] = "/hook.so";
    return expected;
}

TEST(FullCommandLine, LauncherLibraryWithEveryPiece) {
    Installation velmo;
    velmo.workspace = velmo.path("data area");
    StayingLaunch first = velmo.startStaying({"-data", velmo.workspace});
    first.platform();
    useEveryPiece(velmo);
    const std::string jvm = jvmWithProperties(velmo);
    velmo.write(velmo.configuration() + "/rcpinstall.properties",
                readFile(velmo.configuration() + "/rcpinstall.properties") +
                    "product=com.ovr.user.product\nosgi.splashPath=${workspace.location}/splash\n"
                    "vmarg.3.user=-D3.user=1\n");
    Texts arguments = everyArgument(velmo, jvm);
    std::erase(arguments, "-resetconfig");
    const Report platform = velmo.start(arguments);
    expectList(joined({{velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
                       kCopied,
                       areas(velmo.workspace, velmo.configuration()),
                       fullProductPart(velmo),
                       {"-vm", jvm, "-useDaemon", std::to_string(first.pid()), "-startup",
                        "/perf.jar", "-vmargs"},
                       fullJvmPart(velmo, "user", velmo.workspace),
                       kEnd}),
               platform.arguments);
    EXPECT_EQ(platform.environment, fullEnvironment(velmo));
    EXPECT_EQ(first.finish().status, 0);
}

TEST(FullCommandLine, LauncherLibraryWithNoPiece) {
    Installation velmo;
    const Report platform = velmo.start({"-restart"});
    expectList(joined({{velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
                       areas(velmo.workspace, velmo.configuration()),
                       customization(velmo),
                       {"-startup", velmo.base + "/launcher.jar", "-vmargs"},
                       bareJvmPart(velmo, "user", velmo.workspace),
                       kEnd}),
               platform.arguments);
}

TEST(FullCommandLine, LauncherLibraryWithNothingGiven) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start();
    expectList(joined({{velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
                       areas(velmo.workspace, velmo.configuration()),
                       customization(velmo),
                       {"-vm", kDefaultJvm, "-startup", velmo.base + "/launcher.jar", "-vmargs"},
                       bareJvmPart(velmo, "user", velmo.workspace),
                       kEnd}),
               platform.arguments);
}

TEST(FullCommandLine, PlainJavaWithEveryPiece) {
    Installation velmo;
    velmo.useServiceConfiguration();
    useEveryPiece(velmo);
    const std::string jvm = jvmWithProperties(velmo);
    const Report platform = velmo.start(everyArgument(velmo, jvm));
    expectList(joined({{jvm},
                       fullJvmPart(velmo, "service", velmo.workspace),
                       {"org.eclipse.core.launcher.Main", "-nosplash", "--launcher.suppressErrors"},
                       kCopied,
                       areas(velmo.workspace, velmo.home + "/eclipse/.config"),
                       fullProductPart(velmo),
                       kEnd}),
               platform.arguments);
    EXPECT_EQ(platform.environment, fullEnvironment(velmo));
    EXPECT_EQ(platform.kind, "exec");
}

TEST(FullCommandLine, PlainJavaWithNoPiece) {
    Installation velmo;
    const std::string java = velmo.useServiceConfiguration();
    velmo.unset("jvm.location").unset("jvm.libpath").set("vm", java);
    const Report platform = velmo.start({"-restart"});
    expectList(joined({{java},
                       bareJvmPart(velmo, "service", velmo.workspace),
                       {"org.eclipse.core.launcher.Main", "-nosplash", "--launcher.suppressErrors"},
                       areas(velmo.workspace, velmo.home + "/eclipse/.config"),
                       customization(velmo),
                       kEnd}),
               platform.arguments);
}

TEST(FullCommandLine, ProvisioningWithEveryPiece) {
    Installation velmo;
    velmo.workspace = velmo.path("data area");
    useEveryPiece(velmo);
    const std::string jvm = jvmWithProperties(velmo);
    velmo.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
    velmo.set("provisioning.manifest.version", "2");
    velmo.set("vmarg.Dshare", "-Xshareclasses:name=velmo");
    const Launch launch = velmo.launch(everyArgument(velmo, jvm));
    EXPECT_EQ(launch.status, 0);
    ASSERT_TRUE(launch.platform.has_value()) << launch.log << launch.temporaryLog;
    Texts jvmPart = fullJvmPart(velmo, "user", velmo.workspace);
    jvmPart.insert(std::find(jvmPart.begin(), jvmPart.end(), "-Drcp.home=" + velmo.home),
                   "-Xshareclasses=none");
    expectList(joined({{velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
                       kCopied,
                       areas(velmo.workspace, velmo.configuration()),
                       fullProductPart(velmo),
                       {"-application", "com.ovr.provision", "-userProvLaunch", "-vm", jvm,
                        "-startup", "/perf.jar", "-vmargs"},
                       jvmPart}),
               launch.platform->arguments);
    expectList(launch.platform->arguments, provisioningParameters(launch.log));
    EXPECT_EQ(launch.platform->environment, fullEnvironment(velmo));
    EXPECT_EQ(launch.platform->pid, launch.pid);
    EXPECT_EQ(launch.platform->kind, "exec");
}

TEST(FullCommandLine, ProvisioningWithNoPiece) {
    Installation velmo;
    velmo.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
    const Report platform = velmo.start({"-restart"});
    expectList(joined({{velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors"},
                       areas(velmo.workspace, velmo.configuration()),
                       customization(velmo),
                       {"-application", "com.ovr.provision", "-userProvLaunch", "-startup",
                        velmo.base + "/launcher.jar", "-vmargs"},
                       bareJvmPart(velmo, "user", velmo.workspace)}),
               platform.arguments);
}

TEST(FullCommandLine, ProvisioningByAnInstallerIsNoUserLaunch) {
    Installation velmo;
    velmo.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
    velmo.set("invoke.eclipse.dylib", "1");
    const Report platform = velmo.start({"-rcpLauncherWait", "-provManifest", "m.xml"});
    EXPECT_EQ(platform.kind, "exec") << "a provisioning launch is never in-process";
    expectList(
        {velmo.base + "/macosx/x86/eclipse", "--launcher.suppressErrors", "-rcpLauncherWait",
         "-provManifest", "m.xml", "-data", velmo.workspace, "-configuration",
         velmo.configuration(), "-plugincustomization", velmo.base + "/plugin_customization.ini",
         "-application", "com.ovr.provision", "-vm", kDefaultJvm, "-startup",
         velmo.base + "/launcher.jar", "-vmargs"},
        {platform.arguments.begin(), platform.arguments.begin() + platform.indexOf("-vmargs") + 1});
}

}  // namespace

}  // namespace acceptance
