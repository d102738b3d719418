#include "process.h"

#include "tests/support/sandbox.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace acceptance {

namespace {

constexpr int kSetUpFailed = 126;

#ifdef __linux__

// Processes that lose their parent become children of the test, which can then wait for them.
void adoptOrphans() {
    (void)prctl(PR_SET_CHILD_SUBREAPER, 1);
}

#else

void adoptOrphans() {}

#endif

[[noreturn]] void giveUp(const char* what) {
    const std::string text = std::string("set-up failed: ") + what + ": " + std::strerror(errno);
    (void)!write(STDERR_FILENO, text.data(), text.size());
    _exit(kSetUpFailed);
}

[[noreturn]] void becomeProgram(const Command& command, char* const* arguments,
                                char* const* environment, bool withPrivateTmp) {
    (void)setpgid(0, 0);
    const int output = open(command.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (output == -1 || dup2(output, STDOUT_FILENO) == -1 || dup2(output, STDERR_FILENO) == -1) {
        giveUp("output file");
    }
    if (withPrivateTmp && !rcp::test::showAsTmp(command.privateTmp)) {
        giveUp("private /tmp");
    }
    const int input = open("/dev/null", O_RDONLY);
    if (input == -1 || dup2(input, STDIN_FILENO) == -1) {
        giveUp("/dev/null");
    }
    if (command.user &&
        (setgid(static_cast<gid_t>(*command.user)) != 0 || setuid(*command.user) != 0)) {
        giveUp("user");
    }
    for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) {
        (void)close(descriptor);
    }
    const rlimit noCore = {0, 0};
    (void)setrlimit(RLIMIT_CORE, &noCore);
    (void)umask(022);
    if (chdir(command.folder.c_str()) != 0) {
        giveUp("working directory");
    }
    (void)execve(command.program.c_str(), arguments, environment);
    giveUp(command.program.c_str());
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

}  // namespace

Process::Process(const Command& command) {
    adoptOrphans();
    const bool withPrivateTmp = !command.privateTmp.empty() && rcp::test::sandboxObstacle().empty();
    std::vector<std::string> arguments = command.arguments;
    std::vector<std::string> environment;
    for (const auto& [name, value] : command.environment) {
        environment.push_back(name);
        environment.back().append("=").append(value);
    }
    std::vector<char*> argumentPointers = pointers(arguments);
    std::vector<char*> environmentPointers = pointers(environment);
    pid_ = fork();
    if (pid_ == 0) {
        becomeProgram(command, argumentPointers.data(), environmentPointers.data(), withPrivateTmp);
    }
    if (pid_ == -1) {
        throw std::runtime_error("no process could be started");
    }
    (void)setpgid(pid_, pid_);
}

Process::~Process() {
    if (!ended_ || !groupIsGone()) {
        killGroup();
        (void)wait(std::chrono::seconds(100));
    }
}

bool Process::running() {
    int status = 0;
    if (!ended_ && waitpid(pid_, &status, WNOHANG) == pid_) {
        ended_ = true;
        ending_.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        ending_.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    return !ended_;
}

bool Process::groupIsGone() const {
    while (waitpid(-pid_, nullptr, WNOHANG) > 0) {
    }
    return kill(-pid_, 0) == -1 && errno == ESRCH;
}

void Process::killGroup() const {
    (void)kill(-pid_, SIGKILL);
    (void)kill(pid_, SIGKILL);
}

void Process::killProgram() const {
    (void)kill(pid_, SIGKILL);
}

Ending Process::wait(std::chrono::milliseconds limit) {
    auto end = std::chrono::steady_clock::now() + limit;
    while (running() || !groupIsGone()) {
        if (std::chrono::steady_clock::now() > end) {
            if (ending_.timedOut) {
                break;  // killed, and still there
            }
            ending_.timedOut = true;
            killGroup();
            end += std::chrono::seconds(100);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    return ending_;
}

}  // namespace acceptance
