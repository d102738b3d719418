#include "inspect/locate.h"

#include "inspect/bundle/bundle.h"
#include "inspect/check/launcher_end.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/text.h"

#include <filesystem>

namespace rcp::inspect {
namespace {

// An application bundle is an installation too.
std::string launcherIn(const std::string& installation) {
    const std::string bundled = launcherOfBundle(installation);
    return bundled.empty() ? installation + "/rcp/rcplauncher" : bundled;
}

}  // namespace

std::string launcherPath(const std::string& launcher, const std::string& installation,
                         Launcher presence) {
    const std::string path = launcher.empty() ? launcherIn(installation) : launcher;
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
