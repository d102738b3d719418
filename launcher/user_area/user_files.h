// The user's private copies of two of the installation's files, made once in the configuration
// directory and never merged again: "config.ini" as it stands, and "rcpinstall.properties" with the
// lines for other operating systems left out and the launcher's current values appended.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp {

/// Where the installation's master copy of a file is looked for first.
std::wstring getOwnCoreFileLocation(InstallConfiguration configuration, const std::wstring& base,
                                    const std::wstring& name);
/// The installation's master copy of a file: base/config/<folder of the install configuration>/name
/// when it exists, else base/name. A configuration without folder gives two slashes in a row.
std::wstring getCoreFileLocation(InstallConfiguration configuration, const std::wstring& base,
                                 const std::wstring& name);

/// Makes the user's "config.ini" unless there is one; whether it had to. Failure ends the launch.
bool createConfigIni(const LaunchInputs& inputs, const std::wstring& base);

/// The same for the user's "rcpinstall.properties".
bool createRCPInstallProps(const LaunchInputs& inputs, const std::wstring& base);

/// The user's "rcpinstall.properties".
std::wstring userFileOf(const std::wstring& configuration);

/// Writes the per-user form of the copy at `copy` to `target`, by way of `target` + ".new". False
/// when one of the files cannot be opened or the result cannot be put in place.
bool fixUserRCPInstallProperties(const std::wstring& copy, const std::wstring& target,
                                 const PropertyList& properties);

/// A line of a master copy that the user gets; its key may have lost the qualifier for this system.
struct UserLine {
    std::wstring text;
    std::size_t number = 0;  // in the master copy
};
std::vector<UserLine> userLines(std::string_view master);

/// What is appended to the user's file.
struct UserFileBlock {
    std::string lines;                      // as they stand there
    std::vector<std::wstring> missingKeys;  // those whose values this locale cannot hold

    bool operator==(const UserFileBlock&) const = default;
};

/// Empty optional when a required value is missing.
std::optional<UserFileBlock> userFileBlock(const PropertyList& properties);

}  // namespace rcp
