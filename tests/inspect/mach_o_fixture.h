// Mach-O files, made by rule: as small as a file can be that says something.
#pragma once

#include "inspect/bundle/mach_o.h"

#include <cstdint>
#include <string>
#include <vector>

namespace rcp::inspect {

struct MachO {
    std::uint32_t processor = 0x01000007;
    std::uint32_t type = 2;  // 2: a program, 6: a library, 8: a plug-in
    std::uint32_t oldestSystem = 10U << 16U | 13U << 8U;
    std::vector<std::string> libraries{"/usr/lib/libSystem.B.dylib"};
    std::vector<std::string> weakLibraries{};
    std::vector<std::string> upwardLibraries{};
    std::vector<std::string> searchPaths{};
    std::string ownName{};
    bool isSigned = true;
    std::uint32_t signatureFlags = 2;  // signed by nobody
    std::string entitlements{};
    std::uint32_t signatureCommands = 1;  // all of them for the one signature
    std::uint32_t entitlementsBlobs = 1;  // listed in it, all of them the one

    [[nodiscard]] std::string bytes() const;
};

inline constexpr std::uint32_t kArm64 = 0x0100000C;
inline constexpr std::uint32_t kSystem11 = 11U << 16U;

/// One file for several processors.
std::string universal(const std::vector<MachO>& images);

}  // namespace rcp::inspect
