// The working directory as text of any length.
#pragma once

#include <string>

namespace rcp::platform {

/// The absolute path of the working directory; empty, with errno set, when the system has none to
/// give (it was removed, or lies outside the visible tree).
std::string workingDirectory();

}  // namespace rcp::platform
