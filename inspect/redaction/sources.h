// What a launch can get a value from, for the redactor to learn.
#pragma once

#include "inspect/options.h"
#include "inspect/redaction/redactor.h"

namespace rcp::inspect {

/// The files, comments and all, the arguments, the environment, and what a launch makes of them; the names too that the
/// installation adds to those that are secret.
void learnFrom(const Options& options, Redactor& redactor);

}  // namespace rcp::inspect
