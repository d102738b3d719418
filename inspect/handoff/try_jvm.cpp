#include "inspect/handoff/try_jvm.h"

#include "base/pipe.h"
#include "inspect/check/groups.h"
#include "inspect/child.h"
#include "inspect/handoff/code_faults.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/temporary_folder.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/variables.h"
#include "platform/files.h"
#include "platform/signals.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <thread>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit{30};
constexpr std::size_t kLongestOutput = 65536;
constexpr int kLevelsToHome = 4;  // from JDK/jre/lib/server/libjvm.so

// The program of the home that a library lies in; empty without one. A link there that leads out of the home
// is another JVM's.
std::string programBeside(const files::path& library) {
    files::path folder = library.parent_path();
    for (int i = 0; i < kLevelsToHome && folder.has_relative_path(); ++i) {
        const std::string program = folder / "bin/java";
        if (!startFault(program)) {
            const std::string home = folder.string() + "/";
            return resolvedPath(program).value_or(program).starts_with(home) ? program
                                                                             : std::string();
        }
        folder = folder.parent_path();
    }
    return {};
}

// What makes the JVM in a trial; empty without a program.
struct Maker {
    files::path program = {};
    bool isForLibrary = false;
};

Maker makerBeside(const std::string& library) {
    const auto resolved = resolvedPath(library);
    return {resolved ? programBeside(*resolved) : std::string(), true};
}

Maker makerOf(const Jvm& jvm) {
    const std::string path = toNarrow(jvm.path.text);
    switch (jvm.kind) {
        case JvmKind::kProgram:
            return startFault(path) ? Maker{} : Maker{path};
        case JvmKind::kLibrary:
            return makerBeside(path);
        case JvmKind::kFolder:
            return startFault(path + "/java") ? makerBeside(path + "/libjvm.so")
                                              : Maker{path + "/java"};
        default:
            return {};
    }
}

// Where blanks separate, a library with one is preloaded through a link, as by a launch, but to one of the trial's.
void preload(const std::string& library, const std::string& folder) {
    const bool isLinked = library.find(' ') != std::string::npos;
    const std::string path = isLinked ? folder + "/preloaded" : library;
    if (!isLinked || (existsA(library) && symlink(library.c_str(), path.c_str()) == 0)) {
        setenv(toNarrow(std::wstring(variables::kPreload)).c_str(), path.c_str(), 1);
    }
}

void changeEnvironment(const EnvironmentChanges& changes, const std::string& folder) {
    for (const EnvironmentChange& change : changes) {
        switch (change.kind) {
            case EnvironmentChange::kSet:
                setenv(toNarrow(change.name).c_str(), toNarrow(change.value).c_str(), 1);
                break;
            case EnvironmentChange::kUnset:
                unsetenv(toNarrow(change.name).c_str());
                break;
            case EnvironmentChange::kPreload:
                preload(toNarrow(change.value), folder);
                break;
        }
    }
}

[[noreturn]] void startJvm(std::vector<std::string> words, const std::string& folder, int output) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (chdir(folder.c_str()) == 0 && dup2(input, STDIN_FILENO) >= 0 &&
        dup2(output, STDOUT_FILENO) >= 0 && dup2(output, STDERR_FILENO) >= 0) {
        (void)setpgid(0, 0);  // to be ended with all that it starts
        restoreFileSizeSignal();
        execv(pointers.front(), pointers.data());
    }
    _exit(127);
}

struct Trial {
    std::optional<int> status;  // as waitpid(2) gives it; none of what the limit has ended
    std::string said;
};

// What is written up to the end of the output or to the limit.
std::string outputUntil(Clock::time_point end, int input) {
    std::string said;
    std::array<char, 4096> buffer{};
    pollfd awaited{input, POLLIN, 0};
    while (Clock::now() < end) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        const int ready = poll(&awaited, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        const ssize_t length = ready > 0 ? read(input, buffer.data(), buffer.size()) : -1;
        if (length <= 0) {
            break;
        }
        if (said.size() < kLongestOutput) {
            said.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }
    return said;
}

// A program may go on when it has closed its output. What it has started ends with it, so it is awaited only when
// that is done: until then its number is nobody else's.
std::optional<int> statusUntil(Clock::time_point end, pid_t child) {
    constexpr std::chrono::milliseconds kPause{10};
    const auto hasEnded = [child] {
        siginfo_t info{};
        return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
               info.si_pid != 0;
    };
    while (!hasEnded() && Clock::now() < end) {
        std::this_thread::sleep_for(kPause);
    }
    const bool isInTime = hasEnded();
    (void)kill(-child, SIGKILL);
    int status = 0;
    (void)waitpid(child, &status, 0);
    return isInTime ? std::optional<int>(status) : std::nullopt;
}

// Throws std::runtime_error when nothing can be started.
Trial run(const std::vector<std::string>& words, const EnvironmentChanges& changes) {
    const TemporaryFolder own;
    const std::string folder = own.path() + "/empty";
    Pipe answer;
    if (mkdir(folder.c_str(), S_IRWXU) != 0 || !answer.readEnd) {
        throw std::runtime_error(strerror(errno));
    }
    const pid_t child = fork();
    if (child == 0) {
        beChild([&] {
            changeEnvironment(changes, own.path());
            startJvm(words, folder, answer.writeEnd.get());
        });
    }
    if (child < 0) {
        throw std::runtime_error(strerror(errno));
    }
    (void)setpgid(child, child);  // also done by the child: whichever comes first
    answer.writeEnd.reset();
    const Clock::time_point end = Clock::now() + kLimit;
    Trial trial;
    trial.said = outputUntil(end, answer.readEnd.get());
    trial.status = statusUntil(end, child);
    return trial;
}

std::string endText(int status) {
    return WIFSIGNALED(status) ? "is ended by signal " + std::to_string(WTERMSIG(status))
                               : "ends with status " + std::to_string(WEXITSTATUS(status));
}

std::string firstLines(const std::string& text, std::size_t count) {
    std::string lines;
    for (std::size_t at = 0; at < text.size() && count > 0; --count) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines += (lines.empty() ? "" : "; ") + text.substr(at, end - at);
        at = end + 1;
    }
    return lines;
}

}  // namespace

Examined tryJvm(const Examination& examination) {
    Examined examined{.what = "tried JVM", .path = "nothing"};
    const std::optional<Plan> plan = planOf(examination);
    const Jvm jvm = plan ? jvmOf(examination, *plan) : Jvm();
    if (jvm.kind == JvmKind::kNone) {
        return examined;
    }
    const auto addFault = [&](const char* code, const std::string& message) {
        examined.faults.push_back(
            faultAt(examination, code, jvm.path.origin, inQuotes(jvm.path.text) + " " + message));
    };
    const Maker maker = makerOf(jvm);
    if (maker.program.empty()) {
        addFault("RI815", jvm.kind == JvmKind::kDescription
                              ? "is a description that the launcher library reads"
                              : "has no program \"java\" of its own");
        return examined;
    }
    std::vector<std::string> words{files::absolute(maker.program)};
    if (maker.isForLibrary) {  // as the launcher library makes it
        words.emplace_back("-XX:+IgnoreUnrecognizedVMOptions");
    }
    for (const Argument& option : jvmOptionsOf(examination, *plan)) {
        words.push_back(toNarrow(option.text));
    }
    words.emplace_back("-version");
    EnvironmentChanges changes = plan->environment;
    if (maker.isForLibrary) {  // which the program would read
        changes.push_back({EnvironmentChange::kUnset, toWide(kJavasVariable), {}, {}});
    }
    try {
        const Trial trial = run(words, changes);
        examined.path = firstLines(trial.said, 1);
        if (!trial.status) {
            addFault("RI810", "has not answered within 30 seconds");
        } else if (*trial.status != 0) {
            addFault("RI810", endText(*trial.status) +
                                  (trial.said.empty() ? "" : ": " + firstLines(trial.said, 3)));
        }
    } catch (const std::runtime_error& problem) {
        addFault("RI815", std::string("was not started: ") + problem.what());
    }
    return examined;
}

}  // namespace rcp::inspect
