// The reader of the launcher's property files: "rcplauncher.properties", "jvm.properties", the
// per-user "rcpinstall.properties" and "args.properties". The format is close to Java's; where it
// differs, installations rely on the difference.
#pragma once

#include "base/unique_fd.h"
#include "launcher/properties/property_list.h"
#include "platform/files.h"

#include <string>
#include <string_view>

namespace rcp {

/// Appends the entries of the file at `path` to `list`. A file that cannot be opened or read ends
/// the launch; every text is a property file, so nothing in one is an error.
void getProperties(const std::wstring& path, PropertyList& list);
/// The same for a file that need not be there; false, and nothing appended, without one. What is
/// there (`exists`) and is no file still ends the launch.
bool getPropertiesIfThere(const std::wstring& path, PropertyList& list);
/// The same for the file at `path` that was opened before, or whose text is known.
void getProperties(const UniqueFd& file, const std::wstring& path, PropertyList& list);
void addProperties(const FileText& text, const std::wstring& path, PropertyList& list);
/// The entries of a text. `from` is where it begins: its first line is the one behind `from.line`.
PropertyList parseProperties(std::string_view text, const Origin& from);

}  // namespace rcp
