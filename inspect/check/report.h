// The forms in which a check is handed out.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/check/finding.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace rcp::inspect {

/// For people, grouped by file and kind.
std::string textReport(const Examination& examination, const Findings& findings,
                       const TextForm& form);
/// Layout 1; docs/findings.md describes it.
nlohmann::ordered_json jsonReport(const Examination& examination, const Findings& findings);
/// SARIF 2.1.0: every rule of the table with its help, every finding with its place.
nlohmann::ordered_json sarifReport(const Examination& examination, const Findings& findings);
/// A path as it stands in an address.
std::string uriOf(const std::string& path);
/// The text of a report; what is not UTF-8 in a path or value is replaced.
std::string dump(const nlohmann::ordered_json& report);

}  // namespace rcp::inspect
