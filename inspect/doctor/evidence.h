// What doctor's answers are given from.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/check/finding.h"
#include "inspect/doctor/answers.h"
#include "inspect/handoff/hand_off.h"
#include "inspect/status/workspace_state.h"

#include <map>
#include <nlohmann/json.hpp>

namespace rcp::inspect {

/// Which answer a finding belongs to.
enum class Subject {
    kInstallation,
    kSettings,
    kBase,
    kLibrary,
    kJvm,
    kJvmProperties,
    kBundles,
    kArea,
    kSpace,
    kLocale,
    kEnvironment,
};

struct Evidence {
    nlohmann::json explanation;
    WorkspaceState state;
    Examination examination;
    std::vector<Finding> findings;
    std::vector<Examined> handOff;
    std::map<std::string, Subject> subjects;  // of what the hand-off's faults say

    /// The worst first.
    [[nodiscard]] std::vector<Problem> problemsOf(Subject subject) const;
    /// What was examined under that name; empty without.
    [[nodiscard]] std::string pathOf(const std::string& what) const;
    /// The JVM that the launch names; empty when it comes to no command line.
    [[nodiscard]] std::string jvm() const;
};

Evidence gather(const Options& options);

}  // namespace rcp::inspect
