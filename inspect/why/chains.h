// Of one thing in a launch the chain that leads to what counts: value, place, rule, what has lost.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

/// The chains of an option or its beginning, a property key, a variable or a path in an explanation: objects of
/// "what" and "steps", which are objects of "step" and "text".
nlohmann::json launchChains(const nlohmann::json& explanation, const std::string& subject);

}  // namespace rcp::inspect
