// One of the two things that are compared.
#pragma once

#include "inspect/diff/inventory.h"
#include "inspect/options.h"

#include <nlohmann/json.hpp>
#include <optional>

namespace rcp::inspect {

struct Side {
    nlohmann::json about;     // what the layout tells of it
    nlohmann::json elements;  // text and, of an explained launch, source
    // The rest is known of an explained launch alone.
    nlohmann::json environment = nlohmann::json::array();
    nlohmann::json properties = nlohmann::json::array();  // name, value, source: those that count
    nlohmann::json copies = nlohmann::json::array();
    nlohmann::json findings = nlohmann::json::array();
    std::optional<Tree> files;
};

/// What a launch would do now, and what the installation is. The files are not looked at yet.
Side explainedSide(const Options& options);

struct RecordedLaunch {
    Side side;
    std::vector<std::string> arguments;  // the launcher's
};

/// The launch that wrote last into the log of the workspace that a launch with these options would use. Throws
/// std::runtime_error when there is none, or when it started no platform.
RecordedLaunch recordedLaunch(const Options& options);

}  // namespace rcp::inspect
