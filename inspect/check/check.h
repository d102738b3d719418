// The status of a check.
#pragma once

#include "inspect/check/finding.h"

namespace rcp::inspect {

/// 0 clean, 1 warnings, 2 errors; `isStrict` makes warnings errors.
int checkStatus(const Findings& findings, bool isStrict);

}  // namespace rcp::inspect
