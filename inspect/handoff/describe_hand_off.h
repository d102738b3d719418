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

/// The hand-off of a rehearsed launch, and the room that it needs. Adds "obstacle" to the outcome when no
/// platform can come of it.
std::vector<Examined> tellObstacle(nlohmann::json& launch, const Examination& examination);

nlohmann::json describeHandOff(const std::vector<Examined>& handOff);

}  // namespace rcp::inspect
