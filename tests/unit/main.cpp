// Runs the unit tests in a UTF-8 locale and, where the system allows it, shut in, so that nothing
// they do and no temporary log of a fatal error disturbs anybody.
#include "diagnostics/svc_debug.h"
#include "platform/platform.h"
#include "platform/text.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/paths.h"
#include "tests/unit/probe.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

namespace rcp::test {

TestFolder::TestFolder() : path_(makeFolder("test")) {}

TestFolder::~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TestFolder::narrow(const std::string& name) const {
    return name.empty() ? path_.string() : (path_ / name).string();
}

std::wstring TestFolder::wide(const std::string& name) const {
    return toWide(narrow(name));
}

void TestFolder::write(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    ASSERT_TRUE(stream.good()) << file;
}

std::string TestFolder::read(const std::string& name) const {
    std::ifstream stream(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool TestFolder::has(const std::string& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(path_ / name));
}

FileSizeLimit::FileSizeLimit(rlim_t bytes) {
    (void)signal(SIGXFSZ, SIG_IGN);
    (void)getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit = {bytes, former_.rlim_max};
    (void)setrlimit(RLIMIT_FSIZE, &limit);
}

bool hasPrivateTmp() {
    return hasOwnTmp();
}

LaunchEnded endOfLaunch(const std::function<void()>& work) {
    try {
        work();
    } catch (const LaunchEnded& end) {
        return end;
    }
    ADD_FAILURE() << "the launch goes on";
    return {};
}

std::string fatalRecordOf(const std::function<void()>& work) {
    const LaunchEnded end = endOfLaunch(work);
    EXPECT_EQ(end.status, 255);
    return end.record + "\n";
}

int statusOf(const std::function<void()>& work) {
    try {
        work();
        return 0;
    } catch (const LaunchEnded& end) {
        return endedWith(end.status);
    }
}

}  // namespace rcp::test

int main(int argc, char** argv) {
    setlocale(LC_CTYPE, rcp::platform::kUtf8LocaleName);
    if (const std::optional<int> status = rcp::test::answerProbe(argc, argv)) {
        return *status;
    }
    std::vector<char*> words(argv, argv + argc + 1);
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        rcp::test::enterSandbox(UNIT_FOLDER);
        rcp::test::startWhereSeen(words.data());
    }
    return RUN_ALL_TESTS();
}
