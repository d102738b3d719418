// Why each element of a final argument list is there, in one sentence; and why an argument is not.
#pragma once

#include "launcher/inputs/arguments.h"
#include "launcher/properties/property_list.h"

#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// The properties that stand in for an option that is not given.
std::vector<std::wstring_view> propertiesFor(std::wstring_view option);
/// The option that a property stands in for; empty for another property.
std::wstring_view optionFor(std::wstring_view property);

/// The rule by which element `index` of `elements` is there. `entry` is the property it comes from,
/// null without one; `vmarg` the name of the JVM argument that it is, empty for another. Empty only
/// for an element that no rule is known for.
std::string ruleFor(const Arguments& elements, std::size_t index, const Property* entry,
                    const std::wstring& vmarg);

/// Why the argument at `position` of the launcher's own is not passed on: `dropped` is it as the assembly
/// dropped it, null when it did not come that far. `isInitial`: the initial configuration stands in for the
/// arguments.
std::string whyDropped(const Arguments& arguments, std::size_t position, const Argument* dropped,
                       bool isInitial);

}  // namespace rcp::inspect
