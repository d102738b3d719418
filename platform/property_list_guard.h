// What must be certain about the bytes of a property list before a parser may see them. The parsers
// of both systems recurse into every dictionary and array, so a small file that nests deeply enough
// would exhaust the stack, and a binary list whose arrays share their elements can unfold into far
// more memory than the file has bytes.
#pragma once

#include <string_view>

namespace rcp::platform {

enum class PropertyListForm { kRefused, kXml, kBinary };

/// Tells the form of a property list, or refuses it: neither XML nor binary, too large, nested too
/// deeply, or built so that its nesting cannot be told with certainty. A list that is let through
/// may still turn out not to be well-formed.
PropertyListForm guardPropertyList(std::string_view data);

/// Whether the text's elements are nested to a harmless depth.
bool isSafeXmlPropertyList(std::string_view text);

/// Whether the binary list's objects lie inside the data, are nested to a harmless depth and unfold
/// into a harmless amount.
bool isSafeBinaryPropertyList(std::string_view data);

/// Levels of nesting that are let through: a bundle's own list has four or five.
inline constexpr int kMaxPropertyListDepth = 128;

}  // namespace rcp::platform
