// The page that --format html writes: one file that needs nothing beside it, neither a network nor
// another file.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace rcp::inspect {

/// Writes the page of what a command tells as JSON. The file appears whole or not at all: false, with errno
/// set, when it cannot be written; what was there is untouched then.
bool writePage(const nlohmann::json& told, const std::string& file);

}  // namespace rcp::inspect
