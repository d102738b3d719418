// What must be certain about the bytes of a property list before a parser may see them. The parsers
// of both systems recurse into every dictionary and array, so a small file that nests deeply enough
// would exhaust the stack, and a binary list whose arrays share their elements can unfold into far
// more memory than the file has bytes.
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <string_view>

namespace rcp::platform {

enum class PropertyListForm { kRefused, kXml, kBinary };

/// Tells the form of a property list, or refuses it: neither XML nor binary, larger than
/// `mostBytes`, nested too deeply, in another encoding than UTF-8, or built so that its nesting cannot
/// be told with certainty or the two systems' parsers disagree about it. A list that is let through
/// may still turn out not to be well-formed.
PropertyListForm guardPropertyList(std::string_view data,
                                   std::size_t mostBytes = kMaxPropertyListBytes);

/// Whether the text's elements are nested properly and to a harmless depth, hold what every parser reads
/// alike, and it declares no encoding but UTF-8.
bool isSafeXmlPropertyList(std::string_view text);

/// Whether every parser reads the text, which is that of an element as it stands between its tags, alike.
using PropertyListTextRule = bool (*)(std::string_view text);

/// The rule for the text of such elements; null for elements that hold others.
PropertyListTextRule propertyListTextRule(std::string_view element);

/// Whether the binary list's objects lie inside the data, are nested to a harmless depth and unfold
/// into a harmless amount.
bool isSafeBinaryPropertyList(std::string_view data);

/// Levels of nesting that are let through, the values at the bottom included: a bundle's own list has
/// four or five. The same in both forms: a list that was read is not nested too deeply once it is written.
inline constexpr int kMaxPropertyListDepth = 128;

}  // namespace rcp::platform
