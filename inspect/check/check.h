// The status of a check.
#pragma once

#include "inspect/check/finding.h"
#include "inspect/options.h"

namespace rcp::inspect {

/// 0 clean, 1 warnings, 2 errors; `isStrict` makes warnings errors.
int checkStatus(const Findings& findings, bool isStrict);

/// Each of options.roots in a process of its own: a line of text, a member of the JSON, a run of the SARIF. The worst
/// of their statuses; one without a launcher has errors.
int checkMany(const Options& options);

}  // namespace rcp::inspect
