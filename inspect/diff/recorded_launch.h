// What a launch's log holds of the launch: its arguments, and the platform's.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// The final argument list; none in the log of a launch that started no platform.
std::optional<std::vector<std::string>> recordedElements(std::string_view log);

/// The launcher's arguments, program name and the "-vm" that the launcher appends not included; none when the
/// log does not tell. The log separates them with ", ": an argument that holds that is told as one where the
/// platform got it as one, among `elements`.
std::optional<std::vector<std::string>> recordedArguments(std::string_view log,
                                                          const std::vector<std::string>& elements);

}  // namespace rcp::inspect
