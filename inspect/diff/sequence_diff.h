// What turns one list of texts into another.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace rcp::inspect {

struct Edit {
    bool isAdded = false;      // else it is removed
    std::size_t position = 0;  // in the second list when added, else in the first

    bool operator==(const Edit&) const = default;
};

/// The fewest removals and additions, in the order of the lists. Lists that differ in very many
/// places are told as replaced between their common beginning and end.
std::vector<Edit> differences(const std::vector<std::string>& first,
                              const std::vector<std::string>& second);

}  // namespace rcp::inspect
