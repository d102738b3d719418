// "Did you mean": the known key that a misspelt one is near to.
#pragma once

#include "launcher/vocabulary/property_keys.h"

#include <string>
#include <string_view>

namespace rcp::inspect {

/// Insertions, deletions, exchanges and swaps of neighbours that make one text the other, case
/// ignored; of texts further apart than `limit` only that they are, as any number above it.
std::size_t editDistance(std::wstring_view left, std::wstring_view right,
                         std::size_t limit = std::wstring_view::npos);

/// The key that counts in `file` and is nearest to `key`, if one is near; else empty. Of a prefix,
/// what stands behind it is kept.
std::wstring nearestKey(std::wstring_view key, KeyFile file);

}  // namespace rcp::inspect
