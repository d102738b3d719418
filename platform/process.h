// Other programs, started without a shell: no text of a property file or argument is ever read as a
// command.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rcp {

struct ProgramResult {
    bool succeeded = false;  // exit status 0
    std::string output;      // what it wrote to its standard output
};

/// Runs the program that `arguments[0]` names (found through PATH when it has no "/") and waits for
/// it. Its standard input and error are the null device; its environment is ours less what changes the
/// form of a listing, with our locale. Empty optional when it cannot be started.
std::optional<ProgramResult> runProgram(const std::vector<std::string>& arguments);

}  // namespace rcp
