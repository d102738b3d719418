// The application bundle's property-list files: reading one, and keeping the bundle identifier of
// "Info.plist" in step with the one given on the command line.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>

namespace rcp {

/// The property list in the file at `path`; empty optional when there is none that can be read.
std::optional<platform::PropertyListDocument> createPropertiesListFromFile(
    const std::wstring& path);

/// Sets "CFBundleIdentifier" in the dictionary of the file at `path`. The file is not touched when
/// it cannot be read, is no dictionary, or already holds the identifier in any letter case. A
/// file that is there and is no list to be read, an identifier that cannot be set or a file that cannot
/// be written is reported, no more: the launch does not depend on it.
void updateInfoPlist(const std::wstring& path, const std::wstring& identifier);

}  // namespace rcp
