// The state of a workspace for programs and for people.
#pragma once

#include "inspect/status/workspace_state.h"

#include <nlohmann/json.hpp>
#include <string>

namespace rcp::inspect {

/// As docs/inspect-layout.md describes it.
nlohmann::ordered_json toJson(const WorkspaceState& state);

/// A few lines, the last one ended.
std::string toText(const WorkspaceState& state, bool isColored);

}  // namespace rcp::inspect
