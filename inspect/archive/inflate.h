// What deflated bytes hold (RFC 1951).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace rcp::inspect {

/// None of what is damaged, or holds more than `limit` bytes.
std::optional<std::string> inflated(std::string_view bytes, std::size_t limit);

}  // namespace rcp::inspect
