// The signature inside a Mach-O file.
#pragma once

#include "inspect/bundle/mach_o.h"

namespace rcp::inspect {

/// What the signature says; none when it is none. That it is true is the system's to find out.
std::optional<CodeSignature> readCodeSignature(std::string_view blob);

}  // namespace rcp::inspect
