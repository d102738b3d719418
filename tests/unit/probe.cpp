#include "tests/unit/probe.h"

#include "platform/platform.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"

#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace rcp::test {
namespace {

constexpr char kProbeOption[] = "--probe";
constexpr int kNoSuchProbe = 126;

const Probe*& firstProbe() {
    static const Probe* first = nullptr;
    return first;
}

[[noreturn]] void become(const std::string& program, std::vector<std::string> words) {
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t length = 0; (length = read(descriptor, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return text;
}

}  // namespace

Probe::Probe(const char* name, Body body)
    : name_(name), body_(body), next_(std::exchange(firstProbe(), this)) {}

ProbeResult runProbe(const std::string& name, const std::vector<std::string>& arguments,
                     std::string program) {
    if (program.empty()) {
        program = seen(platform::executablePathAsStarted());
    }
    std::vector<std::string> words = {program, kProbeOption, name};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return {};
    }
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        become(program, words);
    }
    close(ends[1]);
    ProbeResult result;
    result.output = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    if (waitpid(child, &status, 0) == child && WIFEXITED(status)) {
        result.status = WEXITSTATUS(status);
    }
    return result;
}

std::optional<int> answerProbe(int argc, char** argv) {
    if (argc < 3 || std::string_view(argv[1]) != kProbeOption) {
        return std::nullopt;
    }
    const std::vector<std::string> arguments(argv + 3, argv + argc);
    for (const Probe* probe = firstProbe(); probe != nullptr; probe = probe->next_) {
        if (std::string_view(probe->name_) == argv[2]) {
            int result = 0;
            const int end = statusOf([&] { result = probe->body_(arguments); });
            const int status = end == 0 ? result : end;
            (void)fflush(stdout);
            return status;
        }
    }
    return kNoSuchProbe;
}

void linkProgram(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::copy_file(
        std::filesystem::canonical(seen(platform::executablePathAsStarted())), path);
}

}  // namespace rcp::test
