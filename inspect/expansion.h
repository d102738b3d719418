// What the launcher makes of a value by itself, whatever else it is part of.
#pragma once

#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/property_keys.h"

#include <string>

namespace rcp::inspect {

/// The value with its standard placeholders replaced, those that a launch replaces in it.
std::wstring expanded(std::wstring value, Expansion expansion, const StandardLocations& locations);

}  // namespace rcp::inspect
