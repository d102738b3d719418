// Which values may be looked for wherever they could stand, and which words are the system's own.
//
// A password "java" is redacted where it is one, and not in "/usr/lib/jvm/java-17": it would stand in every second
// line, and an answer full of holes helps nobody.
#pragma once

#include <string>
#include <string_view>

namespace rcp::inspect {

/// Whether a secret is looked for outside its own place, too. It is not when it has fewer than four characters, is a
/// word or a number of fewer than six, or a word of the system's own texts.
bool isDistinctive(std::string_view value);

/// Whether a user, a home or a host of that name says nothing of anybody: it is the superuser's, or the system itself
/// has things of that name.
bool isOwnName(std::string_view name);

}  // namespace rcp::inspect
