// A piece of a test that needs a process of its own from its very start: a log that was never
// opened, an executable in another place, a locale that was never set.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rcp::test {

/// A named piece; one static object each, in the file of its test.
class Probe {
  public:
    using Body = int (*)(const std::vector<std::string>& arguments);
    Probe(const char* name, Body body);

  private:
    friend std::optional<int> answerProbe(int argc, char** argv);
    const char* name_;
    Body body_;
    const Probe* next_;
};

struct ProbeResult {
    int status = -1;     // exit status; -1 after a signal
    std::string output;  // what it wrote to its standard output
};

/// Runs the piece in a new process, which ends with the status that the piece returns. `program` is
/// another name of this program's file.
ProbeResult runProbe(const std::string& name, const std::vector<std::string>& arguments = {},
                     std::string program = {});

/// In main: the status of the piece that the command line asks for; empty optional without one.
std::optional<int> answerProbe(int argc, char** argv);

/// Makes a copy of this program's file, for runProbe.
void linkProgram(const std::string& path);

}  // namespace rcp::test
