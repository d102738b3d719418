// The hand-off in the layout of docs/inspect-layout.md.
#pragma once

#include "inspect/handoff/hand_off.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rcp::inspect {

/// Makes of an outcome that nothing speaks against what it comes to where the hand-off itself fails, and
/// tells where knowledge ends where it does not. `libraryPath` is LD_LIBRARY_PATH as the launch got it.
void settleHandOff(nlohmann::json& outcome, const std::string& libraryPath);

/// Adds "obstacle" to the outcome of a hand-off that no platform can come of.
void tellObstacle(nlohmann::json& outcome, const std::vector<Examined>& handOff);

nlohmann::json describeHandOff(const std::vector<Examined>& handOff);

}  // namespace rcp::inspect
