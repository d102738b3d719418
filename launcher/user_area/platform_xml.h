// The user's "platform.xml", made from the installation's master copy when it is missing. The file
// is not parsed as XML: only placeholders in its lines are filled in, the rest is the
// installation's.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <string>

namespace rcp {

/// What becomes of the lines of the JVM features.
enum class Features { kFilledIn, kBare };

/// Makes the update directory and in it "platform.xml", unless there is one or
/// "update.policy.managed" is "false". Bare, the lines of the JVM features become "<feature>". The "userpb" configuration has no platform.xml. Whether anything had to be made; a directory
/// that cannot be made ends the launch, and nothing else does.
bool createPlatformXML(const LaunchInputs& inputs, const std::wstring& base, Features features);

/// One line of the master copy as the user gets it.
std::wstring platformXmlLine(std::wstring line, const PropertyList& properties, Features features);

}  // namespace rcp
