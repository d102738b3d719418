// What doctor asks of an installation, a workspace and a launch, one answer a question.
#pragma once

#include "inspect/options.h"

#include <string>
#include <vector>

namespace rcp::inspect {

enum class Mark { kGood, kOdd, kBad };

struct Problem {
    Mark mark = Mark::kBad;
    std::string cause;
    std::string place;  // "rcp/rcplauncher.properties:24"; may be empty
    std::string remedy;
};

struct Answer {
    std::string question;
    std::string text;
    std::vector<Problem> problems = {};

    /// That of the worst problem.
    [[nodiscard]] Mark mark() const;
};

/// In the order in which they are shown. Throws std::runtime_error when no launch can be rehearsed.
std::vector<Answer> answers(const Options& options);

}  // namespace rcp::inspect
