// What stands behind the text of a record: the system's reason where a system call failed for it,
// and nothing where none did, whatever errno an earlier call has left.
#include "checks.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>

namespace acceptance {

namespace {

namespace files = std::filesystem;

struct Failure {
    std::string name;
    std::function<void(Installation&)> arrange;
    Texts arguments;
    std::function<std::string(const Installation&)> record;  // all of it
};

std::function<std::string(const Installation&)> text(const std::string& record) {
    return [record](const Installation&) { return record; };
}

void nothing(Installation& /*velmo*/) {}

// Both logs; a launch that fails around the lock gives the temporary one a name of its own.
std::string recordsOf(const Installation& velmo, const Launch& launch) {
    std::string records = launch.temporaryLog + launch.log;
    for (const auto& entry : files::directory_iterator(velmo.tmp)) {
        if (entry.path().filename().string().starts_with("rcplauncher_")) {
            records += readFile(entry.path());
        }
    }
    return records;
}

void expectRecords(const std::vector<Failure>& failures) {
    for (const Failure& each : failures) {
        SCOPED_TRACE(each.name);
        Installation velmo;
        each.arrange(velmo);
        const Launch launch = velmo.launch(each.arguments);
        EXPECT_EQ(launch.status, 255);
        expectBareRecord(recordsOf(velmo, launch), each.record(velmo));
    }
}

TEST(Reasons, RecordsThatNoSystemCallCausedHaveNone) {
    NEEDS_PRIVATE_TMP();
    expectRecords({
        {"count",
         nothing,
         {"-maxargcnt", "4", "url"},
         text("ZYPRA0069E: rcplauncher invoked with an invalid URL handler action - bad argument "
              "count.")},
        {"quote",
         nothing,
         {"\""},
         text("ZYPRA0089E: rcplauncher invoked with double quote in arg - bad argument.")},
        {"jvm.library.path",
         nothing,
         {"-Djvm.library.path=/x"},
         text("ZYPRA0190E: rcplauncher invoked with arg containing \"jvm.library.path\" - not "
              "allowed.")},
        {"java.library.path",
         nothing,
         {"-Djava.library.path=/x"},
         text("ZYPRA0191E: rcplauncher invoked with arg containing \"java.library.path\" - not "
              "allowed.")},
        {"java.home",
         nothing,
         {"-Djava.home=/x"},
         text("ZYPRA0192E: rcplauncher invoked with arg containing \"java.home\" - not allowed.")},
        {"version",
         [](Installation& velmo) { velmo.programName = "-restart"; },
         {"-version"},
         text("ZYPRA0031I:   version = \"20211117.0921\"")},
        {"no value of -vm",
         nothing,
         {"-vm", ""},
         text("ZYPRA0079E: -vm on command line must be followed by a valid jvm path.")},
        {"vmarg",
         nothing,
         {"vmarg.x"},
         text("ZYPRA0033E: rcplauncher invoked with an invalid vmarg.")},
        {"install id",
         [](Installation& velmo) { velmo.unset("rcp.install.id"); },
         {},
         text("ZYPRA0016E: rcp.install.id is required for this configuration!")},
        {"user",
         [](Installation& velmo) { velmo.environment.erase("USER"); },
         {},
         text("ZYPRA0037E: Couldn't find the user name!")},
        {"initial",
         [](Installation& velmo) { velmo.set("config.initial.2", "x"); },
         {},
         text("ZYPRA0114E: Invalid config.initial arguments. config.initial.1 not found")},
        {"no execute permission",
         [](Installation& velmo) { velmo.write(velmo.base + "/macosx/x86/eclipse", "", 0644); },
         {},
         [](const Installation& velmo) {
             return "ZYPRA0007E: " + velmo.base +
                    "/macosx/x86/eclipse is not executable or does not exist.";
         }},
        {"rcp.data",
         [](Installation& velmo) { velmo.set("rcp.data", "${prop.none}"); },
         {},
         text("ZYPRA0099E: rcp.data property is invalid (${prop.none})")},
    });
}

TEST(Reasons, RecordsOfFailedSystemCallsHaveTheirs) {
    NEEDS_PRIVATE_TMP();
    const auto lockFile = [](const Installation& velmo) { return velmo.workspace + "/.rcp.lock"; };
    expectRecords({
        {"property file",
         [](Installation& velmo) {
             velmo.launch();
             files::remove(velmo.configuration() + "/rcpinstall.properties");
             files::create_directory(velmo.configuration() + "/rcpinstall.properties");
         },
         {},
         [](const Installation& velmo) {
             return "ZYPRA0096E: Unable to load " + velmo.configuration() +
                    "/rcpinstall.properties file! : Is a directory";
         }},
        {"platform's program",
         [](Installation& velmo) { files::remove(velmo.base + "/macosx/x86/eclipse"); },
         {},
         [](const Installation& velmo) {
             return "ZYPRA0007E: " + velmo.base +
                    "/macosx/x86/eclipse is not executable or does not exist. : No such file or "
                    "directory";
         }},
        {"locale",
         [](Installation& velmo) { velmo.environment["LC_ALL"] = "nonsense.nowhere"; },
         {},
         text("ZYPRA0182E: Set locale error! : No such file or directory")},
        {"lock file that is a directory",
         [&](Installation& velmo) { files::create_directories(lockFile(velmo)); },
         {},
         text("ZYPRA0054E: Error locating platform lock file : Is a directory")},
        {"lock file that is a pipe",
         [&](Installation& velmo) {
             files::create_directories(velmo.workspace);
             mkfifo(lockFile(velmo).c_str(), 0600);
         },
         {},
         text("ZYPRA0054E: Error locating platform lock file : not a regular file")},
    });
}

TEST(Reasons, RecordsNameThePlaceThatTheirTextDoesNot) {
    NEEDS_PRIVATE_TMP();
    const auto lineOf = [](const std::string& path, const std::string& key) {
        const Texts lines = splitLines(readFile(path));
        const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.starts_with(key + "=");
        });
        return path + ", line " + std::to_string(found - lines.begin() + 1);
    };
    const std::string unresolved = "ZYPRA0088E: property substitution is invalid ";
    expectRecords({
        {"entry of the installation",
         [](Installation& velmo) { velmo.set("vmarg.x", "-Dx=${env.NOPE}"); },
         {},
         [&](const Installation& velmo) {
             return unresolved + "(-Dx=${env.NOPE}) (vmarg.x, " +
                    lineOf(velmo.rcp + "/rcplauncher.properties", "vmarg.x") + ")";
         }},
        {"entry of the user's file",
         [](Installation& velmo) { velmo.addInstallLine("x=${prop.nope}"); },
         {},
         [&](const Installation& velmo) {
             return unresolved + "(${prop.nope}) (x, " +
                    lineOf(velmo.configuration() + "/rcpinstall.properties", "x") + ")";
         }},
        {"argument",
         nothing,
         {"-a", "vmarg.x=${prop.nope}"},
         text(unresolved + "(${prop.nope}) (vmarg.x, argument 2)")},
        {"customization",
         [](Installation& velmo) { velmo.set("plugincustomization", "/none.ini"); },
         {},
         [&](const Installation& velmo) {
             return "ZYPRA0050E:  plugin_customization.ini is missing from /none.ini "
                    "(plugincustomization, " +
                    lineOf(velmo.rcp + "/rcplauncher.properties", "plugincustomization") + ")";
         }},
        {"no customization",
         [](Installation& velmo) { velmo.unset("plugincustomization"); },
         {},
         text("ZYPRA0050E:  plugin_customization.ini is missing from  (plugincustomization)")},
        {"lock file",
         [](Installation& velmo) { velmo.write(velmo.workspace + "/.rcp.lock", "x", 0600); },
         {},
         [](const Installation& velmo) {
             return "ZYPRA0092E: Error reading platform lock file. (" + velmo.workspace +
                    "/.rcp.lock)";
         }},
    });
}

}  // namespace

}  // namespace acceptance
