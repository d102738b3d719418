// Where the launcher that is looked at is, and what it belongs to.
#pragma once

#include <string>

namespace rcp::inspect {

/// Of a bundle the launcher may be missing, and there is still something to say.
enum class Launcher { kIsThere, kMayBeMissing };

/// A launcher's path from either way of naming one, as it would be started: links in it count. Empty when there is
/// none.
std::string launcherPath(const std::string& launcher, const std::string& installation,
                         Launcher presence);
/// ": Permission denied" and the like, where one may be there all the same; empty where there is none.
std::string whyNoLauncher(const std::string& launcher, const std::string& installation);

/// The installation directory that a launcher at this path finds; empty for no path.
std::string installationOf(const std::string& launcher);

}  // namespace rcp::inspect
