// Where a report was made: what the answers of other commands do not tell.
#pragma once

#include "inspect/options.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace rcp::inspect {

/// Lines of the versions of the system, of rcpinspect, the launcher and the JVM, of the time, the effective user,
/// the locale and, when it is asked for, the host. `doctors` is the JSON of doctor.
std::string describeSurroundings(const Options& options, const nlohmann::json& doctors);

}  // namespace rcp::inspect
