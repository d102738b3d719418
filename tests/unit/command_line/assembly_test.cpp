#include "launcher/command_line/assembly.h"

#include "diagnostics/whys.h"
#include "launcher/command_line/environment_settings.h"
#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"

#include <algorithm>

namespace rcp {
namespace {

using test::Pairs;
using test::propertyList;
using test::ScopedVariable;
using test::variable;
using testing::HasSubstr;

// An installation with a launcher executable, its library and a customization file.
class CommandLinePieces : public test::CommandLineTest {
  protected:
    CommandLinePieces() {
        inputs_.traits.eConfig = InstallConfiguration::kUser;
        write("base/macosx/x86/eclipse");
        write("base/macosx/x86/other");
        folder_.write("base/macosx/x86/eclipse_1615.so", "");
        folder_.write("c.ini", "");
    }
    void write(const std::string& name) const {
        folder_.write(name, "");
        std::filesystem::permissions(folder_.path() / name, std::filesystem::perms::owner_exec,
                                     std::filesystem::perm_options::add);
    }
    [[nodiscard]] PropertyList withBase(Pairs properties = {}) const {
        properties.emplace_back(L"rcp.base.location", folder_.wide("base"));
        return propertyList(properties);
    }
    const std::wstring program_ = folder_.wide("base/macosx/x86/eclipse");
};

TEST_F(CommandLinePieces, StartsWithTheLauncherExecutable) {
    line_.setProgram(L"-before", whys::kPlatformProgram);
    addBaseEclipseToCommandLine(line_, withBase());
    EXPECT_EQ(line_.arguments(), Arguments{program_});
    EXPECT_EQ(line_.library(), folder_.wide("base/macosx/x86/eclipse_1615.so"));
}

TEST_F(CommandLinePieces, ExecutableMayHaveAnotherName) {
    addBaseEclipseToCommandLine(line_, withBase({{L"eclipse.name", L"other"}}));
    EXPECT_EQ(line_.arguments(), Arguments{folder_.wide("base/macosx/x86/other")});
}

TEST_F(CommandLinePieces, MissingBaseLocationIsFatal) {
    EXPECT_FATAL(addBaseEclipseToCommandLine(line_, {}),
                 HasSubstr("ZYPRA0011E: Unable to determine RCP Base Plugin location. If the "
                           "problem persists, reinstall."));
}

TEST_F(CommandLinePieces, ExecutableMustBeOne) {
    EXPECT_FATAL(addBaseEclipseToCommandLine(line_, withBase({{L"eclipse.name", L"none"}})),
                 HasSubstr("ZYPRA0007E: " + folder_.narrow("base/macosx/x86/none") +
                           " is not executable or does not exist."));
    EXPECT_FATAL(
        addBaseEclipseToCommandLine(line_, withBase({{L"eclipse.name", L"eclipse_1615.so"}})),
        HasSubstr("ZYPRA0007E"));
}

TEST_F(CommandLinePieces, LibraryMustExist) {
    std::filesystem::remove(folder_.path() / "base/macosx/x86/eclipse_1615.so");
    EXPECT_FATAL(addBaseEclipseToCommandLine(line_, withBase()),
                 HasSubstr("Error: addBaseEclipseToCommandLine: " +
                           folder_.narrow("base/macosx/x86/eclipse_1615.so") +
                           " is not executable or does not exist."));
}

TEST_F(CommandLinePieces, StartupJarIsTheBasesUnlessAnotherIsNamed) {
    addStartupToCommandLine(line_, propertyList({{L"rcp.base.location", L"/b"}}),
                            {L"p", L"-perfjar"});
    EXPECT_EQ(line_.arguments(), (Arguments{L"-startup", L"/b/launcher.jar"}));
    line_ = CommandLine(start_);
    addStartupToCommandLine(line_, propertyList({}), {L"p", L"-perfJar", L"/perf.jar"});
    EXPECT_EQ(line_.arguments(), (Arguments{L"-startup", L"/perf.jar"}));
}

TEST_F(CommandLinePieces, MainClassIsTheFrameworks) {
    addMainClassToCommandLine(line_);
    EXPECT_EQ(line_.arguments(), Arguments{L"org.eclipse.core.launcher.Main"});
}

TEST_F(CommandLinePieces, ClassPathIsThePropertys) {
    for (const int code : {1, 2, 3, 4, 5, 6, 8}) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        inputs_.properties =
            propertyList({{L"cp", L"/a.jar:/b.jar"}, {L"rcp.base.location", L"/b"}});
        line_ = CommandLine(start_);
        addClasspathToCommandLine(line_, inputs_);
        EXPECT_EQ(line_.arguments(), (Arguments{L"-cp", L"/a.jar:/b.jar"})) << code;
        line_ = CommandLine(start_);
        inputs_.properties = {};
        addClasspathToCommandLine(line_, inputs_);
        EXPECT_EQ(line_.arguments(), Arguments{}) << code;
    }
}

TEST_F(CommandLinePieces, ClassPathOfTheServiceInitialisationIsTheStartupJar) {
    inputs_.traits.eConfig = InstallConfiguration::kMultiuserServiceInit;
    inputs_.properties = propertyList({{L"cp", L"/a.jar"}, {L"rcp.base.location", L"/b"}});
    addClasspathToCommandLine(line_, inputs_);
    EXPECT_EQ(line_.arguments(), (Arguments{L"-cp", L"/b/startup.jar"}));
}

// The whole list, with every piece present or none.
class WholeCommandLine : public CommandLinePieces {
  protected:
    void prepareEverything() {
        inputs_.runningPlatform = 4711;
        inputs_.arguments = {L"p",           L"-x",      L"${rcp.data}/f",
                             L"-vm",         L"/j/java", L"-data",
                             L"${rcp.home}", L"-vmargs", L"-Du=${env.HOME}"};
        inputs_.properties = withBase({{L"rcp.install.id", L"id"},
                                       {L"plugincustomization", folder_.wide("c.ini")},
                                       {L"application", L"app"},
                                       {L"product", L"pro"},
                                       {L"personality", L"per"},
                                       {L"provisioning.application", L"prov.app"},
                                       {L"vmfix.noconsole", L"-Dfix"},
                                       {L"-Dd", L"1"},
                                       {L"-Xmx", L"1g"},
                                       {L"Xbootclasspath.prepend", L"/bp"},
                                       {L"Xbootclasspath.append", L"/ba"},
                                       {L"cp", L"/cp"},
                                       {L"key", L"value"},
                                       {L"library.path.append", L"/lib"},
                                       {L"library.preload", L"/preload.so"},
                                       {L"env.set.LD_PRELOAD", L"/not/this.so"},
                                       {L"env.set.JAVA_HIGH_ZIPFDS", L"1"},
                                       {L"env.JAVA_HIGH_ZIPFDS", L"2"}});
        inputs_.userProperties = propertyList({{L"osgi.splashPath", L"${prop.s}"}, {L"s", L"/s"}});
        inputs_.vmargMap = test::vmargMap({{L"vmarg.b", L"-Db"}, {L"vmarg.a", L"-Da=${prop.key}"}});
        finishInputs();
    }
    void prepareNothing() {
        inputs_.runningPlatform.reset();
        inputs_.arguments = {L"p"};
        inputs_.properties = withBase({{L"rcp.install.id", L"id"},
                                       {L"plugincustomization", folder_.wide("c.ini")},
                                       {L"provisioning.application", L"prov.app"}});
        finishInputs();
    }
    const Arguments& assembled(LaunchKind kind = LaunchKind::kPlatform) {
        expandPlaceholders(inputs_);
        Plan plan = getUserCmdString(inputs_, kind);
        applyEnvironment(plan.environment);
        EXPECT_EQ(plan.kind, kind);
        line_ = std::move(plan.line);
        return line_.arguments();
    }
    // `front`, the JVM section of everything present, `back`.
    [[nodiscard]] Arguments around(Arguments front, const Arguments& back = {}) const {
        const Arguments section = {
            L"-Du=${env.HOME}",
            L"-Dfix",
            L"-Da=value",
            L"-Db",
            L"-Drcp.home=/home",
            L"-Drcp.data=/ws",
            L"-Dosgi.splashPath=/s",
            L"-Dcom.ovr.rcp.install.id=id",
            L"-Drcp.install.config=" + installConfigurationName(inputs_.traits.eConfig),
            L"-Dd=1",
            L"-Drcp.osgi.install.area=/home/rcp/eclipse",
            L"-Xmx1g",
            L"-Xbootclasspath/p:/bp",
            L"-Xbootclasspath/a:/ba",
            L"-cp"};
        front.insert(front.end(), section.begin(), section.end());
        front.insert(front.end(), back.begin(), back.end());
        return front;
    }
    [[nodiscard]] std::wstring customization() const { return folder_.wide("c.ini"); }

    ScopedVariable libraryPath_{"DYLD_LIBRARY_PATH", "inherited"};
    ScopedVariable zip_{"JAVA_HIGH_ZIPFDS", "inherited"};
    ScopedVariable preload_{"LD_PRELOAD"};

  private:
    void finishInputs() {
        inputs_.workspace = L"/ws";
        inputs_.configuration = L"/ws/.config";
        inputs_.installDir = L"/home";
    }
};

TEST_F(WholeCommandLine, ForTheLauncherLibrary) {
    prepareEverything();
    EXPECT_EQ(assembled(), around({program_,
                                   L"--launcher.suppressErrors",
                                   L"-x",
                                   L"/ws/f",
                                   L"-data",
                                   L"/ws",
                                   L"-configuration",
                                   L"/ws/.config",
                                   L"-application",
                                   L"app",
                                   L"-plugincustomization",
                                   customization(),
                                   L"-product",
                                   L"pro",
                                   L"-personality",
                                   L"per",
                                   L"-vm",
                                   L"/j/java",
                                   L"-useDaemon",
                                   L"4711",
                                   L"-startup",
                                   folder_.wide("base/launcher.jar"),
                                   L"-vmargs"},
                                  {L"/cp"}));
    EXPECT_EQ(variable("DYLD_LIBRARY_PATH"), "/lib");
    EXPECT_EQ(variable("LD_PRELOAD"), "/preload.so") << "behind the variables";
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "2") << "last of all";
}

TEST_F(WholeCommandLine, ForTheLauncherLibraryWithNothingToSay) {
    for (const int code : {2, 3, 4, 6, 8}) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        prepareNothing();
        EXPECT_EQ(
            assembled(),
            (Arguments{program_, L"--launcher.suppressErrors", L"-data", L"/ws", L"-configuration",
                       L"/ws/.config", L"-plugincustomization", customization(), L"-startup",
                       folder_.wide("base/launcher.jar"), L"-vmargs", L"-Drcp.home=/home",
                       L"-Drcp.data=/ws", L"-Dcom.ovr.rcp.install.id=id",
                       L"-Drcp.install.config=" + installConfigurationName(inputs_.traits.eConfig),
                       L"-Drcp.osgi.install.area=/home/rcp/eclipse"}))
            << code;
    }
    EXPECT_EQ(variable("DYLD_LIBRARY_PATH"), "inherited");
    EXPECT_EQ(variable("LD_PRELOAD"), std::nullopt);
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "500");
}

TEST_F(WholeCommandLine, ForPlainJava) {
    const std::pair<InstallConfiguration, std::wstring> classPaths[] = {
        {InstallConfiguration::kService, L"/cp"},
        {InstallConfiguration::kMultiuserServiceInit, folder_.wide("base/startup.jar")}};
    for (const auto& [configuration, classPath] : classPaths) {
        inputs_.traits.eConfig = configuration;
        prepareEverything();
        EXPECT_EQ(assembled(),
                  around({L"/j/java"}, {classPath, L"org.eclipse.core.launcher.Main", L"-nosplash",
                                        L"--launcher.suppressErrors", L"-x", L"/ws/f", L"-data",
                                        L"/ws", L"-configuration", L"/ws/.config", L"-application",
                                        L"app", L"-plugincustomization", customization(),
                                        L"-product", L"pro", L"-personality", L"per"}));
        EXPECT_EQ(line_.library(), L"") << "no library is needed";
        EXPECT_EQ(variable("DYLD_LIBRARY_PATH"), "/lib");
        EXPECT_EQ(variable("LD_PRELOAD"), "/preload.so");
        EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "2");
    }
}

TEST_F(WholeCommandLine, ForPlainJavaWithNothingToSay) {
    inputs_.traits.eConfig = InstallConfiguration::kService;
    prepareNothing();
    inputs_.properties.append({L"vm", L"/j", {}});
    EXPECT_EQ(
        assembled(),
        (Arguments{L"/j", L"-Drcp.home=/home", L"-Drcp.data=/ws", L"-Dcom.ovr.rcp.install.id=id",
                   L"-Drcp.install.config=service", L"-Drcp.osgi.install.area=/home/rcp/eclipse",
                   L"org.eclipse.core.launcher.Main", L"-nosplash", L"--launcher.suppressErrors",
                   L"-data", L"/ws", L"-configuration", L"/ws/.config", L"-plugincustomization",
                   customization()}));
}

TEST_F(WholeCommandLine, ForPlainJavaNeedsAJvm) {
    inputs_.traits.eConfig = InstallConfiguration::kService;
    prepareNothing();
    EXPECT_FATAL(assembled(), HasSubstr("ZYPRA0002E: vm must be specified with -vm argument!"));
}

TEST_F(WholeCommandLine, ForProvisioning) {
    for (const int code : {2, 3, 6}) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        prepareEverything();
        EXPECT_EQ(assembled(LaunchKind::kUserProvisioning),
                  around({program_,
                          L"--launcher.suppressErrors",
                          L"-x",
                          L"/ws/f",
                          L"-data",
                          L"/ws",
                          L"-configuration",
                          L"/ws/.config",
                          L"-application",
                          L"app",
                          L"-plugincustomization",
                          customization(),
                          L"-product",
                          L"pro",
                          L"-personality",
                          L"per",
                          L"-application",
                          L"prov.app",
                          L"-userProvLaunch",
                          L"-vm",
                          L"/j/java",
                          L"-startup",
                          folder_.wide("base/launcher.jar"),
                          L"-vmargs"},
                         {L"/cp"}))
            << code;
    }
    EXPECT_EQ(variable("DYLD_LIBRARY_PATH"), "/lib");
    EXPECT_EQ(variable("LD_PRELOAD"), "/preload.so");
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "2");
}

TEST_F(WholeCommandLine, ForProvisioningByAnInstallerIsNotTheUsers) {
    prepareNothing();
    EXPECT_EQ(
        assembled(LaunchKind::kInstallerProvisioning),
        (Arguments{program_, L"--launcher.suppressErrors", L"-data", L"/ws", L"-configuration",
                   L"/ws/.config", L"-plugincustomization", customization(), L"-application",
                   L"prov.app", L"-startup", folder_.wide("base/launcher.jar"), L"-vmargs",
                   L"-Drcp.home=/home", L"-Drcp.data=/ws", L"-Dcom.ovr.rcp.install.id=id",
                   L"-Drcp.install.config=user", L"-Drcp.osgi.install.area=/home/rcp/eclipse"}));
}

TEST_F(WholeCommandLine, DescriptionFileSuppressesTheConsoleFix) {
    prepareEverything();
    inputs_.arguments[4] = L"/j/default.ee";
    const Arguments& written = assembled();
    EXPECT_EQ(std::count(written.begin(), written.end(), L"-Dfix"), 0);
}

TEST_F(WholeCommandLine, UnresolvedPlaceholdersAreFatalBeforeAnythingIsWritten) {
    prepareEverything();
    inputs_.userProperties.append({L"x", L"${prop.key}", {}});
    EXPECT_FATAL(assembled(),
                 HasSubstr("ZYPRA0088E: property substitution is invalid (${prop.key})"))
        << "the user's list does not see the launcher's";
}

}  // namespace
}  // namespace rcp
