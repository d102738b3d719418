// Each of many installations is checked by a process of its own.
#pragma once

#include <string>

namespace rcp::inspect {

/// The exit status of such a process where there is no launcher.
inline constexpr int kNoLauncher = 64;

/// Why there is no report of what lies at `root`, by the status that waitpid(2) gives.
std::string whyUnchecked(const std::string& root, int status);

}  // namespace rcp::inspect
