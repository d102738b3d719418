// The logs that tell of the last launches of one workspace.
#pragma once

#include "inspect/options.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace rcp::inspect {

struct Log {
    std::string path;
    std::string text;  // of a long one the end
};

/// The launcher's, three at most, its temporary one when that was written last, and the platform's: each newest first.
/// `facts` are those of a rehearsed launch.
std::vector<Log> lastLogs(const nlohmann::json& facts, const Options& options);

}  // namespace rcp::inspect
