// What unit tests share: a folder of their own, the launcher's process-wide state at its start, and
// a private /tmp where the system allows one.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace rcp::test {

/// A folder that is made for one test and removed with everything in it.
class TestFolder {
  public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    TestFolder(TestFolder&&) = delete;
    TestFolder& operator=(TestFolder&&) = delete;
    ~TestFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// The path of `name` in the folder.
    [[nodiscard]] std::wstring wide(const std::string& name = {}) const;
    [[nodiscard]] std::string narrow(const std::string& name = {}) const;
    /// Writes a file, making the directories on its way.
    void write(const std::string& name, const std::string& content) const;
    [[nodiscard]] std::string read(const std::string& name) const;
    [[nodiscard]] bool has(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

/// Every process-wide flag of the launcher as at its start.
void resetLauncherState();

/// Whether this process has a /tmp of its own; the temporary log of a fatal error lands there.
bool hasPrivateTmp();

/// Fixture with a folder and fresh launcher state.
class LauncherTest : public ::testing::Test {
  protected:
    LauncherTest() { resetLauncherState(); }
    TestFolder folder_;
};

}  // namespace rcp::test

/// The statement must end the process with status 255 and leave a record that matches `record`.
#define EXPECT_FATAL(statement, record) \
    EXPECT_EXIT(                        \
        {                               \
            ::rcp::test::logToStderr(); \
            statement;                  \
        },                              \
        ::testing::ExitedWithCode(255), record)

namespace rcp::test {
/// From now on log records go to the standard error stream, at exit: for EXPECT_FATAL.
void logToStderr();
}  // namespace rcp::test
