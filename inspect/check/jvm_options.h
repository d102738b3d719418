// What JVM options mean, as far as two of them can contradict each other.
#pragma once

#include "launcher/inputs/arguments.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

enum class HeapSize { kStart, kLimit };

/// The option that decides a heap size: the last one. Null without one.
const Argument* lastHeapSize(HeapSize size, const Arguments& arguments);
/// The bytes that such an option names; 0 when it names none.
std::uint64_t heapBytes(std::wstring_view option);

/// The collectors that are switched on when all options are read, in order. More than one is a
/// contradiction.
std::vector<const Argument*> chosenCollectors(const Arguments& arguments);

/// What of an option may be given only once: "-Xmx", "-XX:NAME", "-DNAME". Empty for others.
std::wstring jvmOptionName(std::wstring_view option);

}  // namespace rcp::inspect
