// An installation with the stand-in platform, a user, and what "rcpinspect status" says about them.
#pragma once

#include "inspect/json/json.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace rcp::inspect::test {

using Words = std::vector<std::string>;
using Json = nlohmann::json;
using rcp::test::seen;

/// A pipe that no started program keeps open.
std::array<int, 2> makePipe();

/// A started program whose output is read through a pipe; killed when the object goes.
class Program {
  public:
    Program(const Words& words, const Words& environment);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    Program(Program&&) = delete;
    Program& operator=(Program&&) = delete;
    ~Program();

    [[nodiscard]] pid_t id() const { return id_; }
    /// The next line without its end; empty at the end of the output.
    std::string line();
    std::string rest();
    int wait();

  private:
    pid_t id_ = -1;
    int output_ = -1;
};

class StatusTest : public ::testing::Test {
  protected:
    StatusTest() { makeInstallation({}); }

    void makeInstallation(const Words& options);

    [[nodiscard]] std::string installation() const { return folder_.narrow("client"); }
    [[nodiscard]] std::string launcher() const { return installation() + "/rcp/rcplauncher"; }
    [[nodiscard]] Words environment() const;
    /// A path in the workspace, for folder_.
    static std::string area(const std::string& name) { return "home/workspace/ann/" + name; }

    [[nodiscard]] Words words(const Words& arguments, const Words& options = {}) const;
    [[nodiscard]] std::string text(const Words& arguments = {}) const;
    [[nodiscard]] Json status(const Words& arguments = {}) const;

    [[nodiscard]] Words launchWords(Words arguments) const;
    /// One launch to its end, that of the process which watches its hand-off included. The
    /// platform's report tells what was started.
    int launch(const Words& arguments = {}) const;
    [[nodiscard]] bool hasStarted(const std::string& argument) const;
    /// The platform of this launch stays, until the test ends, and is recorded.
    void startPlatform(std::unique_ptr<Program>& platform) const;
    static void waitUntil(const std::function<bool()>& condition);

    /// `pattern` becomes `replacement` in a file of the folder.
    void replaceIn(const std::string& name, const std::string& pattern,
                   const std::string& replacement) const;
    void append(const std::string& name, const std::string& lines) const;
    static constexpr const char* kProperties = "client/rcp/rcplauncher.properties";

    rcp::test::TestFolder folder_;
};

}  // namespace rcp::inspect::test
