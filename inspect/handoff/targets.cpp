// The programs, libraries and jars that a launch names itself, and the variables that it leaves behind.
#include "inspect/archive/jar.h"
#include "inspect/bundle/bundle.h"
#include "inspect/check/groups.h"
#include "inspect/handoff/code_faults.h"
#include "inspect/handoff/hand_off.h"
#include "inspect/handoff/jre.h"
#include "inspect/quiet_read.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/variables.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace rcp::inspect {
namespace {

// One of them the launcher library starts, when the manifest names no other.
constexpr const char* kMainClasses[] = {"org/eclipse/equinox/launcher/Main.class",
                                        "org/eclipse/core/launcher/Main.class"};
constexpr const char* kJvmEntryPoints[] = {"JNI_CreateJavaVM"};
constexpr const char* kJvmVariables[] = {"JAVA_TOOL_OPTIONS", "_JAVA_OPTIONS"};

class Examiner {
  public:
    Examiner(const Examination& examination, const Plan& plan)
        : examination_(examination),
          plan_(plan),
          isInProcess_(examination.inputs.traits.invokeDylib && !plan.line.library().empty()),
          isBundle_(!contentsAround(examination.launcher).empty()) {
        // What the loader heeds is the variable as the process was started with.
        const std::string name = "LD_LIBRARY_PATH";
        const char* given = getenv(name.c_str());
        libraryPath_ = !isInProcess_      ? variableAfter(name, plan.environment)
                       : given == nullptr ? std::string()
                                          : std::string(given);
    }

    std::vector<Examined> examine() {
        if (!isInProcess_) {
            examineProgram();
        }
        if (!plan_.line.library().empty()) {
            examineLibrary();
        }
        examineJvm();
        examination_.inputs.traits.isDirectJavaShape() ? examineClassPath() : examineStartupJar();
        examineEnvironment();
        return std::move(all_);
    }

  private:
    Examined& begin(const std::string& what, const std::string& path) {
        return all_.emplace_back(Examined{.what = what, .path = path});
    }
    void addFault(Examined& examined, const char* code, const Origin& origin,
                  const std::string& message) const {
        examined.faults.push_back(faultAt(examination_, code, origin, message));
    }

    // The code of a bundle is examined as the bundle's, on every system.
    void judgeProgram(Examined& examined, const Argument& program) const {
        const std::string path = toNarrow(program.text);
        const auto fault = isBundle_ ? std::nullopt : startFault(path);
        if (fault) {
            addFault(examined, "RI801", program.origin,
                     inQuotes(program.text) + ": " + fault->reason);
        }
        for (const std::string& name : isBundle_ || fault ? std::vector<std::string>()
                                                          : missingLibraries(path, libraryPath_)) {
            addFault(examined, "RI801", program.origin,
                     inQuotes(program.text) + " needs " + name + ", which is nowhere");
        }
    }

    void judgeLibrary(Examined& examined, const Argument& library,
                      std::span<const char* const> entryPoints) const {
        const auto fault =
            isBundle_ ? std::nullopt : loadFault(toNarrow(library.text), entryPoints, libraryPath_);
        if (fault) {
            addFault(examined, "RI802", library.origin, inQuotes(library.text) + ": " + *fault);
        }
    }

    void judgeJvmLibrary(Examined& examined, const Argument& jvm) const {
        judgeLibrary(examined, jvm, kJvmEntryPoints);
        const std::string path = toNarrow(jvm.text);
        const std::filesystem::path library = resolvedPath(path).value_or(path);
        if (library.filename().string().starts_with("libjvm.")) {
            judgeJre(examined, jvm, library.parent_path().parent_path().parent_path());
        }
    }

    // The program java is a few lines around a library of its JRE.
    void judgeJvmProgram(Examined& examined, const Argument& jvm) const {
        judgeProgram(examined, jvm);
        const std::string path = toNarrow(jvm.text);
        const std::filesystem::path program = resolvedPath(path).value_or(path);
        if (needsLibrary(program, "libjli.")) {
            judgeJre(examined, jvm, program.parent_path().parent_path());
        }
    }

    void judgeJre(Examined& examined, const Argument& jvm,
                  const std::filesystem::path& home) const {
        const auto missing = examined.faults.empty() ? missingOfJre(home) : std::nullopt;
        if (missing) {
            const std::wstring file = toWide(*missing);
            (void)exists(file);
            addFault(examined, "RI601", jvm.origin,
                     inQuotes(jvm.text) + " is without its JRE: " + absenceText(file, errno));
        }
    }

    void judgeJvmFolder(Examined& examined, const Argument& folder) const {
        const Argument library(folder.text + L"/libjvm.so", folder.origin);
        if (exists(library.text)) {
            judgeJvmLibrary(examined, library);
        } else {
            addFault(examined, "RI802", folder.origin,
                     inQuotes(folder.text) + " is a folder without JVM");
        }
    }

    void examineProgram() {
        const Argument& program = plan_.line.arguments().front();
        if (!examination_.inputs.traits.isDirectJavaShape()) {
            judgeProgram(begin("program", toNarrow(program.text)), program);
        }
    }

    void examineLibrary() {
        const Argument library(plan_.line.library(), examination_.originOf(keys::kBaseLocation));
        judgeLibrary(begin("launcher library", toNarrow(library.text)), library,
                     kPlatformEntryPoints);
    }

    // Where there is no first thread to start on, a JVM knows no such option.
    void judgeFirstThread(Examined& examined, const Argument& jvm) const {
        const Arguments all = jvmOptionsOf(examination_, plan_);
        const auto has = [&](std::wstring_view option) {
            return std::any_of(all.begin(), all.end(),
                               [&](const Argument& one) { return one.text == option; });
        };
        if (!isBundle_ && examined.faults.empty() && has(options::kStartOnFirstThread) &&
            !has(L"-XX:+IgnoreUnrecognizedVMOptions")) {
            addFault(examined, "RI817", jvm.origin,
                     inQuotes(jvm.text) + " gets " + inQuotes(options::kStartOnFirstThread));
        }
    }

    void examineJvm() {
        const Jvm jvm = jvmOf(examination_, plan_);
        if (jvm.kind == JvmKind::kNone) {
            return;
        }
        const std::string path = toNarrow(jvm.path.text);
        Examined& examined = begin("JVM", path);
        if (!exists(jvm.path.text)) {
            addFault(examined, "RI601", jvm.path.origin, absenceText(jvm.path.text, errno));
        } else if (jvm.kind == JvmKind::kLibrary) {
            judgeJvmLibrary(examined, jvm.path);
        } else if (jvm.kind == JvmKind::kProgram) {
            judgeJvmProgram(examined, jvm.path);
            judgeFirstThread(examined, jvm.path);
        } else if (jvm.kind == JvmKind::kFolder && existsA(path + "/java")) {
            judgeFirstThread(examined, jvm.path);
        } else if (jvm.kind == JvmKind::kFolder) {
            judgeJvmFolder(examined, jvm.path);
        }
    }

    // A jar that is missing is told already with the settings.
    std::optional<std::set<std::string>> judgeJar(Examined& examined, const Argument& jar) const {
        const std::string path = toNarrow(jar.text);
        if (!exists(jar.text)) {
            addFault(examined, "RI601", jar.origin, absenceText(jar.text, errno));
            return std::nullopt;
        }
        JarRead read = readJar(path);
        if (read.fault && read.entries.empty()) {  // classes need no manifest
            addFault(examined, "RI803", jar.origin, inQuotes(path) + " " + *read.fault);
            return std::nullopt;
        }
        return std::move(read.entries);
    }

    void examineStartupJar() {
        const Argument jar = valueBehind(options::kStartup, plan_);
        Examined& examined = begin("startup jar", toNarrow(jar.text));
        const auto entries = judgeJar(examined, jar);
        if (!entries) {
            return;
        }
        const auto isThere = [&](const char* name) { return entries->contains(name); };
        if (std::none_of(std::begin(kMainClasses), std::end(kMainClasses), isThere)) {
            addFault(examined, "RI804", jar.origin,
                     inQuotes(jar.text) + " has no " + inQuotes(kMainClasses[0]));
            return;
        }
        // One that is not there the launcher library passes over.
        std::string file = mainClassOf(examined.path) + ".class";
        std::replace(file.begin(), file.end() - 6, '.', '/');
        if (entries->contains(file) && std::find(std::begin(kMainClasses), std::end(kMainClasses),
                                                 file) == std::end(kMainClasses)) {
            addFault(examined, "RI816", jar.origin,
                     inQuotes(jar.text) + " starts " + inQuotes(file));
        }
    }

    void examineClassPath() {
        const Argument classPath = valueBehind(options::kClassPath, plan_);
        Examined& examined = begin("class path", toNarrow(classPath.text));
        bool isPerhapsThere = false;
        std::istringstream parts(toNarrow(classPath.text));
        for (std::string part; std::getline(parts, part, ':');) {
            if (part.ends_with('*')) {  // all jars of a folder
                const std::string folder = part.substr(0, part.size() - 1);
                for (const std::string& name : entryNames(folder.empty() ? "." : folder)) {
                    examined.isEnough |= name.ends_with(".jar") &&
                                         readJar(folder + name).entries.contains(kMainClasses[1]);
                }
            } else if (isFolder(part)) {
                examined.isEnough |= existsA(part + "/" + kMainClasses[1]);
            } else {
                const auto entries = judgeJar(examined, {toWide(part), classPath.origin});
                examined.isEnough |= entries && entries->contains(kMainClasses[1]);
                isPerhapsThere |= !entries;
            }
        }
        if (!examined.isEnough && !isPerhapsThere) {
            addFault(examined, "RI804", classPath.origin,
                     "nothing on the class path has " + inQuotes(kMainClasses[1]));
        }
    }

    void examineFolders(const EnvironmentChange& change) {
        Examined& examined = begin(toNarrow(change.name), toNarrow(change.value));
        std::istringstream folders(toNarrow(change.value));
        for (std::string folder; std::getline(folders, folder, ':');) {
            if (!folder.empty() && !isFolder(folder)) {
                addFault(examined, "RI808", change.origin, inQuotes(folder) + " is no folder");
            }
        }
    }

    void examineEnvironment() {
        for (const EnvironmentChange& change : plan_.environment) {
            const bool isPath =
                change.name == L"LD_LIBRARY_PATH" || change.name.starts_with(L"DYLD_");
            if (change.kind == EnvironmentChange::kSet && isPath &&
                change.name.ends_with(L"_PATH")) {
                examineFolders(change);
            }
        }
        for (const char* name : kJvmVariables) {
            examineVariable(name);
        }
        if (startsJava(examination_, plan_)) {
            examineVariable(kJavasVariable);
        }
    }

    void examineVariable(const std::string& name) {
        const char* value = getenv(name.c_str());
        if (value == nullptr || variableAfter(name, plan_.environment) != value) {
            return;
        }
        const std::string message = name + " is " + inQuotes(value);
        const auto place = examination_.variables.find(name);
        begin("variable", name)
            .faults.push_back(place == examination_.variables.end()
                                  ? Fault{"RI809", kEnvironmentPlace, 0, message}
                                  : faultAt(examination_, "RI809", place->second, message));
    }

    const Examination& examination_;
    const Plan& plan_;
    bool isInProcess_;
    bool isBundle_;
    std::string libraryPath_;
    std::vector<Examined> all_;
};

}  // namespace

std::vector<Examined> examineTargets(const Examination& examination, const Plan& plan) {
    return Examiner(examination, plan).examine();
}

}  // namespace rcp::inspect
