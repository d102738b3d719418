// The page without its data. It is put together from page.html, page.css and the scripts when
// rcpinspect is built; embed.cmake does it.
#pragma once

#include <string_view>

namespace rcp::inspect {

/// The page in front of its data and behind them.
extern const std::string_view kPageHead;
extern const std::string_view kPageTail;

}  // namespace rcp::inspect
