// The JVM arguments of the command line.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_choice.h"
#include "launcher/inputs/launch_inputs.h"

#include <string>
#include <string_view>

namespace rcp {

/// Appends the JVM section: "-vmargs" (not in the direct Java shape), what the user put behind
/// "-vmargs" less any "-vm" pair, the console fix argument, and the VM argument map in key order.
/// A JVM that is no program of its own gets no console fix.
void addVmargsToCommandLine(CommandLine& line, const LaunchInputs& inputs, JvmFile jvm);

/// Appends the "-D" system properties. Ends the launch without "rcp.install.id" and for an
/// unrecognised install configuration.
void addDashDToCommandLine(CommandLine& line, const LaunchInputs& inputs);

/// Appends the "-X" properties and the boot class path.
void addXargsToCommandLine(CommandLine& line, const PropertyList& properties);

/// key "=" value and one NUL as the last character, so that it can be used as a terminated item as it is.
std::wstring setArgProperty(const std::wstring& key, const std::wstring& value);

/// Removes the second occurrence of `option`; the first and any third stay, so one call removes at
/// most one duplicate.
void removeDuplicateSingles(Arguments& arguments, std::wstring_view option);
/// The same with the value behind the removed option, if it has one.
void removeDuplicatePairs(Arguments& arguments, std::wstring_view option);
/// Tells, for whoever explains a launch, that `count` arguments from `index` on are not passed on.
void tellDropped(const Arguments& arguments, std::size_t index, std::size_t count, const Why& why);
/// Tells, for whoever explains a launch, that the option at `repeated` does not count beside the first of
/// its name: `count` arguments, with its value two.
void tellRepeated(const Arguments& arguments, std::size_t repeated, std::size_t count,
                  const Why& why);

}  // namespace rcp
