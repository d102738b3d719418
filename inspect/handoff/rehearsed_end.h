// What check learns from the launch being rehearsed.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/check/finding.h"

namespace rcp::inspect {

/// That what a launch writes finds no room; and that it ends with an error, unless a finding tells of that already.
/// Throws std::runtime_error when no launch can be rehearsed.
void findInRehearsal(const Options& options, const Examination& examination, Findings& findings);

}  // namespace rcp::inspect
