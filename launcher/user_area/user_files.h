// The user's private copies of two of the installation's files, made once in the configuration
// directory and never merged again: "config.ini" as it stands, and "rcpinstall.properties" with the
// lines for other operating systems left out and the launcher's current values appended.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <optional>
#include <string>
#include <vector>

namespace rcp {

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

/// Decides line by line what of the master copy the user gets. An entry is dropped whole, its
/// continuation lines included:
///
///            filter drops the key, line continues
///   ENTRY ------------------------------------------> DROPPING --- line does not continue ---.
///     |  ^                                               '---- line continues: stay ----'    |
///     |  '-- line does not continue -- CONTINUING                                            |
///     '---- kept and continues ------------^                      ENTRY <--------------------'
class UserFileFilter {
  public:
    /// Whether the line is written; its key may lose the qualifier for this operating system.
    bool keeps(std::wstring& line);

  private:
    bool isDropping_ = false;
    bool isContinuing_ = false;
};

/// What is appended to the user's file.
struct UserFileBlock {
    std::string lines;                      // as they stand there
    std::vector<std::wstring> missingKeys;  // those whose values this locale cannot hold

    bool operator==(const UserFileBlock&) const = default;
};

/// Empty optional when a required value is missing.
std::optional<UserFileBlock> userFileBlock(const PropertyList& properties);

}  // namespace rcp
