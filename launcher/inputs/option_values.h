// Which arguments are the values of options.
#pragma once

#include "launcher/inputs/arguments.h"

namespace rcp {

/// Whether the argument can be the value of an option in front of it. "-vmargs" ends the options, and
/// the "-vm" that the launcher appends to the user's arguments is its own.
bool canBeValue(const Argument& argument);
/// Whether an option that takes a value stands at `index` as the last of the user's own arguments.
bool lacksValue(const Arguments& arguments, std::size_t index);
/// The argument behind the first "-bundleIdentifier" that has a value, the program path included;
/// null without.
const Argument* getBundleIdentifier(const Arguments& arguments);

}  // namespace rcp
