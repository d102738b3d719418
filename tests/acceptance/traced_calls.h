// The system calls with which a launch changes files, found with strace(1), and launches that are
// killed at one of them.
#pragma once

#include "installation.h"

#include <string>
#include <vector>

namespace acceptance {

/// The `count`-th `name` of a process, counted from 1.
struct TracedCall {
    std::string name;
    int count = 0;

    auto operator<=>(const TracedCall&) const = default;
};

/// Why no launch can be traced here; empty when it can.
const std::string& tracingObstacle();

/// Runs the launcher undisturbed and returns every file-changing call up to the platform's start,
/// those of its forked processes included.
std::vector<TracedCall> traceLaunch(Installation& velmo, const Texts& arguments);

/// Runs the launcher and kills it as it makes the call: what the call would have done is not
/// done. Fails the test when no process of the launch came to the call.
void launchKilledAt(Installation& velmo, const TracedCall& call, const Texts& arguments);

}  // namespace acceptance
