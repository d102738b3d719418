// The records of a zip file: what they begin with. APPNOTE.TXT of PKWARE, 4.3.
#pragma once

#include <cstdint>

namespace rcp::inspect {

inline constexpr std::uint32_t kLocalEntry = 0x04034b50;  // in front of its bytes
inline constexpr std::uint32_t kEntry = 0x02014b50;       // of the directory
inline constexpr std::uint32_t kEnd = 0x06054b50;

}  // namespace rcp::inspect
