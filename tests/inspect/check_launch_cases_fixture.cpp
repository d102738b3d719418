#include "check_fixture.h"

#include <filesystem>
#include <fstream>

namespace rcp::inspect {
namespace {

const std::string kBase = kBaseFolder;

}  // namespace

std::vector<Case> jvmCases() {
    return {
        {"RI401", "HeapThatStartsOverItsLimit", launcherHas("vmarg.a=-Xms2g\nvmarg.b=-Xmx512m\n"),
         launcherHas("vmarg.a=-Xms512m\nvmarg.b=-Xmx512m\n")},
        {"RI401", "HeapSizesInTwoFormsAndFiles",
         both(launcherHas("-XX:MaxHeapSize=1048576\n"), jvmHas("vmarg.a=-Xms1025k\n")),
         both(launcherHas("-XX:MaxHeapSize=1048576\n"), jvmHas("vmarg.a=-Xms1024k\n")),
         kJvmProperties},
        {"RI402", "TwoCollectors", launcherHas("vmarg.a=-XX:+UseG1GC\nvmarg.b=-XX:+UseSerialGC\n"),
         launcherHas("vmarg.a=-XX:+UseG1GC\nvmarg.b=-XX:-UseSerialGC\n"), kLauncherProperties, 2},
        {"RI402", "CollectorsInTwoFiles",
         both(launcherHas("vmarg.a=-XX:+UseZGC\n"), jvmHas("-XX:+UseParallelGC\n")),
         both(launcherHas("vmarg.a=-XX:+UseZGC\n"), jvmHas("-XX:+UseNUMA\n")), kJvmProperties},
        {"RI403", "HeapLimitTwice", launcherHas("vmarg.a=-Xmx1g\nvmarg.b=-Xmx2g\n"),
         launcherHas("vmarg.a=-Xmx1g\nvmarg.b=-Xss2m\n")},
        {"RI403", "SystemPropertyTwice", launcherHas("vmarg.a=-Da=b\n-Da=c\n"),
         launcherHas("vmarg.a=-Da=b\n-Dab=c\n")},
        {"RI403", "SystemPropertyOfTheLaunchers", launcherHas("vmarg.a=-Drcp.home=/b\n"),
         launcherHas("vmarg.a=-Drcp.homes=/b\n")},
        {"RI404", "JvmArgumentThatIsNoOption", launcherHas("vmarg.a=Xmx1g\n"),
         launcherHas("vmarg.a=-Xmx1g\nvmarg.b=\n")},
        {"RI404", "ValueOfAnOptionOfTheProgramJava",
         launcherHas("vmarg.a=--add-opens\nvmarg.b=java.base/java.lang=ALL-UNNAMED\n"),
         launcherHas("vmarg.a=--add-opens\nvmarg.b=java.base/java.lang=ALL-UNNAMED\n"
                     "install.configuration=service\n"),
         kLauncherProperties, 2},
        {"RI405", "JvmArgumentThatAnEarlierFileHolds",
         both(launcherHas("vmarg.a=-Da=b\n"), jvmHas("vmarg.a=-Da=c\n")),
         both(launcherHas("vmarg.a=-Da=b\n"), jvmHas("vmarg.b=-Db=c\n")), kJvmProperties},
        {"RI405", "JvmArgumentOfTheUsersThatNeverCounts",
         both(launcherHas("vmarg.a=-Da=b\n"), masterHas("vmarg.a=-Da=c\n")),
         masterHas("vmarg.a=-Da=c\n"), kMaster},
        {"RI405", "JvmArgumentThatIsNotSwitchedOff",
         both(launcherHas("vmarg.a=-Da=b\n"), jvmHas("vmarg.a=-Da=c\n")),
         both(launcherHas("vmarg.a=\n"), jvmHas("vmarg.a=-Da=c\n")), kJvmProperties},
    };
}

std::vector<Case> extensionCases() {
    const std::string complete = "config.initial.1=-initialCompleteFlag\nconfig.initial.2=done\n";
    return {
        {"RI501", "ExtensionWithAGap", launcherHas("config.k.1=-a\nconfig.k.3=-b\n"),
         launcherHas("config.k.2=-a\nconfig.k.1=-b\n"), kLauncherProperties, 2},
        {"RI501", "ExtensionThatBeginsWithTwo", launcherHas("config.a.b.2=-a\n"),
         launcherHas("config.a.b.1=-a\n")},
        {"RI501", "InitialConfigurationWithAGap", launcherHas("config.initial.4=x\n" + complete),
         launcherHas(complete)},
        {"RI502", "InitialConfigurationWithoutCompletion", launcherHas("config.initial.1=-a\n"),
         launcherHas(complete)},
        {"RI502", "InitialConfigurationWithoutTheNameOfItsProperty",
         launcherHas("config.initial.1=-initialCompleteFlag\n"),
         launcherHas("install.configuration=lockdown\nconfig.initial.1=-initialCompleteFlag\n")},
        {"RI503", "QuotesInAnExtension", launcherHas("config.k.1=\"a b\"\n"),
         launcherHas("config.k.1=a b\n")},
        {"RI503", "QuotesAroundTheJvm",
         differs(kLauncherProperties, "=${rcp.home}/jre", "=\"${rcp.home}/jre\""), nothingChanges,
         kLauncherProperties, inAll(5)},
        {"RI503", "JvmArgumentWithoutValueInAnExtension", launcherHas("config.k.1=vmarg.a\n"),
         launcherHas("config.k.1=vmarg.a=-Da=b\n")},
        {
            "RI503",
            "JavaHomeInAnExtension",
            launcherHas("config.k.1=-Djava.home=/a\n"),
            launcherHas("config.k.1=-Djava.hom=/a\n"),
        },
    };
}

std::vector<Case> fileCases() {
    static const std::string settings = kBase + "/config/user/config.ini";
    const std::string program = kBase + "/macosx/x86/eclipse";
    const Change inProcess = differs(kLauncherProperties, "dylib=0", "dylib=1");
    const Change otherBase = [](const Maker& maker) {
        std::filesystem::rename(maker.folder().path() / kBase,
                                maker.folder().path() / "rcp/platform");
        maker.replace(kLauncherProperties, kBase, "rcp/platform");
    };
    const Change isScript = [program](const Maker& maker) {
        std::ofstream(maker.folder().path() / program) << "#!/bin/sh\n";
    };
    const auto isLong = [](const char* name) {
        return Change([=](const Maker& maker) {
            maker.folder().write(name, std::string((std::size_t{16} << 20U) + 1, '\n'));
        });
    };
    const Change hasCopy = has("workspace/.config/config.ini", "a=1\n");
    const Change isService =
        both(launcherHas("install.configuration=service\n"),
             both(has(kBase + "/config.ini", ""), has(kBase + "/rcpinstall.properties", "")));
    return {
        {"RI601", "NoPropertyFile", lacks(kLauncherProperties), nothingChanges, kLauncherProperties,
         inAll(0)},
        {"RI601", "FolderInPlaceOfAPropertyFile",
         both(lacks(kJvmProperties), has(std::string(kJvmProperties) + "/file", "")),
         lacks(kJvmProperties), kJvmProperties, inAll(0)},
        {"RI601", "NoProgram", lacks(program), nothingChanges, kLauncherProperties, inAll(2)},
        {"RI601", "NoProgramOfThatName", launcherHas("eclipse.name=other\n"),
         launcherHas("eclipse.name=eclipse\n")},
        {"RI601", "NoLauncherLibrary", lacks(program + "_1615.so"), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI601", "NoStartupJar", lacks(kBase + "/launcher.jar"), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI601", "NoMasterOfConfigIni", lacks(kBase + "/config/user/config.ini"),
         both(lacks(kBase + "/config/user/config.ini"), has(kBase + "/config.ini", "")),
         kLauncherProperties, inAll(2)},
        {"RI601", "NoMasterOfTheUsersProperties", lacks(kMaster), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI601", "NoJvm", lacks(kJvmLibrary), nothingChanges, kLauncherProperties, inAll(5)},
        {"RI601", "JvmWithoutItsJre", lacks(kClasses), nothingChanges, kLauncherProperties,
         inAll(5)},
        {"RI601", "JvmWithEmptyClasses", both(lacks(kClasses), has(kClasses, "")),
         both(lacks(kClasses), has("jre/lib/rt.jar", "classes")), kLauncherProperties, inAll(5)},
        {"RI601", "JvmBesideItsClasses",
         both(lacks(kClasses), has("jre/lib/server/modules", "classes")),
         both(lacks(kClasses), has("lib/rt.jar", "classes")), kLauncherProperties, inAll(5)},
        {"RI601", "NoPluginCustomizationFile", lacks("rcp/plugins.ini"), nothingChanges,
         kLauncherProperties, inAll(7)},
        {"RI601", "NoRestartProgram",
         launcherHas("config.k.restartExe.macosx=${rcp.home}/rcp/nothing\n"),
         launcherHas("config.k.restartExe.macosx=${rcp.home}/rcp/rcplauncher\n")},
        {"RI601", "NoClassPathOfAService",
         launcherHas("cp=/nothing.jar\ninstall.configuration=service\n"),
         launcherHas("cp=/nothing.jar\ninstall.configuration=user\n")},
        {"RI601", "NoClassPathOfAServiceThatIsNoFolderOfJars",
         both(isService, launcherHas("cp=/nothing/a*\n")),
         both(isService, launcherHas("cp=/nothing/*\n")), kLauncherProperties, 2},
        {"RI602", "ProgramThatIsNotExecutable", isNotExecutable(program), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI602", "LauncherThatIsNotExecutable", isNotExecutable("rcp/rcplauncher"), nothingChanges,
         "rcp/rcplauncher", inAll(0)},
        {"RI602", "RestartProgramThatIsNotExecutable",
         launcherHas("config.k.restartExe.macosx=${rcp.home}/rcp/plugins.ini\n"),
         launcherHas("config.k.restartExe.macosx=${rcp.home}/rcp/rcplauncher\n")},
        {"RI602", "JvmOfAServiceThatIsNotExecutable",
         launcherHas("install.configuration=service\n"), nothingChanges, kLauncherProperties,
         inAll(5)},
        {"RI603", "ScriptThatIsNotRecognised", both(isScript, otherBase), otherBase,
         kLauncherProperties, inAll(2)},
        {"RI603", "ScriptThatIsNotStarted", both(isScript, otherBase),
         both(both(isScript, otherBase), inProcess), kLauncherProperties, inAll(2)},
        {"RI603", "ScriptThatIsRecognised", both(isScript, otherBase), isScript,
         kLauncherProperties, inAll(2)},
        {"RI605", "DebugMarker", has("rcp/rcplauncher.debug", ""), nothingChanges,
         "rcp/rcplauncher.debug", inAll(0)},
        {"RI606", "NoMasterOfPlatformXml", lacks(kBase + "/config/user/platform.xml"),
         both(lacks(kBase + "/config/user/platform.xml"),
              launcherHas("update.policy.managed=false\n")),
         kLauncherProperties, inAll(2)},
        {"RI607", "ConfigIniThatChangedBehindTheUsersCopy",
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=2\nown=x\n")),
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=1\nown=x\n")),
         settings.c_str(), inAll(1)},
        {"RI607", "MasterPropertiesThatChangedBehindTheUsersCopy",
         both(masterHas("provisioning.manifest.version=2\n"),
              has("workspace/.config/rcpinstall.properties",
                  "product=former\nprovisioning.manifest.version=1\n")),
         has("workspace/.config/rcpinstall.properties", "product=mine\n"), kMaster, inAll(1)},
        {"RI607", "MasterPropertiesThatTheUserHasNotSwitchedOff",
         has("workspace/.config/rcpinstall.properties", "product=former\n"),
         has("workspace/.config/rcpinstall.properties", "product=\n"), kMaster, inAll(1)},
        {"RI607", "ConfigIniOfAnAreaThatIsKept",
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=2\n")),
         both(both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=2\n")),
              has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n")),
         settings.c_str(), inAll(1)},
        {"RI607", "ConfigIniThatChangedBehindACopyThatIsAFile",
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=2\n")),
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini/a", "")), settings.c_str(),
         inAll(1)},
        {"RI608", "CopyOfConfigIniWithoutAnything",
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "")),
         has("workspace/.config/config.ini", ""), "workspace/.config/config.ini", inAll(0)},
        {"RI608", "UsersPropertiesWithoutWhatTheLauncherAppends",
         has("workspace/.config/rcpinstall.properties", "product=mine\n"), nothingChanges,
         "workspace/.config/rcpinstall.properties", inAll(0)},
        {"RI608", "UsersPropertiesOfAnAreaThatIsKept",
         has("workspace/.config/rcpinstall.properties", "product=mine\n"),
         has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n"),
         "workspace/.config/rcpinstall.properties", inAll(0)},
        {"RI608", "PlatformXmlThatEndsEarly",
         has("workspace/.config/org.eclipse.update/platform.xml", "<config>\n"),
         has("workspace/.config/org.eclipse.update/platform.xml", "<config>\n</config>\n"),
         "workspace/.config/org.eclipse.update/platform.xml", inAll(0)},
        {"RI608", "ArgumentsWithoutTheirNumber",
         has("workspace/.config/args.properties", "arg0=a\n"),
         has("workspace/.config/args.properties", "arg0=a\nargc=1\n"),
         "workspace/.config/args.properties", inAll(0)},
        {"RI813", "MasterOfManyMegabytes", both(isLong(settings.c_str()), hasCopy), hasCopy,
         settings.c_str(), inAll(0)},
        {"RI813", "UsersPropertiesOfManyMegabytes",
         isLong("workspace/.config/rcpinstall.properties"), nothingChanges,
         "workspace/.config/rcpinstall.properties", inAll(0)},
        {"RI813", "ArgumentsOfManyMegabytes", isLong("workspace/.config/args.properties"),
         has("workspace/.config/args.properties", "argc=1\n"), "workspace/.config/args.properties",
         inAll(0)},
        {"RI608", "ArgumentsWithoutTheirNumberThatAreNotTooLong",
         has("workspace/.config/args.properties", "arg0=a\n"),
         isLong("workspace/.config/args.properties"), "workspace/.config/args.properties",
         inAll(0)},
        {"RI607", "ConfigIniThatIsNotTooLong",
         both(has(settings, "a=1\n"), has("workspace/.config/config.ini", "a=2\n")),
         both(has(settings, "a=1\n"), isLong("workspace/.config/config.ini")), settings.c_str(),
         inAll(1)},
        {"RI610", "JvmPropertiesThatLeadToThemselves", isLinkToItself(kJvmProperties),
         lacks(kJvmProperties), kJvmProperties, inAll(0)},
        {"RI610", "JvmPropertiesOfTheInstallationThatLeadToThemselves",
         both(lacks(kJvmProperties),
              both(has(kDefaultJvmProperties, ""), isLinkToItself(kDefaultJvmProperties))),
         both(has(kDefaultJvmProperties, ""), isLinkToItself(kDefaultJvmProperties)),
         kDefaultJvmProperties, inAll(0)},
    };
}

}  // namespace rcp::inspect
