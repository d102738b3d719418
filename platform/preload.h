// The library preload link.
#pragma once

#include <string>

namespace rcp {

/// Sets "LD_PRELOAD" to `library`. The variable holds a list separated by blanks, so a path with a
/// blank is given a name without one: a symbolic link in /tmp,
///
///   /tmp/ovr.rcp.USER.QUALIFIER.FILENAME
///
/// that is made, kept or replaced as needed. A path with a blank that does not exist leaves the
/// variable untouched, and so does a link of that name that belongs to another user and cannot be
/// removed: its owner could point it anywhere.
void setPreload(const std::wstring& library, const std::wstring& qualifier);

/// The target of the symbolic link at `link`. Ends the launch when it cannot be read.
std::string readsymln(const std::string& link);

}  // namespace rcp
