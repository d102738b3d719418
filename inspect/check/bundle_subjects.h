// The findings in an application bundle, by subject.
#pragma once

#include "inspect/bundle/bundle.h"
#include "inspect/check/examination.h"
#include "inspect/check/finding.h"

namespace rcp::inspect {

/// What the system looks at before anything runs: files, keys, permissions.
void findInBundleStructure(const Bundle& bundle, Findings& findings);
/// What the code of the bundle promises and wants.
void findInBundleCode(const Bundle& bundle, Findings& findings);
/// Signatures, and what a launch does to them.
void findInBundleSeal(const Bundle& bundle, const Examination& examination, Findings& findings);

}  // namespace rcp::inspect
