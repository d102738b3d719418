// Whether a word is among those of a list.
#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

namespace rcp::inspect {

template <typename List>
bool isOneOf(const List& list, std::string_view word) {
    return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

}  // namespace rcp::inspect
