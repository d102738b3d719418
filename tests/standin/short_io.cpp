// Runs a program whose reads and writes are short: each moves at most LIMIT bytes, as a signal, a
// network file system or a nearly full disk can make them. Only the program itself and what it
// forks; what any of them starts goes on undisturbed.
//
// usage: short_io LIMIT PROGRAM [ARGUMENT...]
// Status: the program's; 125 when the system does not let it be traced, or nothing was shortened.
#include <elf.h>
#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>

namespace {

constexpr int kNoTracing = 125;
bool isTransfer(unsigned long call) {
    return call == SYS_read || call == SYS_write || call == SYS_pread64 || call == SYS_pwrite64;
}

// Where a call's number and its third argument, the count, are. The program relies on finding the
// latter as it left it.
#if defined(__x86_64__)
using Registers = user_regs_struct;
unsigned long callOf(const Registers& registers) {
    return registers.orig_rax;
}
unsigned long long& countOf(Registers& registers) {
    return registers.rdx;
}
#elif defined(__aarch64__)
using Registers = user_regs_struct;
unsigned long callOf(const Registers& registers) {
    return registers.regs[8];
}
unsigned long long& countOf(Registers& registers) {
    return registers.regs[2];
}
#endif

bool getRegisters(pid_t process, Registers& registers) {
    iovec area{&registers, sizeof registers};
    return ptrace(PTRACE_GETREGSET, process, NT_PRSTATUS, &area) == 0;
}

void setRegisters(pid_t process, Registers& registers) {
    iovec area{&registers, sizeof registers};
    ptrace(PTRACE_SETREGSET, process, NT_PRSTATUS, &area);
}

class Tracer {
  public:
    Tracer(pid_t program, unsigned long limit) : program_(program), limit_(limit) {}

    // Until every traced process has ended; the program's exit status.
    int run() {
        int status = 0;
        for (pid_t process = 0; (process = waitpid(-1, &status, __WALL)) > 0;) {
            if (WIFSTOPPED(status)) {
                goOn(process, status);
            } else if (process == program_) {
                result_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
        }
        return hasShortened_ ? result_ : kNoTracing;
    }

  private:
    void goOn(pid_t process, int status) {
        const int signal = WSTOPSIG(status);
        int passedOn = 0;
        if (signal == (SIGTRAP | 0x80)) {
            callStops(process);
        } else if (status >> 8 == (SIGTRAP | (PTRACE_EVENT_EXEC << 8))) {
            if (hasBegun_) {
                ptrace(PTRACE_DETACH, process, nullptr, nullptr);
                return;
            }
            hasBegun_ = true;
        } else if (status >> 16 == 0 && signal != SIGSTOP && signal != SIGTRAP) {
            passedOn = signal;
        }
        ptrace(PTRACE_SYSCALL, process, nullptr, passedOn);
    }

    // At its beginning a transfer gets a smaller count, at its end the register is put right.
    void callStops(pid_t process) {
        Registers registers{};
        if (!getRegisters(process, registers)) {
            return;
        }
        const auto entered = counts_.find(process);
        if (entered != counts_.end()) {
            countOf(registers) = entered->second;
            counts_.erase(entered);
            setRegisters(process, registers);
        } else if (isBeginning(process)) {
            shorten(process, registers);
        }
    }

    // The dynamic loader takes a library that it gets less of for a damaged one; the first thing it
    // unmaps is its list of libraries, when all are loaded.
    void shorten(pid_t process, Registers& registers) {
        isLoaded_ |= callOf(registers) == SYS_munmap;
        if (isLoaded_ && isTransfer(callOf(registers)) && countOf(registers) > limit_) {
            hasShortened_ = true;
            counts_[process] = countOf(registers);
            countOf(registers) = limit_;
            setRegisters(process, registers);
        }
    }

    static bool isBeginning(pid_t process) {
        __ptrace_syscall_info info{};
        return ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info) > 0 &&
               info.op == PTRACE_SYSCALL_INFO_ENTRY;
    }

    pid_t program_;
    unsigned long limit_;
    bool hasBegun_ = false;
    bool isLoaded_ = false;
    bool hasShortened_ = false;
    int result_ = kNoTracing;
    std::map<pid_t, unsigned long long> counts_;  // of the processes inside a shortened call
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        fputs("usage: short_io LIMIT PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    const pid_t program = fork();
    if (program == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            _exit(kNoTracing);
        }
        raise(SIGSTOP);
        execv(argv[2], argv + 2);
        _exit(127);
    }
    int status = 0;
    if (program < 0 || waitpid(program, &status, 0) != program || !WIFSTOPPED(status)) {
        return kNoTracing;
    }
    constexpr long kOptions = PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEFORK |
                              PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC;
    ptrace(PTRACE_SETOPTIONS, program, nullptr, kOptions);
    ptrace(PTRACE_SYSCALL, program, nullptr, nullptr);
    return Tracer(program, strtoul(argv[1], nullptr, 10)).run();
}
