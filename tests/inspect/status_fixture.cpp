#include "tests/inspect/status_fixture.h"

#include "tests/inspect/paths.h"
#include "tests/unit/paths.h"

#include <stdlib.h>

#include <chrono>
#include <regex>
#include <thread>
#include <utility>

namespace rcp::inspect::test {
namespace {

std::vector<char*> pointers(const Words& words) {
    std::vector<char*> result;
    for (const std::string& word : words) {
        result.push_back(const_cast<char*>(word.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

}  // namespace

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    return ends;
}

Program::Program(const Words& words, const Words& environment) {
    const std::array<int, 2> ends = makePipe();
    id_ = fork();
    if (id_ == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execve(words.front().c_str(), pointers(words).data(), pointers(environment).data());
        _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
}

Program::~Program() {
    if (id_ > 0) {
        kill(id_, SIGKILL);
        wait();
    }
    close(output_);
}

std::string Program::line() {
    std::string text;
    char character = 0;
    while (read(output_, &character, 1) == 1 && character != '\n') {
        text += character;
    }
    return text;
}

std::string Program::rest() {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t length = 0; (length = read(output_, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return text;
}

int Program::wait() {
    int status = 0;
    waitpid(std::exchange(id_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void StatusTest::makeInstallation(const Words& options) {
    Words words = {seen(INSPECT_SOURCES "/scripts/make-sample"),
                   installation(),
                   seen(INSPECT_LAUNCHER),
                   "--mode",
                   "exec",
                   "--stand-in",
                   std::filesystem::path(seen(STANDIN_PLATFORM)).parent_path()};
    words.insert(words.end(), options.begin(), options.end());
    Program program(words, environment());
    ASSERT_EQ(program.wait(), 0);
    std::filesystem::create_directories(folder_.path() / "home");
}

Words StatusTest::environment() const {
    return {"HOME=" + folder_.narrow("home"), "USER=ann",
            "PATH=" + std::string(getenv("PATH")),  // "ps" and what make-sample needs
            "LANG=C.UTF-8", "RCP_STANDIN_REPORT=" + folder_.narrow("report")};
}

Words StatusTest::words(const Words& arguments, const Words& options) const {
    Words all = {seen(INSPECT_PROGRAM), "status", "--install", installation()};
    all.insert(all.end(), options.begin(), options.end());
    all.emplace_back("--");
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

std::string StatusTest::text(const Words& arguments) const {
    Program program(words(arguments), environment());
    std::string output = program.rest();
    EXPECT_EQ(program.wait(), 0);
    return output;
}

Json StatusTest::status(const Words& arguments) const {
    Program program(words(arguments, {"--format", "json"}), environment());
    const std::string output = program.rest();
    EXPECT_EQ(program.wait(), 0);
    return Json::parse(output);
}

Words StatusTest::launchWords(Words arguments) const {
    arguments.insert(arguments.begin(), launcher());
    return arguments;
}

int StatusTest::launch(const Words& arguments) const {
    std::filesystem::remove(folder_.path() / "report");
    Program program(launchWords(arguments), environment());
    (void)program.rest();
    return program.wait();
}

bool StatusTest::hasStarted(const std::string& argument) const {
    return folder_.read("report").find("\"" + argument + "\"") != std::string::npos;
}

void StatusTest::startPlatform(std::unique_ptr<Program>& platform) const {
    folder_.write("stay", "");
    Words variables = environment();
    variables.push_back("RCP_STANDIN_STAY=" + folder_.narrow("stay"));
    platform = std::make_unique<Program>(launchWords({}), variables);
    const std::string id = std::to_string(platform->id()) + " ";
    waitUntil(
        [&] { return folder_.read(area(".rcp.lock")).starts_with(id) && folder_.has("report"); });
}

void StatusTest::waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(400);
    while (!condition()) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "what was waited for did not come";
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void StatusTest::replaceIn(const std::string& name, const std::string& pattern,
                           const std::string& replacement) const {
    const std::string text = folder_.read(name);
    const std::string changed = std::regex_replace(text, std::regex(pattern), replacement);
    ASSERT_NE(text, changed) << name << " has no " << pattern;
    folder_.write(name, changed);
}

void StatusTest::append(const std::string& name, const std::string& lines) const {
    folder_.write(name, folder_.read(name) + lines);
}

}  // namespace rcp::inspect::test
