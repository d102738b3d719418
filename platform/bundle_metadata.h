// The application bundle's property-list files: reading one, and keeping the bundle identifier of
// "Info.plist" in step with the one given on the command line.
#pragma once

#include "diagnostics/argument.h"
#include "platform/platform.h"

#include <optional>
#include <span>
#include <string>

namespace rcp {

/// The argument behind the first "-bundleIdentifier" that has one; null without.
const std::wstring* getBundleIdentifier(std::span<const Argument> arguments);

/// The property list in the file at `path`; empty optional when there is none that can be read.
std::optional<platform::PropertyListDocument> createPropertiesListFromFile(
    const std::wstring& path);

/// Writes `list` as XML in place of the file at `path`, as a whole and with the old file's
/// permissions. False, with errno set, when it cannot be written; the old file is then untouched.
bool writePropertyListToFile(const platform::PropertyListDocument& list, const std::wstring& path);

/// Sets "CFBundleIdentifier" in the dictionary of the file at `path`. The file is not touched when
/// it cannot be read, is no dictionary, or already holds the identifier in any letter case. A
/// failed write is not reported: the launch does not depend on it.
void updateInfoPlist(const std::wstring& path, const std::wstring& identifier);

}  // namespace rcp
