#include "launcher/user_area/reset.h"

#include "diagnostics/svc_debug.h"
#include "launcher/properties/java_properties.h"
#include "launcher/properties/placeholders.h"
#include "launcher/properties/property_file.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/removal.h"
#include "platform/text.h"

#include <errno.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

std::wstring updateDirectory(const std::wstring& configuration) {
    return osPath(configuration + paths::kUpdate);
}

std::wstring pathOf(const CopyPlace& place) {
    return osPath(place.name.empty() ? place.directory : place.directory + L"/" + place.name);
}

std::wstring savedName(const std::wstring& name) {
    return name + paths::kSaved;
}

void saveFile(const std::wstring& name, const std::wstring& workspace,
              const std::wstring& configuration) {
    handleCopy({workspace, savedName(name)}, {updateDirectory(configuration), name},
               Need::kOptional, Transfer::kCopy);
}

void saveKeptFiles(const std::wstring& workspace, const std::wstring& configuration) {
    for (const wchar_t* name : paths::kKeptByReset) {
        saveFile(name, workspace, configuration);
    }
}

// Steps 2 to 4; `message` tells which of the two callers failed.
void rebuildConfiguration(const std::wstring& workspace, const std::wstring& configuration,
                          Message<Text> message) {
    const std::wstring path = osPath(configuration);
    handleDirMove(path + paths::kReplaced, path, Need::kRequired);
    const std::wstring update = updateDirectory(configuration);
    ensureDirectory(update, message);
    for (const wchar_t* name : paths::kKeptByReset) {
        handleFileMove({update, name}, {workspace, savedName(name)}, Need::kOptional);
    }
}

std::wstring numberedName(const std::wstring& path, std::uint32_t number) {
    std::wstring name = path + paths::kDeleted;
    addHexDigits(name, number);
    return name;
}

void removeOrTrace(const std::wstring& directory) {
    const Removed removed = removeDirectoryAndContents(directory);
    if (!removed.isComplete) {
        SvcDebugOutW(L"%s", removed.failures);
    }
}

// A free name beside `path` for what is to be removed: the smallest of five numbered ones that does
// not exist, else the first. Those that do exist are left from removals that did not finish and are
// removed now. One that cannot be removed must not stop every later reset: then the count goes on.
std::wstring deleteMeName(const std::wstring& path) {
    std::uint32_t chosen = 1;
    for (std::uint32_t k = 5; k >= 1; --k) {
        const std::wstring name = numberedName(path, k);
        if (!exists(name)) {
            chosen = k;
            continue;
        }
        removeOrTrace(name);
    }
    while (exists(numberedName(path, chosen))) {
        ++chosen;
    }
    return numberedName(path, chosen);
}

// Moved away first, so that the target's name is free at once however long the removal takes.
void clearDirectory(const std::wstring& path) {
    const std::wstring name = deleteMeName(path);
    if (!moveFile(path, name)) {
        fatal(because(errno), messages.targetNotMoved, path);
    }
    removeOrTrace(name);
}

void clearTarget(const std::wstring& path) {
    if (!exists(path)) {
        return;
    }
    if (isDirectory(path)) {
        clearDirectory(path);
    } else if (!deleteFile(path)) {
        fatal(because(errno), messages.oldCopyNotDeleted, path);
    }
}

// --- Reset directories ---

std::wstring resetPropertiesFile(const LaunchInputs& inputs, const std::wstring& base) {
    std::wstring ownFile = userFileOf(inputs.configuration);
    if (exists(ownFile)) {
        return ownFile;
    }
    std::wstring coreFile =
        getCoreFileLocation(inputs.traits.eConfig, base, paths::kUserProperties);
    if (!exists(coreFile)) {
        fatal(because(errno), messages.masterFileMissing, coreFile);
    }
    return coreFile;
}

// What a value names below the folder it is appended to, elements joined by single slashes; empty
// when that is nothing: absolute, without an element that is a name, or with "..".
std::wstring entryBelow(const std::wstring& value) {
    std::wstring entry;
    if (value.starts_with(L'/') || value.starts_with(L'\\')) {
        return entry;
    }
    for (std::size_t at = 0; at < value.size();) {
        const std::size_t end = std::min(value.find_first_of(L"/\\", at), value.size());
        const std::wstring element = value.substr(at, end - at);
        if (element == L"..") {
            return {};
        }
        if (!element.empty() && element != L".") {
            entry += (entry.empty() ? L"" : L"/") + element;
        }
        at = end + 1;
    }
    return entry;
}

// A link on the way could lead anywhere; what it leads to is nobody's to remove here.
bool leadsThroughLink(const std::wstring& folder, const std::wstring& entry) {
    for (std::size_t end = 0; end != std::wstring::npos;) {
        end = entry.find(L'/', end + 1);
        if (isLink(folder + L"/" + entry.substr(0, end))) {
            return true;
        }
    }
    return false;
}

void removePluginDirectory(const std::wstring& plugins, const std::wstring& value) {
    const std::wstring entry = entryBelow(value);
    if (entry.empty() || leadsThroughLink(plugins, entry)) {
        report(noReason(), messages.resetDirInvalid, value);
        return;
    }
    if (!exists(plugins + L"/" + entry)) {
        return;
    }
    const Removed removed = removeDirectoryBelow(plugins, entry);
    if (!removed.isComplete) {
        fatal(noReason(), messages.pluginDirectoryNotRemoved, removed.failures);
    }
}

}  // namespace

void createReusableWorkspace(const std::wstring& workspace, const std::wstring& configuration) {
    saveFile(paths::kPlatformXml, workspace, configuration);
    saveKeptFiles(workspace, configuration);
    rebuildConfiguration(workspace, configuration, messages.reuseFolderNotMade);
}

void resetWorkspace(const LaunchInputs& inputs, const std::wstring& base) {
    saveKeptFiles(inputs.workspace, inputs.configuration);
    resetMetaDataDirs(inputs, base);
    rebuildConfiguration(inputs.workspace, inputs.configuration, messages.resetFolderNotMade);
}

void resetMetaDataDirs(const LaunchInputs& inputs, const std::wstring& base) {
    PropertyList properties;
    getProperties(resetPropertiesFile(inputs, base), properties);
    const std::wstring plugins = osPath(inputs.workspace + paths::kPlugInData);
    for (const Property* property : findProperties(keys::kResetDir, properties)) {
        removePluginDirectory(plugins, property->value);
    }
}

void handleCopy(const CopyPlace& target, const CopyPlace& source, Need need, Transfer transfer) {
    const std::wstring to = pathOf(target);
    const std::wstring from = pathOf(source);
    if (!exists(from)) {
        if (need == Need::kRequired) {
            fatal(because(errno), messages.savedFileMissing, from);
        }
        trace(messages.nothingToSave, from);
        return;
    }
    clearTarget(to);
    if (transfer == Transfer::kMove) {
        if (!moveFile(from, to)) {
            fatal(because(errno), messages.savedFileNotMoved, from);
        }
    } else if (!copyFile(from, to)) {
        fatal(noReason(), messages.savedFileNotCopied, from);
    }
}

void handleFileMove(const CopyPlace& target, const CopyPlace& source, Need need) {
    handleCopy(target, source, need, Transfer::kMove);
}

void handleDirMove(const std::wstring& target, const std::wstring& source, Need need) {
    handleCopy({target, L""}, {source, L""}, need, Transfer::kMove);
}

std::optional<std::wstring> getRestartExe(const Arguments& arguments,
                                          const PropertyList& properties,
                                          const std::wstring& rcpHome) {
    const Argument* name = optionValue(options::kConfig, arguments);
    if (name == nullptr) {
        return std::nullopt;
    }
    const std::wstring key = keys::restartExecutable(name->text);
    const std::wstring* value = findProperty(key, properties);
    if (value == nullptr) {
        return std::nullopt;
    }
    std::wstring executable = *value;
    replaceFirstRcpHome(executable, rcpHome);
    return osPath(std::move(executable));
}

}  // namespace rcp
