#include "inspect/locate.h"

#include "inspect/bundle/bundle.h"
#include "inspect/check/launcher_end.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/text.h"

#include <errno.h>
#include <string.h>

#include <filesystem>

namespace rcp::inspect {
namespace {

// An application bundle is an installation too.
std::string launcherIn(const std::string& installation) {
    const std::string bundled = launcherOfBundle(installation);
    return bundled.empty() ? installation + "/rcp/rcplauncher" : bundled;
}

// The launcher that is named, or that of an installation.
std::string namedPath(const std::string& launcher, const std::string& installation) {
    return launcher.empty() ? launcherIn(installation) : launcher;
}

}  // namespace

std::string launcherPath(const std::string& launcher, const std::string& installation,
                         Launcher presence) {
    const std::string path = namedPath(launcher, installation);
    std::error_code failed;
    std::string absolute = pathOfPlace(std::filesystem::absolute(path, failed).lexically_normal());
    const std::string contents = contentsAround(absolute);
    if (presence == Launcher::kMayBeMissing && !failed && !contents.empty() && isStaged(contents) &&
        !existsA(absolute)) {
        return absolute;
    }
    const bool isLauncher =
        !failed && isStaged(absolute) && existsA(absolute) && !isFolder(absolute);
    return isLauncher ? absolute : std::string();
}

std::string whyNoLauncher(const std::string& launcher, const std::string& installation) {
    const bool isThere = existsA(namedPath(launcher, installation));
    const bool isNothing = isThere || errno == ENOENT || errno == ENOTDIR;
    return isNothing ? std::string() : std::string(": ") + strerror(errno);
}

std::string installationOf(const std::string& launcher) {
    if (launcher.empty()) {
        return {};
    }
    setLauncherExecutable(launcher);
    std::wstring directory;
    endOf([&] { directory = getInstallDir(); });
    // The bundle's, of which the launcher is missing.
    return directory.empty() ? contentsAround(launcher) : toNarrow(directory);
}

}  // namespace rcp::inspect
