#include "inspect/command_line.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

int runWith(std::vector<std::string> words) {
    words.insert(words.begin(), "rcpinspect");
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    return run(static_cast<int>(words.size()), argv.data());
}

TEST(InspectCommandLine, AnUnknownCommandIsWrongUse) {
    EXPECT_EQ(runWith({"nonsense"}), 64);
}

TEST(InspectCommandLine, AnInstallationWithoutLauncherIsWrongUse) {
    EXPECT_EQ(runWith({"explain", "--install", "/nowhere"}), 64);
}

}  // namespace
}  // namespace rcp::inspect
