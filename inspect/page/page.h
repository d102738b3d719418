// The page that --format html writes: one file that needs nothing beside it, neither a network nor
// another file.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace rcp::inspect {

/// Writes the page of an explanation. The file appears whole or not at all: false, with errno set,
/// when it cannot be written; what was there is untouched then.
bool writeExplainPage(const nlohmann::json& explanation, const std::string& file);
/// The same of the report of a check.
bool writeCheckPage(const nlohmann::json& report, const std::string& file);

}  // namespace rcp::inspect
