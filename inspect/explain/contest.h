// Who gives a value when several could: the command line, a configuration extension, and the entries
// of the property files.
#pragma once

#include "inspect/explain/account.h"

#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct Rival {
    std::wstring text;  // as written
    Origin origin;
};

/// Those that could give the value for `entry`, the winner first. Empty for an entry that stands
/// for itself alone: in its file the key does not count, or all entries of its key are used.
std::vector<Rival> rivalsOf(const Property& entry, const Account& account);
/// Those that could give the value of an option of the platform.
std::vector<Rival> rivalsForOption(std::wstring_view option, const Account& account);
/// Those that could give the JVM argument of that name, "vmarg." included.
std::vector<Rival> rivalsForVmarg(const std::wstring& name, const Account& account);

/// Why the others lost.
const char* whyWon(const Rival& winner, const Account& account);

bool isSamePlace(const Origin& one, const Origin& other);
/// The elements that come from there, as the reader counts them.
std::vector<std::size_t> elementsFrom(const Origin& origin, const Account& account);
/// The arguments that the launch's "-config" stands for, as far as their properties are numbered.
std::vector<const Property*> extensionEntries(const Account& account);

}  // namespace rcp::inspect
