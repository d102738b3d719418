// Where the user's data area (the workspace, "-data") and the configuration area ("-configuration")
// are. The functions compute; they make nothing.
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/property_list.h"

#include <string>

namespace rcp {

/// The workspace, by the first rule that applies:
///
///   service configurations     a folder of the installation
///   "-data" with a value       the value, one trailing separator dropped, the first "${rcp.home}"
///                              and the user placeholders replaced, made absolute
///   property "rcp.data"        its value likewise, but a relative one stays relative
///   otherwise                  HOME/OVR/RCP/<install id>/<user name>
///
/// False only for the last. Ends the launch when the rule that applies cannot give a path.
bool getWorkspaceLocation(std::wstring& workspace, const PropertyList& properties,
                          const Arguments& arguments, const std::wstring& rcpHome);

/// The configuration area: inside the workspace, or beside it in the service configurations. The
/// result has the meaning of getWorkspaceLocation's.
bool getConfigurationLocation(std::wstring& configuration, const PropertyList& properties,
                              const Arguments& arguments, const std::wstring& rcpHome);
/// The same for a workspace that is known already.
std::wstring configurationFor(const std::wstring& workspace, const std::wstring& rcpHome);

/// `result` becomes key "=" value and one NUL as its last character, so that it can be used as a
/// terminated item as it is.
void setArgProperty(std::wstring& result, const std::wstring& key, const std::wstring& value);

}  // namespace rcp
