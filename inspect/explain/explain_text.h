// An explanation for people.
#pragma once

#include "inspect/options.h"

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

/// On one screen: the command line with origins, and how much of the rest there is; whole: every element with its
/// rule and everything that is known of it, every change and every property.
std::string explanationText(const nlohmann::json& explanation, const TextForm& form);

}  // namespace rcp::inspect
