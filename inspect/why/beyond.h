// Of what the platform is handed the chain that leads to it: its own settings and what they name.
#pragma once

#include "inspect/options.h"

#include <nlohmann/json.hpp>

namespace rcp::inspect {

/// The chains of options.subject, as launchChains() has them: a setting, one of the JVM's variables, a
/// configuration file, or a jar that is named there.
nlohmann::json beyondChains(const Options& options);

}  // namespace rcp::inspect
