#include "check_fixture.h"
#include "inspect/report/zip_archive.h"

#include <filesystem>

namespace rcp::inspect {
namespace {

const std::string kBase = kBaseFolder;
const std::string kProgram = kBase + "/macosx/x86/eclipse";
const std::string kLibrary = kBase + "/macosx/x86/eclipse_1615.so";
const std::string kJar = kBase + "/launcher.jar";
const std::string kFramework = kBase + "/plugins/org.eclipse.osgi_1.0.jar";
constexpr char kConfigIni[] = "rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini";
constexpr char kList[] = "rcp/eclipse/plugins/com.ovr.rcp.base/configuration/bundles.info";

// What is there becomes another text, a program that stays one.
Change becomes(const std::string& file, const std::string& text) {
    return [=](const Maker& maker) { maker.folder().write(file, text); };
}

Change isCut(const std::string& file) {
    return [=](const Maker& maker) {
        const auto path = maker.folder().path() / file;
        std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    };
}

Change configHas(const std::string& text) {
    return has(kConfigIni, text);
}

// A jar with the platform's launcher and a class "a.Main".
Change isJarWith(const std::string& manifest, const std::string& file = kJar) {
    return [=](const Maker& maker) {
        ZipArchive archive(0);
        for (const char* name : {"org/eclipse/equinox/launcher/Main.class",
                                 "org/eclipse/core/launcher/Main.class", "a/Main.class"}) {
            archive.add(name, "");
        }
        if (!manifest.empty()) {
            archive.add("META-INF/MANIFEST.MF", manifest);
        }
        maker.folder().write(file, archive.bytes());
    };
}

Change isService() {
    return [](const Maker& maker) {
        maker.place(kJvmLibrary, "standin_platform");
        maker.append(kLauncherProperties, "install.configuration=service\n");
        maker.append("rcp/eclipse/plugins/com.ovr.rcp.base/config/config.ini", "");
        maker.append(kLauncherProperties, "cp=" + maker.folder().narrow(kJar) + "\n");
    };
}

// A folder in place of a file, with that file in it.
Change isFolderWith(const std::string& folder, const std::string& file) {
    return [=](const Maker& maker) {
        maker.remove(folder);
        maker.folder().write(folder + "/" + file, "");
    };
}

// The launch names the program of its JVM, not its library.
Change isProgram() {
    return [](const Maker& maker) {
        maker.place("jre/bin/java", "standin_platform");
        maker.replace(kLauncherProperties, "jvm.libpath=/lib/server/libjvm.so",
                      "jvm.libpath=/bin/java");
    };
}

Change isCalled(const std::string& file, const std::string& name) {
    return [=](const Maker& maker) {
        std::filesystem::rename(maker.folder().path() / file, maker.folder().path() / name);
    };
}

Change isLonger(const std::string& file) {
    return [=](const Maker& maker) {
        std::filesystem::resize_file(maker.folder().path() / file, 17U << 20U);
    };
}

std::vector<Case> codeCases() {
    return {
        {"RI801", "ProgramThatIsText", becomes(kProgram, "no program"), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI801", "ProgramWithoutInterpreter", becomes(kProgram, "#!/no/such/shell\n"),
         becomes(kProgram, "#!/bin/sh\n"), kLauncherProperties, inAll(2)},
        {"RI801", "ProgramThatWasCut", isCut(kProgram), nothingChanges, kLauncherProperties,
         inAll(2)},
        {"RI801", "JvmOfAServiceThatIsText", both(isService(), becomes(kJvmLibrary, "no program")),
         isService(), kLauncherProperties, inAll(5)},
        {"RI801", "JvmOfAServiceThatIsAFolder",
         both(isService(), isFolderWith(kJvmLibrary, "java")), isService(), kLauncherProperties,
         inAll(5)},
        {"RI802", "EmptyLauncherLibrary", becomes(kLibrary, ""), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI802", "LauncherLibraryThatWasCut", isCut(kLibrary), nothingChanges, kLauncherProperties,
         inAll(2)},
        {"RI802", "LibraryOfTextThatIsLong", becomes(kLibrary, std::string(100000, 'a')),
         nothingChanges, kLauncherProperties, inAll(2)},
        {"RI802", "LauncherLibraryWithoutEntryPoint", isStandIn(kLibrary, "standin_without_run.so"),
         nothingChanges, kLauncherProperties, inAll(2)},
        {"RI802", "JvmThatIsText", becomes(kJvmLibrary, "no library"), nothingChanges,
         kLauncherProperties, inAll(5)},
        {"RI802", "JvmThatIsAnotherLibrary", isStandIn(kJvmLibrary, "standin_eclipse.so"),
         nothingChanges, kLauncherProperties, inAll(5)},
        {"RI802", "JvmThatIsAProgramByAnotherName", isStandIn(kJvmLibrary, "standin_platform"),
         nothingChanges, kLauncherProperties, inAll(5)},
        {"RI817", "JvmThatIsAProgram", isProgram(),
         both(isProgram(), launcherHas("vmarg.a=-XX:+IgnoreUnrecognizedVMOptions\n")),
         kLauncherProperties, inAll(5)},
        {"RI817", "JvmOfAServiceThatGetsIt",
         both(isService(), launcherHas("vmarg.a=-XstartOnFirstThread\n")), isService(),
         kLauncherProperties, inAll(5)},
    };
}

std::vector<Case> jarCases() {
    return {
        {"RI601", "StartupJarThatLeadsToItself", isLinkToItself(kJar), nothingChanges,
         kLauncherProperties, inAll(2)},
        {"RI803", "EmptyStartupJar", becomes(kJar, ""), nothingChanges, kLauncherProperties,
         inAll(2)},
        {"RI803", "StartupJarThatWasCut", isCut(kJar), nothingChanges, kLauncherProperties,
         inAll(2)},
        {"RI803", "JarWithoutManifest",
         both(configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"),
              isJarWith("", kFramework)),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(1)},
        {"RI803", "EmptyFramework",
         both(configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"),
              becomes(kFramework, "")),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(1)},
        {"RI803", "StartupJarWithoutAnything",
         // The record with which a zip file without entries ends.
         becomes(kJar, std::string("PK\x05\x06").append(18, '\0')), isJarWith(""),
         kLauncherProperties, inAll(2)},
        {"RI816", "StartupJarThatStartsAnotherClass", isJarWith("Main-Class: a.Main\n"),
         isJarWith("Main-Class: b.Main\n"), kLauncherProperties, inAll(2)},
        {"RI804", "ClassPathWithoutTheMainClass",
         both(isService(), differs(kLauncherProperties, "/launcher.jar", "/config")), isService(),
         kLauncherProperties, 2},
    };
}

std::vector<Case> frameworkCases() {
    const Change named = configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n");
    // Both where the entry stands and in the jar's directory.
    const Change hasNoStarter = both(differs(kFramework, "/EclipseStarter", "/EclipseStopper"),
                                     differs(kFramework, "/EclipseStarter", "/EclipseStopper"));
    return {
        {"RI803", "FolderAsFramework",
         both(named, isFolderWith(kFramework, "META-INF/MANIFEST.MF")),
         both(named, both(isFolderWith(kFramework, "eclipse.properties"),
                          has(kFramework + "/META-INF/MANIFEST.MF", ""))),
         kConfigIni, inAll(1)},
        {"RI804", "FrameworkWithoutTheClassThatIsStarted", both(named, hasNoStarter),
         both(named, both(configHas("osgi.frameworkClassPath=.,x.jar\n"), hasNoStarter)),
         kConfigIni, inAll(1)},
        {"RI805", "FrameworkThatIsNotNamedAndHasNoVersion",
         isCalled(kFramework, kBase + "/plugins/org.eclipse.osgi.jar"),
         isCalled(kFramework, kBase + "/plugins/org.eclipse.osgi"), kConfigIni, inAll(0)},
    };
}

std::vector<Case> settingsCases() {
    const Change namesBundle = configHas("osgi.bundles=a.bundle@start\n");
    return {
        {"RI803", "EmptyFolderAsBundle",
         both(namesBundle, isFolderWith(kBase + "/plugins/a.bundle_1.2", "about.html")),
         both(namesBundle, isFolderWith(kBase + "/plugins/a.bundle_1.2", "META-INF/MANIFEST.MF")),
         kConfigIni, inAll(1)},
        {"RI803", "FolderThatIsCalledAsAJar",
         both(namesBundle, isFolderWith(kBase + "/plugins/a.bundle.jar", "META-INF/MANIFEST.MF")),
         both(configHas("osgi.bundles=reference:file:a.bundle.jar@start\n"),
              isFolderWith(kBase + "/plugins/a.bundle.jar", "META-INF/MANIFEST.MF")),
         kConfigIni, inAll(1)},
        {"RI811", "EscapeThatIsNone", configHas("a=b\nc=\\u00g\n"),
         configHas("#\\u\na=b\nc=\\u00ff\n"), kConfigIni, inAll(2)},
        {"RI811", "EscapeThatIsNoneInWhatIsInherited",
         has(kInheritedConfiguration, "c=C:\\users\n"),
         both(configHas("osgi.configuration.cascaded=false\n"),
              has(kInheritedConfiguration, "c=C:\\users\n")),
         kInheritedConfiguration, inAll(2)},
        {"RI812", "EmptyListOfBundles", configHas("osgi.bundles= ,\n"),
         configHas("osgi.bundles=,org.eclipse.osgi\n"), kConfigIni, inAll(1)},
        {"RI812", "FolderInPlaceOfTheUsersCopy", has("workspace/.config/config.ini/a", ""),
         both(has("workspace/.config/config.ini/a", ""),
              has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n")),
         "workspace/.config/config.ini", inAll(0)},
        {"RI812", "NothingThatNamesBundles", lacks(kInheritedConfiguration),
         both(lacks(kInheritedConfiguration),
              launcherHas("vmarg.b=-Dosgi.bundles=org.eclipse.osgi\n")),
         kConfigIni, inAll(0)},
        {"RI812", "BundlesThatAreNotInherited", configHas("osgi.configuration.cascaded=false\n"),
         configHas("osgi.configuration.cascaded=false\neclipse.ignoreApp=true\n"), kConfigIni,
         inAll(0)},
        {"RI813", "ConfigurationOfManyMegabytes", isLonger(kConfigIni), nothingChanges, kConfigIni,
         inAll(0)},
    };
}

std::vector<Case> configurationCases() {
    const Change hasBundle = isStandIn(kBase + "/plugins/a.bundle_1.2.jar", "standin.jar");
    const std::string configurator =
        "osgi.bundles=reference:file:org.eclipse.equinox."
        "simpleconfigurator.jar@1:start\norg.eclipse.equinox."
        "simpleconfigurator.configUrl=file:bundles.info\n";
    const Change hasList = both(
        isStandIn(kBase + "/plugins/org.eclipse.equinox.simpleconfigurator.jar", "standin.jar"),
        both(configHas(configurator), hasBundle));
    std::string manyBundles;
    for (int i = 0; i < 1000; ++i) {
        manyBundles += "a.bundle@start,";
    }
    return {
        {"RI805", "NoFramework", lacks(kFramework), nothingChanges, kConfigIni, inAll(0)},
        {"RI805", "NoFrameworkAsItIsNamed", configHas("a=b\nosgi.framework=file:nothing.jar\n"),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(2)},
        {"RI805", "FrameworkWithoutScheme",
         configHas("osgi.framework=plugins/org.eclipse.osgi_1.0.jar\n"),
         [](const Maker& maker) {
             maker.append(kConfigIni, "osgi.framework=" + maker.folder().narrow(kFramework) + "\n");
         },
         kConfigIni, inAll(1)},
        {"RI805", "NoBundleOfThatName", both(hasBundle, configHas("osgi.bundles=a.bundl@start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@start\n")), kConfigIni, inAll(1)},
        {"RI805", "NoBundleOfThatPath",
         both(hasBundle, configHas("osgi.bundles=a.bundle, file:a.bundle.jar\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle, file:a.bundle_1.2.jar\n")), kConfigIni,
         inAll(1)},
        // Its line is longer than the launcher's reader takes.
        {"RI805", "NoBundleOfThatNameInTheUsersCopy",
         has("workspace/.config/config.ini", "osgi.bundles=a.bundl\n"),
         both(has("workspace/.config/config.ini", "osgi.bundles=a.bundl\n"),
              has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n")),
         "workspace/.config/config.ini", inAll(1)},
        {"RI805", "NoBundleAtTheEndOfALongList",
         both(hasBundle, configHas("osgi.bundles=" + manyBundles + "nothing\n")),
         both(hasBundle, configHas("osgi.bundles=" + manyBundles + "a.bundle\n")), kConfigIni,
         inAll(1)},
        {"RI805", "NoListOfBundles", hasList, both(hasList, has(kList, "# none\n")), kConfigIni,
         inAll(0)},
        {"RI805", "NoListOfBundlesInTheSharedConfiguration",
         both(both(hasList, has(kList, "# none\n")),
              configHas("osgi.sharedConfiguration.area=file:/usr\n")),
         both(hasList, has(kList, "# none\n")), kConfigIni, inAll(0)},
        {"RI805", "NoBundleOfTheList",
         both(hasList, has(kList, "# of two\na,1,plugins/nothing.jar,4,false\n")),
         both(hasList, has(kList, "# of two\na,1,plugins/a.bundle_1.2.jar,4,false\n")), kList,
         inAll(2)},
        {"RI813", "ListOfBundlesOfManyMegabytes",
         both(hasList, both(has(kList, "# none\n"), isLonger(kList))),
         both(hasList, has(kList, "# none\n")), kList, inAll(0)},
        {"RI806", "StartLevelThatIsNoNumber",
         both(hasBundle, configHas("osgi.bundles=a.bundle@4x:start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@4:start\n")), kConfigIni, inAll(1)},
        {"RI806", "StartLevelBeyondTheLast",
         both(hasBundle, configHas("osgi.bundles=a.bundle@7:start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@7:start\nosgi.startLevel=7\n")),
         kConfigIni, inAll(1)},
        {"RI806", "UsualStartLevelBeyondTheLast",
         both(hasBundle, configHas("osgi.bundles=a.bundle@start\nosgi.startLevel=3\n")),
         both(hasBundle,
              configHas("osgi.bundles=a.bundle@3:start, org.eclipse.osgi\nosgi.startLevel=3\n")),
         kConfigIni, inAll(1)},
        {"RI806", "UsualStartLevelThatIsNone", configHas("osgi.bundles.defaultStartLevel=0\n"),
         configHas("osgi.bundles.defaultStartLevel=1\n"), kConfigIni, inAll(1)},
        {"RI807", "InstallAreaThatIsNoFolder", launcherHas("-Dosgi.install.area=/no/such\n"),
         launcherHas("-Dosgi.install.area=@none\n")},
        {"RI807", "InstallAreaThatIsReadTooLate",
         configHas("osgi.configuration.cascaded=false\nosgi.bundles=org.eclipse.osgi\nosgi.install."
                   "area=/no/such\n"),
         configHas("osgi.install.area=/no/such\n"), kConfigIni, inAll(3)},
        {"RI807", "SharedConfigurationThatIsNoFolder",
         configHas("osgi.sharedConfiguration.area=file:/no/such\n"),
         configHas("osgi.sharedConfiguration.area=file:/\n"), kConfigIni, inAll(1)},
    };
}

}  // namespace

std::vector<Case> handOffCases() {
    std::vector<Case> all = codeCases();
    for (const auto& group :
         {jarCases(), frameworkCases(), settingsCases(), configurationCases()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    all.push_back({"RI808", "SearchedFolderThatIsNotThere",
                   launcherHas("env.set.LD_LIBRARY_PATH=/:/no/such\n"),
                   launcherHas("env.set.LD_LIBRARY_PATH=/::/usr\n")});
    all.push_back({"RI809", "VariableThatTheJvmReads",
                   [](const Maker&) { setenv("JAVA_TOOL_OPTIONS", "-Da=b", 1); },
                   launcherHas("env.unset.JAVA_TOOL_OPTIONS=\n"), kEnvironmentPlace, inAll(0)});
    const Change isJavasOwn = [](const Maker&) { setenv("JDK_JAVA_OPTIONS", "-Da=b", 1); };
    all.push_back({"RI809", "VariableThatTheProgramOfAJvmReads", both(isService(), isJavasOwn),
                   isJavasOwn, kEnvironmentPlace, inAll(0)});
    return all;
}

}  // namespace rcp::inspect
