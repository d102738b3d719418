#include "check_fixture.h"
#include "inspect/archive/zip_archive.h"

#include <filesystem>

namespace rcp::inspect {
namespace {

const std::string kBase = kBaseFolder;
const std::string kProgram = kBase + "/macosx/x86/eclipse";
const std::string kLibrary = kBase + "/macosx/x86/eclipse_1615.so";
const std::string kJar = kBase + "/launcher.jar";

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

// The launch names the program of its JVM, not its library.
Change isProgram() {
    return [](const Maker& maker) {
        maker.place("jre/bin/java", "standin_platform");
        maker.replace(kLauncherProperties, "jvm.libpath=/lib/server/libjvm.so",
                      "jvm.libpath=/bin/java");
    };
}

std::vector<Case> codeCases() {
    return {
        {"RI801", "LauncherThatIsText", becomes("rcp/rcplauncher", "no program"), nothingChanges,
         "rcp/rcplauncher", inAll(0)},
        {"RI801", "LauncherThatWasCut", isCut("rcp/rcplauncher"), nothingChanges, "rcp/rcplauncher",
         inAll(0)},
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
              isJarWith("", kFrameworkJar)),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(1)},
        {"RI803", "EmptyFramework",
         both(configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"),
              becomes(kFrameworkJar, "")),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(1)},
        {"RI803", "StartupJarWithoutAnything",
         // The record with which a zip file without entries ends.
         becomes(kJar, std::string("PK\x05\x06").append(18, '\0')), isJarWith(""),
         kLauncherProperties, inAll(2)},
        {"RI816", "StartupJarThatStartsAnotherClass", isJarWith("Main-Class: a.Main\n"),
         isJarWith("Main-Class: b.Main\n"), kLauncherProperties, inAll(2)},
        {"RI804", "FolderOfJarsWithoutTheMainClass",
         both(isService(), differs(kLauncherProperties, "/launcher.jar", "/config/*")),
         both(isService(), differs(kLauncherProperties, "/launcher.jar", "/*")),
         kLauncherProperties, 2},
        {"RI804", "ClassPathWithoutTheMainClass",
         both(isService(), differs(kLauncherProperties, "/launcher.jar", "/config")), isService(),
         kLauncherProperties, 2},
    };
}

}  // namespace

std::vector<Case> handOffCases() {
    std::vector<Case> all = codeCases();
    for (const auto& group : {jarCases(), configurationCases()}) {
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
