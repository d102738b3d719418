#include "platform/install_location.h"

#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/variables.h"
#include "platform/bundle_metadata.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "platform/text.h"
#include "platform/working_directory.h"

#include <errno.h>

#include <utility>

namespace rcp {
namespace {

[[noreturn]] void cannotTellExecutable(int error) {
    fatal(because(error), messages.executablePathUnknown, error);
}

// Empty: this process's own.
std::string namedExecutable;

std::string executableAsStarted() {
    std::string path = launcherExecutable();
    if (path.empty()) {
        cannotTellExecutable(errno);
    }
    return path;
}

template <typename Text>
Text folderOf(const Text& path) {
    const std::size_t slash = path.rfind('/');
    return slash == Text::npos ? Text() : path.substr(0, slash);
}

}  // namespace

std::string launcherExecutable() {
    return namedExecutable.empty() ? platform::executablePathAsStarted() : namedExecutable;
}

void setLauncherExecutable(std::string path) {
    namedExecutable = std::move(path);
}

std::string read_executable_path() {
    std::string started = executableAsStarted();
    std::optional<std::string> resolved =
        namedExecutable.empty() && platform::isOwnExecutable(started) ? std::move(started)
                                                                      : resolvedPath(started);
    if (!resolved) {
        cannotTellExecutable(errno);
    }
    SvcDebugOutA("%s", *resolved);
    return *std::move(resolved);
}

std::string read_mlauncher_path() {
    const std::string plist = folderOf(executableAsStarted()) + "/rcplauncher.plist";
    const auto list = createPropertiesListFromFile(toWide(plist));
    if (list && list->isDictionary()) {
        std::optional<std::string> configured = list->stringForKey(keys::kLauncherPath);
        if (configured && isExecutable(*configured)) {
            return *std::move(configured);
        }
    }
    return read_executable_path();
}

std::wstring getLauncherPath() {
    return toWide(read_mlauncher_path());
}

std::wstring findCommand() {
    return toWide(folderOf(read_executable_path()));
}

std::optional<std::wstring> getRCPDirectory() {
    std::wstring folder = findCommand();
    if (folder.empty()) {
        return std::nullopt;
    }
    return folder;  // a directory: a program without links in its path was started in it
}

std::wstring getInstallDir() {
    const std::optional<std::wstring> folder = getRCPDirectory();
    if (!folder) {
        const bool isInRoot = folderOf(read_executable_path()).empty();
        fatal(because(isInRoot ? "the executable lies in the root directory"
                               : "its folder's name is no text of this locale"),
              messages.installationNotFound);
    }
    std::wstring directory = *folder;
    const std::wstring parent = folderOf(*folder);
    // A path without links: what a directory is in is one too.
    if (folder->substr(parent.size()) == L"/rcp" && !parent.empty()) {
        directory = parent;
    }
    const std::wstring siblingPlatform = directory + L"/../Eclipse";
    return exists(siblingPlatform) ? siblingPlatform : directory;
}

std::wstring convert_from_relative_location(const std::wstring& path, const Origin& origin) {
    if (path.starts_with(L"/") || path.starts_with(L"\\\\")) {
        return path;
    }
    if (path.starts_with(placeholders::kOpening)) {
        fatal(noReason().from(origin), messages.pathWithPlaceholder);
    }
    const std::string base = platform::workingDirectory();
    if (base.empty()) {
        fatal(because(errno), messages.noWorkingDirectory);
    }
    if (toWide(base).empty()) {
        fatal(because("the working directory's path is no text of this locale"),
              messages.pathNotRepresentable);
    }
    const std::string relative = toNarrow(path);
    std::optional<std::string> joined;
    if (!relative.empty()) {
        joined = platform::absolutePath(base, relative);
    }
    if (!joined) {
        fatal(noReason().from(origin), messages.relativePathNotConverted);
    }
    return toWide(*joined);
}

}  // namespace rcp
