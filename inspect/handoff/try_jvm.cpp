#include "inspect/handoff/try_jvm.h"

#include "base/pipe.h"
#include "inspect/handoff/code_faults.h"
#include "launcher/vocabulary/options.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit{30};
constexpr std::size_t kLongestOutput = 65536;
constexpr int kLevelsToHome = 4;  // from JDK/jre/lib/server/libjvm.so

// The program for a JVM that is a library; empty without one.
std::string programOf(const std::string& jvm, bool isJava) {
    const files::path path = resolvedPath(jvm).value_or(jvm);
    if (isJava || path.filename().string().find(".so") == std::string::npos) {
        return isJava || !startFault(jvm) ? jvm : std::string();
    }
    files::path folder = path.parent_path();
    for (int i = 0; i < kLevelsToHome && folder.has_relative_path(); ++i) {
        if (const files::path program = folder / "bin/java"; !startFault(program)) {
            return program;
        }
        folder = folder.parent_path();
    }
    return {};
}

// What of the command line is the JVM's.
std::vector<std::string> jvmOptions(const Plan& plan, bool isJava) {
    const Arguments& all = plan.line.arguments();
    const auto isMainClass = [](const Argument& one) {
        return one == L"org.eclipse.core.launcher.Main";
    };
    const auto begin = isJava ? all.begin() : std::find(all.begin(), all.end(), options::kVmargs);
    const auto end = isJava ? std::find_if(all.begin(), all.end(), isMainClass) : all.end();
    std::vector<std::string> jvms;
    for (auto one = begin; one != end; ++one) {
        if (one != begin) {  // "-vmargs", or the JVM itself
            jvms.push_back(toNarrow(one->text));
        }
    }
    return jvms;
}

void changeEnvironment(const EnvironmentChanges& changes) {
    for (const EnvironmentChange& change : changes) {
        if (change.kind == EnvironmentChange::kSet) {
            setenv(toNarrow(change.name).c_str(), toNarrow(change.value).c_str(), 1);
        } else if (change.kind == EnvironmentChange::kUnset) {
            unsetenv(toNarrow(change.name).c_str());
        }
    }
}

[[noreturn]] void become(std::vector<std::string> words, const std::string& folder, int output) {
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
        execv(pointers.front(), pointers.data());
    }
    _exit(127);
}

struct Trial {
    bool hasEnded = false;
    int status = -1;
    std::string said;
};

// What is written up to the end or to the limit.
void listen(int input, Trial& trial) {
    const auto end = Clock::now() + kLimit;
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
            trial.hasEnded = length == 0;
            return;
        }
        if (trial.said.size() < kLongestOutput) {
            trial.said.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }
}

Trial run(const std::vector<std::string>& words, const EnvironmentChanges& changes) {
    Trial trial;
    std::string folder = files::temp_directory_path() / "rcpinspect-XXXXXX";
    Pipe answer;
    if (mkdtemp(folder.data()) == nullptr || !answer.readEnd) {
        trial.said = "no folder or pipe can be made for it";
        return trial;
    }
    const pid_t child = fork();
    if (child == 0) {
        changeEnvironment(changes);
        become(words, folder, answer.writeEnd.get());
    }
    answer.writeEnd.reset();
    if (child > 0) {
        listen(answer.readEnd.get(), trial);
        if (!trial.hasEnded) {
            (void)kill(-child, SIGKILL);
        }
        int status = 0;
        (void)waitpid(child, &status, 0);
        trial.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::error_code ignored;
    files::remove_all(folder, ignored);
    return trial;
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
    const Argument jvm = plan ? jvmOf(examination, *plan) : Argument();
    if (jvm.text.empty()) {
        return examined;
    }
    const auto addFault = [&](const std::string& message) {
        examined.faults.push_back(faultAt(examination, "RI810", jvm.origin, message));
    };
    const bool isJava = examination.inputs.traits.isDirectJavaShape();
    const std::string path = toNarrow(jvm.text);
    const std::string program = programOf(path, isJava);
    if (program.empty()) {
        addFault("\"" + path + "\" cannot be tried: there is no program \"java\" beside it");
        return examined;
    }
    std::vector<std::string> words{program};
    if (program != path) {  // as the launcher library makes it
        words.emplace_back("-XX:+IgnoreUnrecognizedVMOptions");
    }
    for (const std::string& option : jvmOptions(*plan, isJava)) {
        words.push_back(option);
    }
    words.emplace_back("-version");
    const Trial trial = run(words, plan->environment);
    examined.path = firstLines(trial.said, 1);
    if (!trial.hasEnded) {
        addFault("\"" + path + "\" has not answered within 30 seconds");
    } else if (trial.status != 0) {
        addFault("\"" + path + "\" ends with status " + std::to_string(trial.status) + ": " +
                 firstLines(trial.said, 3));
    }
    return examined;
}

}  // namespace rcp::inspect
