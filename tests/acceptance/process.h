// Starts a program in surroundings of its own and sees to it that nothing of it is left running.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace acceptance {

/// What to start and where.
struct Command {
    std::string program;                 ///< the file to execute
    std::vector<std::string> arguments;  ///< all of them, the program's name included
    std::map<std::string, std::string> environment;
    std::string folder;         ///< working directory
    std::string privateTmp;     ///< the folder that the program sees as /tmp, in a sandbox
    std::string output;         ///< file that takes standard output and standard error
    std::optional<uid_t> user;  ///< another user to run it as (root only)
};

/// How a program ended: `signal` is 0 when it ended by itself, `status` is -1 when it did not.
struct Ending {
    int status = -1;
    int signal = 0;
    bool timedOut = false;
};

/// A started program and everything that it starts itself (one process group). Whatever still runs
/// when the object goes is killed.
class Process {
  public:
    explicit Process(const Command& command);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Waits for the program and then for all it left behind. What is still there at the end of
    /// the time is killed and reported as timed out.
    Ending wait(std::chrono::milliseconds limit);
    /// Whether the program itself (not what it started) still runs.
    bool running();
    /// Kills the program itself, not what it started.
    void killProgram() const;

  private:
    bool groupIsGone() const;
    void killGroup() const;

    pid_t pid_ = -1;
    bool ended_ = false;
    Ending ending_;
};

}  // namespace acceptance
