// What differs between two sides, in the layout of docs/inspect-layout.md.
#pragma once

#include "inspect/diff/side.h"

namespace rcp::inspect {

nlohmann::json compare(const Side& first, const Side& second);

/// For people: the two, how their launches end, and what differs, "-" of the first and "+" of the second.
/// Of a long list of files or findings the beginning, unless it is whole.
std::string differenceText(const nlohmann::json& result, const TextForm& form);

}  // namespace rcp::inspect
