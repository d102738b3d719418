// The hand-off in the layout of docs/inspect-layout.md.
#pragma once

#include "inspect/check/examination.h"

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

/// Makes of an outcome that nothing speaks against what it comes to where the hand-off itself fails, and
/// tells where knowledge ends where it does not. `libraryPath` is LD_LIBRARY_PATH as the launch got it.
void settleHandOff(nlohmann::json& outcome, const std::string& libraryPath);

nlohmann::json describeHandOff(const Examination& examination);

}  // namespace rcp::inspect
