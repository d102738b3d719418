// How what a command tells reaches the user: on standard output or as a page, redacted or not.
#pragma once

#include "inspect/options.h"

#include <string>

namespace rcp::inspect {

using CarryOut = int (*)(const Options&);

/// Carries the command out. With options.isRedacted what it writes, errors as well, is redacted, and ends with the
/// list of what was; a page is made of the command's JSON.
int handOut(CarryOut command, const Options& options);

struct Told {
    int status = 0;
    std::string output;
};
/// What a command writes to standard output.
Told toldBy(CarryOut command, const Options& options);

/// What is wrong with a command line, redacted without knowing any installation.
std::string redactedProblem(const std::string& problem);

}  // namespace rcp::inspect
