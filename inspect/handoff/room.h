// Whether what a launch writes finds room where it writes it.
#pragma once

#include "inspect/handoff/hand_off.h"
#include "inspect/rehearsal/rehearsal.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace rcp::inspect {

struct Room {
    std::uintmax_t bytes = 0;
    std::uintmax_t files = 0;
};
inline constexpr std::uintmax_t kNoLimit = UINTMAX_MAX;

struct Quota {
    Room limit;  // kNoLimit where there is none
    Room used;
};
/// That of the effective user where `folder` lies; none where the system has none or does not tell.
std::optional<Quota> quotaAt(const std::string& folder);

/// What is left of both.
Room roomWithin(const Room& free, const Quota& quota);

/// What a rehearsed launch writes, of each file system, as docs/inspect-layout.md has it.
nlohmann::json describeWrites(const Rehearsal& rehearsal);

/// The file systems of `writes`, as they are now and for the effective user.
Examined examineRoom(const nlohmann::json& writes);

}  // namespace rcp::inspect
