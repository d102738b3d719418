// Asking the launcher's functions without ending with them.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace rcp::inspect {

/// Runs `step`. When it would end the launch: the record it would leave, without the system's
/// reason. Nothing is written anywhere.
std::optional<std::string> endOf(const std::function<void()>& step);

}  // namespace rcp::inspect
