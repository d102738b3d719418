// The install id ("rcp.install.id"): which installation this is, and whether the user's area was
// made by another one.
#pragma once

#include "launcher/inputs/install_configuration.h"
#include "launcher/properties/property_list.h"

#include <string>

namespace rcp {

/// The install id of the launcher properties. In the "userpb" configuration a missing one is made
/// and appended to the launcher property file at `propertyFile` and to `properties`; two launchers
/// that start at once agree on one. In every other configuration a missing one ends the launch.
std::wstring getInstallID(InstallConfiguration configuration, const std::wstring& propertyFile,
                          PropertyList& properties);

/// The tick count as a decimal number: seconds * 1,000,000 + microseconds.
std::wstring getTickString();

/// Whether the install id of a user's "rcpinstall.properties" is not empty and not `currentId`.
bool isOldRcpInstallId(const std::wstring& currentId, const PropertyList& stored);

}  // namespace rcp
