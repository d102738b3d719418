// The user's stale copies in the layout of docs/inspect-layout.md.
#pragma once

#include "inspect/check/examination.h"

#include <nlohmann/json.hpp>

namespace rcp::inspect {

nlohmann::json describeStaleCopies(const Examination& examination);

}  // namespace rcp::inspect
