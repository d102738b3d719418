// The names of what a jar holds, from its directory alone.
#pragma once

#include <optional>
#include <set>
#include <string>

namespace rcp::inspect {

/// None for what is no zip file, or a damaged one.
std::optional<std::set<std::string>> jarEntries(const std::string& path);

}  // namespace rcp::inspect
