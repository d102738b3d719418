// The files that a launch needs, and whether a later launch finds the running platform.
#include "diagnostics/format.h"
#include "inspect/bundle/bundle.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/copies/user_copies.h"
#include "inspect/handoff/code_faults.h"
#include "inspect/quiet_read.h"
#include "launcher/command_line/assembly.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/instance/process_check.h"
#include "launcher/properties/placeholders.h"
#include "launcher/stages.h"
#include "launcher/user_area/reset.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <string.h>

namespace rcp::inspect {
namespace {

// A file that the entry at `origin` leads to.
void needFile(const Examination& examination, const std::wstring& path, const Origin& origin,
              Findings& findings) {
    if (!exists(path)) {
        findings.add("RI601", examination.nameOf(origin), origin.line, absenceText(path, errno));
    }
}

void needProgram(const Examination& examination, const std::wstring& path, const Origin& origin,
                 Findings& findings) {
    needFile(examination, path, origin, findings);
    if (exists(path) && !isExecutable(path)) {
        findings.add("RI602", examination.nameOf(origin), origin.line,
                     inQuotes(path) + " is not executable");
    }
}

// The elements that a piece of the command line adds.
Arguments elementsOf(const std::function<void(CommandLine&)>& piece) {
    CommandLine line;
    endOf([&] { piece(line); });
    return line.arguments();
}

void findInBase(const Examination& examination, Findings& findings) {
    const PropertyList& properties = examination.inputs.properties;
    const Origin origin = examination.originOf(keys::kBaseLocation);
    // The record names the file; only the program's tells about its permission.
    CommandLine line;
    const auto record = endOf([&] { addBaseEclipseToCommandLine(line, properties); });
    if (record) {
        const std::wstring name = getEclipseExeName(properties);
        const bool isProgram = record->starts_with("ZYPRA0007E");
        const Origin named = examination.originOf(keys::kEclipseName);
        const Origin& place = isProgram && named.file ? named : origin;
        const bool isThere = isProgram && exists(examination.base + L"/macosx/x86/" + name);
        findings.add(isThere ? "RI602" : "RI601", examination.nameOf(place), place.line, *record);
    }
    for (const Argument& jar : elementsOf([&](CommandLine& startup) {
             addStartupToCommandLine(startup, properties, examination.inputs.arguments);
         })) {
        if (jar != options::kStartup) {
            needFile(examination, jar.text, origin, findings);
        }
    }
    if (line.arguments().empty()) {
        return;
    }
    // The process of a script runs the interpreter, so only its listing can tell what it is.
    const std::string path = toNarrow(line.arguments().front().text);
    if (!examination.inputs.traits.invokeDylib && readQuietly(path, 2) == "#!" &&
        !listingShowsPlatform(path, markerOf(examination.inputs))) {
        findings.add("RI603", examination.nameOf(origin), origin.line,
                     inQuotes(line.arguments().front().text) + " is not recognised");
    }
}

void findInClassPath(const Examination& examination, Findings& findings) {
    const Arguments elements =
        elementsOf([&](CommandLine& line) { addClasspathToCommandLine(line, examination.inputs); });
    if (elements.empty()) {
        return;
    }
    const Argument& path = elements.back();
    for (std::size_t at = 0; at < path.text.size();) {
        const std::size_t end = std::min(path.text.find(L':', at), path.text.size());
        const std::wstring part = path.text.substr(at, end - at);
        if (part != L"*" && !part.ends_with(L"/*")) {  // which are all jars of a folder
            needFile(examination, part, path.origin, findings);
        }
        at = end + 1;
    }
}

// The launcher's own "-vm" is the last argument.
void findJvm(const Examination& examination, Findings& findings) {
    Arguments arguments = examination.arguments;
    const StandardLocations locations{examination.inputs.workspace, examination.inputs.installDir};
    replacePlaceholdersInArgv(locations, arguments);
    const Origin origin = examination.originOf(keys::kJvmLocation);
    if (examination.inputs.traits.isDirectJavaShape()) {
        needProgram(examination, arguments.back().text, origin, findings);
    } else {
        needFile(examination, arguments.back().text, origin, findings);
    }
}

void findMasters(const Examination& examination, Findings& findings) {
    const PropertyList& properties = examination.inputs.properties;
    const Origin origin = examination.originOf(keys::kBaseLocation);
    const InstallConfiguration configuration = examination.inputs.traits.eConfig;
    for (const wchar_t* name : {paths::kConfigIni, paths::kUserProperties}) {
        const std::wstring own = getOwnCoreFileLocation(configuration, examination.base, name);
        const bool isBarred = !exists(own) && errno != ENOENT && errno != ENOTDIR;
        const std::wstring used = getCoreFileLocation(configuration, examination.base, name);
        needFile(examination, isBarred && !exists(used) ? own : used, origin, findings);
    }
    const std::wstring* managed = findProperty(keys::kUpdatePolicyManaged, properties);
    const bool isManaged = managed == nullptr || *managed != L"false";
    const std::wstring platform =
        getCoreFileLocation(configuration, examination.base, L"platform.xml");
    if (isManaged && configuration != InstallConfiguration::kUserpb && !exists(platform)) {
        findings.add("RI606", examination.nameOf(origin), origin.line,
                     absenceText(platform, errno));
    }
}

void findStaleCopies(const Examination& examination, Findings& findings) {
    for (const StaleEntry& entry : staleEntries(examination)) {
        findings.add("RI607", examination.nameOf(entry.master), entry.line,
                     entry.message() + " (" + toNarrow(entry.copy) + ")");
    }
    for (const IncompleteCopy& copy : incompleteCopies(examination)) {
        findings.add("RI608", examination.nameOf(copy.file), 0, copy.message);
    }
    for (const std::wstring& file : longFiles(examination)) {
        findings.add("RI813", examination.nameOf(file), 0,
                     inQuotes(file) + " is not looked at to its end");
    }
}

void findNamedFiles(const Examination& examination, Findings& findings) {
    const PropertyList& properties = examination.inputs.properties;
    for (const Key key : {keys::kPluginCustomization, keys::kLibraryPreload}) {
        if (const std::wstring* value = findProperty(key, properties)) {
            needFile(examination, osPath(*value), examination.originOf(key), findings);
        }
    }
    for (const std::wstring& name : extensionNames(examination)) {
        const std::optional<std::wstring> program =
            getRestartExe({Argument(L"rcplauncher"), Argument(options::kConfig), Argument(name)},
                          properties, examination.inputs.installDir);
        if (program && !program->empty()) {
            needProgram(examination, *program, examination.originOf(keys::restartExecutable(name)),
                        findings);
        }
    }
}

void findLauncher(const Examination& examination, Findings& findings) {
    const std::string file = examination.nameOf(toWide(examination.launcher));
    const bool isBundle = !contentsAround(examination.launcher).empty();  // has findings of its own
    if (!isExecutable(examination.launcher)) {
        findings.add("RI602", file, 0, "the launcher is not executable");
    } else if (const auto fault = startFault(examination.launcher); fault && !isBundle) {
        findings.add("RI801", file, 0, "the launcher: " + fault->reason);
    }
    if (const auto& marker = examination.inputs.debugFile) {
        findings.add("RI605", examination.nameOf(*marker), 0, "every launch waits for its removal");
    }
}

}  // namespace

std::string absenceText(const std::wstring& path, int error) {
    return inQuotes(path) + (error == ENOENT || error == ENOTDIR
                                 ? " is missing"
                                 : std::string(" cannot be read: ") + strerror(error));
}

void findInFiles(const Examination& examination, Findings& findings) {
    for (const std::wstring& path : examination.unreadable) {
        findings.add("RI601", examination.nameOf(path), 0,
                     exists(path) ? "the file cannot be read" : absenceText(path, errno));
    }
    for (const PropertyFile& file : examination.files) {
        if (file.isCut) {
            findings.add("RI813", file.name, 0,
                         inQuotes(file.name) + " is not looked at to its end");
        }
    }
    for (const auto& [path, error] : examination.passedOver) {
        findings.add("RI610", examination.nameOf(path), 0, absenceText(path, error));
    }
    if (examination.file(kLauncherFile) == nullptr) {
        return;
    }
    findLauncher(examination, findings);
    findJvm(examination, findings);
    findNamedFiles(examination, findings);
    if (examination.base.empty()) {
        return;
    }
    findMasters(examination, findings);
    findStaleCopies(examination, findings);
    if (examination.inputs.traits.isDirectJavaShape()) {
        findInClassPath(examination, findings);
    } else {
        findInBase(examination, findings);
    }
}

}  // namespace rcp::inspect
