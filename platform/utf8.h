// UTF-8 decoded without the C library, whose conversions stop at what the locale does not know.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rcp::platform {

/// The characters of `text`; empty optional when it is not well-formed UTF-8.
std::optional<std::u32string> decodeUtf8(std::string_view text);

}  // namespace rcp::platform
