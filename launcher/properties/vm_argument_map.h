// The VM argument map: JVM arguments by the name under which a source may give or pre-empt them.
#pragma once

#include "launcher/properties/property_list.h"

#include <map>
#include <string>
#include <vector>

namespace rcp {

/// From the whole "vmarg." name, prefix included, to the complete argument, in the order of the
/// names' plain character values. The name only orders and de-duplicates; it never reaches the
/// command line. An empty argument is written nowhere, but keeps others of its name out. Insertion
/// never replaces, so the source that is merged first wins.
using VmArgumentMap = std::map<std::wstring, Argument, std::less<>>;

/// Moves every "vmarg." entry out of `properties` into the map.
void insertPropToVmargMap(VmArgumentMap& map, PropertyList& properties);
/// Takes the arguments "vmarg.NAME=ARGUMENT" of the command line into the map. One without "=" ends
/// the launch. The properties are not used.
void insertArgsToVmargMap(VmArgumentMap& map, const Arguments& arguments,
                          const PropertyList& properties);
/// The same for the arguments of a configuration extension.
void insertCargsToVmargMap(VmArgumentMap& map, const Arguments& arguments);

}  // namespace rcp
