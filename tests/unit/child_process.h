// A forked process of a test.
#pragma once

#include "tests/unit/fixture.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace rcp::test {

/// A test that crashes leaves nobody who waits for ever and keeps its output open.
inline void endWithTheTest() {
#ifdef __linux__
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

/// Runs `body` in a process of its own, which ends with the status that it returns; killed when the
/// object goes.
class ChildProcess {
  public:
    explicit ChildProcess(const std::function<int()>& body) : pid_(fork()) {
        if (pid_ == 0) {
            endWithTheTest();
            int result = 0;
            const int status = statusOf([&] { result = body(); });
            _exit(status == 0 ? result : status);
        }
    }
    /// Another program under a name of its own.
    ChildProcess(const std::string& program, const std::string& name, const std::string& argument)
        : ChildProcess([&] {
              execl(program.c_str(), name.c_str(), argument.c_str(), nullptr);
              return 127;
          }) {}
    ~ChildProcess() { end(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&&) = delete;
    ChildProcess& operator=(ChildProcess&&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Its exit status; -1 after a signal.
    int wait() {
        int status = -1;
        if (!ended_ && waitpid(pid_, &status, 0) == pid_) {
            ended_ = true;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Whether it ends within the time.
    bool endsWithin(std::chrono::milliseconds limit) {
        const auto end = std::chrono::steady_clock::now() + limit;
        siginfo_t info{};
        do {
            if (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                info.si_pid == pid_) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        } while (std::chrono::steady_clock::now() < end);
        return false;
    }
    void end() {
        if (!ended_) {
            kill(pid_, SIGKILL);
            wait();
        }
    }

  private:
    pid_t pid_;
    bool ended_ = false;
};

/// The id of a process that has ended.
inline pid_t deadProcessId() {
    ChildProcess child([] { return 0; });
    child.wait();
    return child.pid();
}

}  // namespace rcp::test
