// What an ELF file says about itself, read without trust in it and on any system.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct ElfImage {
    std::string machine;  // as uname(2) calls it; others by number
    bool isShared = false;
    std::string interpreter;               // of a program that is linked dynamically
    std::vector<std::string> libraries{};  // that it needs
    std::vector<std::string> searchPaths{};
    /// That it defines for others, in the file that was read; none when it tells of none.
    std::optional<std::vector<std::string_view>> symbols{};
};

bool looksLikeElf(std::string_view start);

/// None when anything in the file leads out of it. Of one for a machine with other words than 64 bits,
/// the lowest byte first, only the machine is told.
std::optional<ElfImage> readElf(std::string_view file);

}  // namespace rcp::inspect
