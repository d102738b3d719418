// Of one thing in a launch the chain that leads to what counts: value, place, rule, what has lost.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

nlohmann::json chainOf(const std::string& what);
void addStep(nlohmann::json& chain, const std::string& step, const std::string& text);

/// The chains of an option or its beginning, a property key, a variable or a path in an explanation: objects of
/// "what" and "steps", which are objects of "step" and "text".
/// `beyond`, those of what is handed over, are among them.
nlohmann::json launchChains(const nlohmann::json& explanation, const nlohmann::json& beyond,
                            const std::string& subject);

}  // namespace rcp::inspect
