// What tests may ask of the stand-ins for macOS's calls.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace rcp::test::macos {

/// What _NSGetExecutablePath gives from now on.
void setExecutablePath(const std::string& path);

/// What the system's version is at each time that it is asked for; then there is none.
void setProductVersions(const std::vector<std::string>& versions);

/// Core Foundation objects that somebody still owns.
std::size_t ownedObjects();
/// Lets one call of Core Foundation fail, if it can: the next one is 0.
void failCall(std::size_t call);
/// Whether that call was made; from now on none fails.
bool hasFailed();

}  // namespace rcp::test::macos
