// An explanation for people.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

std::string explanationText(const nlohmann::json& explanation, bool isColored);

/// A SOURCE of the layout in a few words: "rcplauncher.properties:12 vm".
std::string sourceText(const nlohmann::json& source);

}  // namespace rcp::inspect
