#include "platform/process.h"

#include "base/pipe.h"
#include "base/transfer.h"

#include <errno.h>
#include <fcntl.h>
#include <locale.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

extern char** environ;  // environ(7)

namespace rcp {
namespace {

// Variables that change what a listing looks like; the reader of its lines wants it plain and
// whole. The locale is given anew: the launcher's own may not be the one that the environment asks
// for. It is given for characters alone, since macOS knows the name "UTF-8" for nothing else.
bool changesListings(std::string_view variable) {
    constexpr std::string_view kNames[] = {
        "COLUMNS=", "LINES=",  "PS_FORMAT=", "PS_PERSONALITY=",     "PS_COLORS=",
        "CMD_ENV=", "LC_ALL=", "LC_CTYPE=",  "I_WANT_A_BROKEN_PS=",
    };
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [variable](std::string_view name) { return variable.starts_with(name); });
}

// The process's environment for a program whose output is read.
class PlainEnvironment {
  public:
    PlainEnvironment() {
        for (char** variable = environ; *variable != nullptr; ++variable) {
            if (!changesListings(*variable)) {
                variables_.push_back(*variable);
            }
        }
        variables_.push_back(locale_.data());
        variables_.push_back(nullptr);
    }
    PlainEnvironment(const PlainEnvironment&) = delete;
    PlainEnvironment& operator=(const PlainEnvironment&) = delete;
    PlainEnvironment(PlainEnvironment&&) = delete;
    PlainEnvironment& operator=(PlainEnvironment&&) = delete;
    ~PlainEnvironment() = default;
    char* const* data() { return variables_.data(); }

  private:
    std::string locale_ = std::string("LC_CTYPE=") + setlocale(LC_CTYPE, nullptr);
    std::vector<char*> variables_;
};

// SIGCHLD as the system delivers it by default. Whoever started the launcher may have left it
// ignored; then no child can be waited for, and a running platform would look like none.
class DefaultChildSignal {
  public:
    DefaultChildSignal() {
        struct sigaction action {};
        action.sa_handler = SIG_DFL;
        sigaction(SIGCHLD, &action, &former_);
    }
    ~DefaultChildSignal() { sigaction(SIGCHLD, &former_, nullptr); }
    DefaultChildSignal(const DefaultChildSignal&) = delete;
    DefaultChildSignal& operator=(const DefaultChildSignal&) = delete;
    DefaultChildSignal(DefaultChildSignal&&) = delete;
    DefaultChildSignal& operator=(DefaultChildSignal&&) = delete;

  private:
    struct sigaction former_ {};
};

class FileActions {
  public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    FileActions(FileActions&&) = delete;
    FileActions& operator=(FileActions&&) = delete;

    void useNullDevice(int descriptor, int flags) {
        posix_spawn_file_actions_addopen(&actions_, descriptor, "/dev/null", flags, 0);
    }
    void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
};

bool waitForSuccess(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::optional<ProgramResult> runProgram(const std::vector<std::string>& arguments) {
    Pipe output;
    if (!output.readEnd || arguments.empty()) {
        return std::nullopt;
    }
    FileActions actions;
    actions.useNullDevice(STDIN_FILENO, O_RDONLY);
    actions.duplicate(output.writeEnd.get(), STDOUT_FILENO);
    actions.useNullDevice(STDERR_FILENO, O_WRONLY);

    std::vector<std::string> copies = arguments;  // posix_spawn(3) takes them as writable
    std::vector<char*> argv;
    argv.reserve(copies.size() + 1);
    for (std::string& argument : copies) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    const DefaultChildSignal childSignal;
    PlainEnvironment environment;
    pid_t process = 0;
    if (posix_spawnp(&process, argv[0], actions.get(), nullptr, argv.data(), environment.data()) !=
        0) {
        return std::nullopt;
    }
    output.writeEnd.reset();
    ProgramResult result;
    result.output = readToEnd(output.readEnd.get());
    result.succeeded = waitForSuccess(process);
    return result;
}

}  // namespace rcp
