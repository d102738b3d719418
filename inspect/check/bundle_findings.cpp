// The application bundle around the launcher: what the system looks at before anything runs.
#include "inspect/check/bundle_subjects.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/quiet_read.h"
#include "launcher/command_line/assembly.h"
#include "launcher/vocabulary/keys.h"
#include "platform/bundle_metadata.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <filesystem>

namespace rcp::inspect {
namespace {

constexpr char kInfo[] = "Info.plist";
constexpr char kRestart[] = "MacOS/rcplauncher.plist";

bool isIdentifier(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '-';
    });
}

void findInKeysOf(const Bundle& bundle, Findings& findings) {
    const BundleKeys& keys = bundle.keys;
    const std::string file = bundle.pathOf(kInfo);
    const auto wrong = [&](const std::string& message) { findings.add("RI702", file, 0, message); };
    if (keys.executable.empty()) {
        wrong("CFBundleExecutable is missing");
    } else if ("MacOS/" + keys.executable != bundle.launcher) {
        wrong("CFBundleExecutable names " + inQuotes(keys.executable) + ", not the launcher");
    } else if (!bundle.has(bundle.launcher)) {
        wrong("CFBundleExecutable names " + inQuotes(keys.executable) + ", which is not there");
    }
    if (!isIdentifier(keys.identifier)) {
        wrong(keys.identifier.empty()
                  ? "CFBundleIdentifier is missing"
                  : "CFBundleIdentifier holds other characters than letters, digits, \".\" and "
                    "\"-\"");
    }
    if (keys.type != "APPL") {
        wrong("CFBundlePackageType is not \"APPL\"");
    }
    if (!versionOf(keys.oldestSystem)) {
        wrong("LSMinimumSystemVersion is no version");
    }
}

bool leadsIntoBundle(const Bundle& bundle, const std::string& path) {
    const std::optional<std::string> name = bundle.nameOf(path);
    return name && bundle.owns(*name) && isExecutable(bundle.pathOf(*name));
}

void findInRestartPath(const Bundle& bundle, Findings& findings) {
    if (!bundle.has(kRestart)) {
        return;  // a restart starts the executable
    }
    std::optional<std::string> path;
    endOf([&] {
        const auto list = createPropertiesListFromFile(toWide(bundle.pathOf(kRestart)));
        path =
            list && list->isDictionary() ? list->stringForKey(keys::kLauncherPath) : std::nullopt;
    });
    if (!path) {
        findings.add("RI707", bundle.pathOf(kRestart), 0, "there is no mlauncher.path");
    } else if (!leadsIntoBundle(bundle, *path)) {
        findings.add("RI707", bundle.pathOf(kRestart), 0,
                     inQuotes(*path) + " is no executable of this bundle");
    }
}

// "#!/bin/sh" and the like: the interpreter is the system's own, and starts without the variables.
void findInScript(const std::string& path, const std::string& shown, Findings& findings) {
    const std::string start = readQuietly(path, 64);
    if (!start.starts_with("#!")) {
        return;
    }
    const std::size_t first = start.find_first_not_of(" \t", 2);
    const std::string rest = first == std::string::npos ? "" : start.substr(first);
    for (const char* folder : {"/bin/", "/usr/bin/", "/sbin/", "/usr/sbin/"}) {
        if (rest.starts_with(folder)) {
            findings.add("RI710", shown, 0,
                         "a script of " + inQuotes(rest.substr(0, rest.find_first_of(" \t\r\n"))));
        }
    }
}

void findInScripts(const Bundle& bundle, const Examination& examination, Findings& findings) {
    findInScript(bundle.pathOf(bundle.launcher), bundle.pathOf(bundle.launcher), findings);
    if (!examination.base.empty()) {
        const std::wstring program =
            examination.base + L"/macosx/x86/" + getEclipseExeName(examination.inputs.properties);
        findInScript(toNarrow(program), examination.nameOf(program), findings);
    }
}

}  // namespace

void findInBundleStructure(const Bundle& bundle, Findings& findings) {
    if (!bundle.has(bundle.launcher)) {
        findings.add("RI701", bundle.pathOf(bundle.launcher), 0, "the executable is missing");
    }
    if (!bundle.has("Eclipse")) {
        findings.add("RI701", bundle.pathOf("Eclipse"), 0, "the platform's folder is missing");
    }
    if (!bundle.has(kInfo)) {
        findings.add("RI701", bundle.pathOf(kInfo), 0, "the bundle's description is missing");
    } else if (!bundle.keys.isRead) {
        findings.add("RI702", bundle.pathOf(kInfo), 0, "it is no property list");
    } else {
        findInKeysOf(bundle, findings);
    }
    for (const std::string& name : bundle.strangers) {
        if (name != bundle.launcher) {
            findings.add("RI712", bundle.pathOf(name), 0, "it is no code");
        }
    }
    findInRestartPath(bundle, findings);
}

void findInBundle(const Examination& examination, Findings& findings) {
    const std::string contents = contentsAround(examination.launcher);
    if (contents.empty()) {
        return;
    }
    const Bundle bundle = readBundle(contents, examination.launcher);
    findInBundleStructure(bundle, findings);
    findInScripts(bundle, examination, findings);
    findInBundleCode(bundle, findings);
    findInBundleSeal(bundle, examination, findings);
}

}  // namespace rcp::inspect
