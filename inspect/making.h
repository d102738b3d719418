// When, by whom and with what something was told: what somebody who gets it by mail has to know.
#pragma once

#include <time.h>

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace rcp::inspect {

/// The name of the user who counts for permissions, or the number where the system has no name for it.
std::string effectiveUser();

/// "2026-11-22 13:05 UTC".
std::string dateAndTime(time_t time);

/// How long ago that was, in the largest unit that fits: "1 minute ago".
std::string agoText(time_t seconds);

/// The name of this machine; empty when the system does not tell.
std::string hostName();

/// The member `made` of docs/inspect-layout.md.
nlohmann::json describeMaking();

}  // namespace rcp::inspect
