#include "platform/working_directory.h"

#include "base/system_calls.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <string.h>

#include <filesystem>
#include <string>

namespace rcp {
namespace {

// What the system answers for the working directory; longer texts do not fit the first buffer.
const char* answer = "";

SystemCalls answering(const char* text) {
    answer = text;
    SystemCalls calls = systemCalls;
    calls.getcwd = [](char* buffer, std::size_t size) -> char* {
        if (strlen(answer) >= size) {
            errno = ERANGE;
            return nullptr;
        }
        return strcpy(buffer, answer);
    };
    return calls;
}

TEST(WorkingDirectory, IsAbsoluteAndOfAnyLength) {
    EXPECT_EQ(platform::workingDirectory(), std::filesystem::current_path().string());
    const std::string path = "/" + std::string(10'000, 'x');
    const InstalledCalls installed(answering(path.c_str()));
    EXPECT_EQ(platform::workingDirectory(), path);
}

TEST(WorkingDirectory, OneOutsideTheProcessesRootIsNone) {
    const InstalledCalls installed(answering("(unreachable)/home"));
    errno = 0;
    EXPECT_EQ(platform::workingDirectory(), "");
    EXPECT_EQ(errno, ENOENT);
}

TEST(WorkingDirectory, FailureLeavesItsReason) {
    SystemCalls failing = systemCalls;
    failing.getcwd = [](char*, std::size_t) -> char* {
        errno = EACCES;
        return nullptr;
    };
    const InstalledCalls installed(failing);
    EXPECT_EQ(platform::workingDirectory(), "");
    EXPECT_EQ(errno, EACCES);
}

}  // namespace
}  // namespace rcp
