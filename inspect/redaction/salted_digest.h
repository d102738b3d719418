// A short sign of a value: the same for the same value in one report, and of no use to guess it by.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace rcp::inspect {

/// Drawn anew for every report and kept nowhere: who has the report alone cannot try values.
using Salt = std::array<std::uint64_t, 2>;

/// From the system's source of randomness. Throws std::runtime_error when there is none.
Salt freshSalt();

/// Six hexadecimal digits of SipHash-2-4 with the salt as its key.
std::string saltedDigest(const Salt& salt, std::string_view text);
/// All 64 bits of it.
std::uint64_t sipHash(const Salt& salt, std::string_view text);

}  // namespace rcp::inspect
