// What a launch hands off to, examined as the next program will use it: nothing is started, and what the
// platform makes of it all is not known here.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/check/finding.h"
#include "launcher/command_line/plan.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace rcp::inspect {

/// What the launcher calls of its library.
inline constexpr const char* kPlatformEntryPoints[] = {"setInitialArgs", "run"};

/// What the program java takes options from; the library that it starts, and others load, does not.
inline constexpr char kJavasVariable[] = "JDK_JAVA_OPTIONS";

/// A finding-to-be; `code` is one of the table's.
struct Fault {
    const char* code;
    std::string file;
    std::size_t line = 0;
    std::string message;
};

struct Examined {
    std::string what;  // "JVM"
    std::string path;  // or how many there are
    std::vector<Fault> faults = {};
    bool isEnough = false;  // what has faults are parts of it that nothing needs

    struct Named {
        std::string path;
        Origin origin;  // where it is named
    };
    std::vector<Named> named = {};  // of what the platform's configuration names, each
};

/// The plan of a launch with the examination's arguments; none when that ends before it has one.
std::optional<Plan> planOf(const Examination& examination);

/// In the order in which they are used; nothing where there is no plan.
std::vector<Examined> examineHandOff(const Examination& examination);

/// The first fault of what nothing of the platform runs without; null when there is none.
const Fault* obstacleIn(const std::vector<Examined>& handOff);

void addFaults(const Examined& examined, Findings& findings);

/// What the plan names itself: programs, libraries, jars, and the variables that the next program gets.
std::vector<Examined> examineTargets(const Examination& examination, const Plan& plan);
/// The same where the platform's own configuration leads: framework, bundles, areas.
std::vector<Examined> examineConfiguration(const Examination& examination, const Plan& plan);
/// Whether the locale that the JVM gets can express the paths; its path is the character set.
Examined examineLocale(const Examination& examination, const Plan& plan);

/// A fault at the place where an argument or property was written.
Fault faultAt(const Examination& examination, const char* code, const Origin& origin,
              const std::string& message);
/// What a jar that is there holds, or what is the matter with it.
struct JarRead {
    std::set<std::string> entries = {};
    std::optional<std::string> fault = {};  // also of one that can be read, when it has no manifest
};
JarRead readJar(const std::string& path);
/// The value behind an option, in front of "-vmargs" or in a command line of Java's; empty without one.
Argument valueBehind(OptionName option, const Plan& plan);
/// What the JVM of a launch is, to whoever makes it.
enum class JvmKind {
    kNone,  // the launcher library looks for one itself
    kProgram,
    kLibrary,
    kFolder,       // in which the launcher library looks for either
    kDescription,  // a file of another name, whose contents it reads
};
struct Jvm {
    Argument path;
    JvmKind kind = JvmKind::kNone;
};
/// What stands behind "-vm", a name alone as it is found along PATH, or the program that is started.
Jvm jvmOf(const Examination& examination, const Plan& plan);
/// What the JVM takes for its own: what stands behind "-vmargs", or between the program java and the main class.
Arguments jvmOptionsOf(const Examination& examination, const Plan& plan);
/// Whether that is the program java, or may be: the launcher library can find one itself.
bool startsJava(const Examination& examination, const Plan& plan);
/// What a variable holds for whoever is handed to; empty when it is not set.
std::string variableAfter(const std::string& name, const EnvironmentChanges& changes);

}  // namespace rcp::inspect
