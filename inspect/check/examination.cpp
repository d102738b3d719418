#include "inspect/check/examination.h"

#include "diagnostics/svc_debug.h"
#include "inspect/check/launcher_end.h"
#include "inspect/quiet_read.h"
#include "launcher/command_line/vm_choice.h"
#include "launcher/process_entry.h"
#include "launcher/properties/property_file.h"
#include "launcher/properties/vm_argument_map.h"
#include "launcher/stages.h"
#include "launcher/user_area/install_id.h"
#include "launcher/user_area/user_files.h"
#include "launcher/user_area/workspace.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/text.h"

#include <errno.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace rcp::inspect {
namespace {

constexpr char kBlanks[] = " \t\v\f\r";

std::vector<RawLine> splitLines(const std::string& bytes) {
    std::vector<RawLine> lines;
    std::istringstream stream(bytes);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back({lines.size() + 1, line});
    }
    return lines;
}

// Reads a file for its findings; false, with the path remembered, when a launch would end there.
bool addFile(Examination& examination, KeyFile kind, const std::wstring& path) {
    PropertyFile file;
    file.kind = kind;
    if (endOf([&] { getProperties(path, file.entries); })) {
        examination.unreadable.push_back(path);
        return false;
    }
    file.name = examination.nameOf(path);
    file.bytes = readQuietly(toNarrow(path), kLongestSettings + 1);
    file.isCut = file.bytes.size() > kLongestSettings;
    file.bytes.resize(std::min(file.bytes.size(), kLongestSettings));
    file.lines = splitLines(file.bytes);
    examination.files.push_back(std::move(file));
    return true;
}

// What the user gets of a master copy. Lines that he does not get are empty, so that every entry keeps
// its line.
std::string userCopy(const std::wstring& master) {
    std::string text;
    std::size_t written = 0;
    for (const UserLine& line : userLines(readText(master).value_or(FileText()).bytes)) {
        // Several pieces of one that is too long have its number.
        text.append(line.number - std::min(written + 1, line.number), '\n');
        text += toNarrow(line.text) + '\n';
        written = line.number;
    }
    return text;
}

// The user's list as a first launch makes it: the master's entries, then what the launcher appends.
void readUserFile(LaunchInputs& inputs, const std::wstring& master) {
    inputs.userProperties = parseProperties(userCopy(master), wholeFile(master));
    if (const auto block = userFileBlock(inputs.properties)) {
        const PropertyList appended = parseProperties(block->lines, {});
        for (const Property& entry : appended.entries()) {
            inputs.userProperties.append({entry.key, entry.value, {}});
        }
    }
}

// What becomes of the user's area unless a platform runs in it.
UserArea areaOf(const LaunchInputs& inputs) {
    const std::wstring* id = findProperty(keys::kInstallId, inputs.properties);
    const std::string own =
        readQuietly(toNarrow(userFileOf(inputs.configuration)), kLongestSettings);
    if (id != nullptr && isOldRcpInstallId(*id, parseProperties(own, {}))) {
        return UserArea::kReused;
    }
    return isResetConfig(inputs.arguments) ? UserArea::kReset : UserArea::kKept;
}

// The installation's own file is the last that counts, and a launch takes the first that can be opened.
void findPassedOver(const JvmPropertyLocation& location, const std::wstring& ofInstallation,
                    Examination& examination) {
    std::vector<std::wstring> files;
    for (const std::wstring& root : jvmPropertyRoots(location.jvm)) {
        files.push_back(root + paths::kJvmProperties);
    }
    files.push_back(ofInstallation);
    for (const std::wstring& path : files) {
        if (exists(path)) {
            return;
        }
        if (errno != ENOENT && errno != ENOTDIR) {
            examination.passedOver.emplace_back(path, errno);
        }
    }
}

void readJvmProperties(Examination& examination) {
    LaunchInputs& inputs = examination.inputs;
    JvmPropertyLocation location;
    if (endOf([&] {
            location =
                getJvmPropertyLocation(inputs.properties, inputs.arguments, inputs.installDir);
        })) {
        return;
    }
    const std::wstring ofInstallation =
        inputs.installDir + paths::kJvmFolder + paths::kJvmProperties;
    findPassedOver(location, ofInstallation, examination);
    // The installation's own file counts for other JVMs even when this one has a file of its own.
    for (const std::wstring& path : {location.file, ofInstallation}) {
        const bool isRead = path == location.file;
        if (exists(path) && (isRead || !location.isDefault) &&
            addFile(examination, kJvmFile, path)) {
            examination.files.back().isRead = isRead;
        }
    }
    endOf([&] { loadJvmProperties(inputs, location); });
}

class NamedLauncher {
  public:
    explicit NamedLauncher(const std::string& path) { setLauncherExecutable(path); }
    ~NamedLauncher() { setLauncherExecutable({}); }
    NamedLauncher(const NamedLauncher&) = delete;
    NamedLauncher& operator=(const NamedLauncher&) = delete;
    NamedLauncher(NamedLauncher&&) = delete;
    NamedLauncher& operator=(NamedLauncher&&) = delete;
};

}  // namespace

bool RawLine::isBlank() const {
    return trimmed().empty();
}

bool RawLine::isComment() const {
    return trimmed().starts_with('#');
}

std::string_view RawLine::trimmed() const {
    const std::string_view view = text;
    return view.substr(std::min(view.find_first_not_of(kBlanks), view.size()));
}

const PropertyFile* Examination::file(KeyFile kind) const {
    const auto found = std::find_if(files.begin(), files.end(),
                                    [kind](const PropertyFile& one) { return one.kind == kind; });
    return found == files.end() ? nullptr : &*found;
}

std::string Examination::nameOf(const std::wstring& path) const {
    const std::string narrow = toNarrow(path);
    return narrow.starts_with(installation + "/") ? narrow.substr(installation.size() + 1) : narrow;
}

std::string Examination::nameOf(const Origin& origin) const {
    return origin.file ? nameOf(*origin.file) : launcherFile();
}

std::string Examination::launcherFile() const {
    return nameOf(propertyFileOf(inputs.installDir));
}

Origin Examination::originOf(Key key) const {
    const Property* entry = inputs.properties.find(key);
    return entry == nullptr ? Origin() : entry->origin;
}

Examination examine(const Options& options) {
    const NamedLauncher named(options.launcher);
    Examination examination;
    examination.launcher = options.launcher;
    const Origin file = wholeFile(toWide(options.environmentFile));
    for (const auto& [name, line] : options.variableLines) {
        examination.variables[name] = {file.file, line};
    }
    LaunchInputs& inputs = examination.inputs;
    inputs.arguments.emplace_back(toWide(options.launcher));
    for (const std::string& argument : options.arguments) {
        inputs.arguments.emplace_back(toWide(argument), Origin{nullptr, inputs.arguments.size()});
    }
    endOf([&] { inputs.installDir = getInstallDir(); });
    if (inputs.installDir.empty()) {  // a bundle without its executable
        examination.installation = options.installation;
        return examination;
    }
    examination.installation = toNarrow(inputs.installDir);
    if (!addFile(examination, kLauncherFile, propertyFileOf(inputs.installDir))) {
        return examination;
    }
    inputs.properties = examination.files.back().entries;
    appendVm(inputs.arguments, inputs.properties);
    examination.arguments = inputs.arguments;
    if (endOf([&] { extendArguments(examination.arguments, inputs); })) {
        insertPropToVmargMap(inputs.vmargMap, inputs.properties);
    }
    inputs.traits = traitsOf(inputs.properties, Start::kOrdinary);
    endOf([&] { examination.base = settleBaseLocation(inputs); });
    if (endOf([&] { settleWorkspace(inputs); })) {
        inputs.workspace = L"/workspace";  // some path, for the placeholders that name it
        inputs.configuration = getConfigurationLocation(inputs);
    }
    inputs.area = areaOf(inputs);
    if (!examination.base.empty()) {
        const std::wstring master =
            getCoreFileLocation(inputs.traits.eConfig, examination.base, paths::kUserProperties);
        if (exists(master) && addFile(examination, kUserFile, master)) {
            readUserFile(inputs, master);
        }
    }
    examination.userEntries = inputs.userProperties;
    applyUserProperties(inputs);
    readJvmProperties(examination);
    return examination;
}

}  // namespace rcp::inspect
