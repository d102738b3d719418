// What unit tests share: a folder of their own, a clock of their own and a private /tmp where the system
// allows one.
#pragma once

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <functional>
#include <string>
#include <type_traits>

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

/// No file of this process grows beyond the limit meanwhile: writing fails as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes);
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;
    ~FileSizeLimit() { (void)setrlimit(RLIMIT_FSIZE, &former_); }

  private:
    rlimit former_{};
};

/// The calls as they are, but sleeping is `sleep`: the clock of a test.
inline SystemCalls sleepingLike(unsigned (*sleep)(unsigned seconds)) {
    SystemCalls calls = systemCalls;
    calls.sleep = sleep;
    return calls;
}

/// Whether this process has a /tmp of its own; the temporary log of a fatal error lands there.
bool hasPrivateTmp();

/// Fixture with a folder, and tracing off.
class LauncherTest : public ::testing::Test {
  protected:
    LauncherTest() { debug = false; }
    TestFolder folder_;
};

}  // namespace rcp::test

namespace rcp::test {

/// How `work` ends the launch; fails the test when it does not.
LaunchEnded endOfLaunch(const std::function<void()>& work);
/// The record with which `work` ends the launch, as a line; fails the test when it does not end with 255.
std::string fatalRecordOf(const std::function<void()>& work);
/// The status that a process ends with which does `work` and no more: for child processes.
int statusOf(const std::function<void()>& work);

/// A text is a regular expression that the record contains; anything else is the matcher itself.
template <typename Expected>
auto recordMatcher(Expected expected) {
    if constexpr (std::is_convertible_v<Expected, std::string>) {
        return ::testing::ContainsRegex(std::string(expected));
    } else {
        return expected;
    }
}

}  // namespace rcp::test

/// The statement must end the launch with status 255 and a record that matches `expected`.
#define EXPECT_FATAL(statement, expected)                       \
    EXPECT_THAT(::rcp::test::fatalRecordOf([&] { statement; }), \
                ::rcp::test::recordMatcher(expected))
