// Runs the unit tests in a UTF-8 locale and, where the system allows it, with a /tmp of their own,
// so that the temporary log of a fatal error disturbs nobody.
#include "tests/unit/fixture.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <utility>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

#include "diagnostics/svc_debug.h"
#include "launcher/core/install_configuration.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/platform_lock.h"
#include "launcher/hand_off.h"
#include "platform/platform.h"
#include "platform/text.h"
#include "tests/unit/probe.h"

namespace rcp::test {
namespace {

bool privateTmp = false;
std::filesystem::path tmpFolder;

std::filesystem::path makeFolder(const std::string& prefix) {
    std::filesystem::create_directories(UNIT_FOLDER);
    std::string pattern = std::string(UNIT_FOLDER) + "/" + prefix + "XXXXXX";
    return mkdtemp(pattern.data());
}

#ifdef __linux__
void writeText(const char* file, const std::string& text) {
    std::ofstream(file) << text;
}

// A mount namespace of our own, in a user namespace when we are not root.
bool enterNamespace() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user == 0) {
        return unshare(CLONE_NEWNS) == 0;
    }
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    writeText("/proc/self/setgroups", "deny");
    writeText("/proc/self/uid_map", std::to_string(user) + " " + std::to_string(user) + " 1");
    writeText("/proc/self/gid_map", std::to_string(group) + " " + std::to_string(group) + " 1");
    return true;
}

void enterPrivateTmp() {
    tmpFolder = makeFolder("tmp");
    privateTmp = enterNamespace() &&
                 mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                 mount(tmpFolder.c_str(), "/tmp", nullptr, MS_BIND, nullptr) == 0;
}
#else
void enterPrivateTmp() {}
#endif

}  // namespace

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

void resetLauncherState() {
    debug = false;
    userFirstLaunch = false;
    bRestart = false;
    invokeDylib = false;
    mainProcessName.clear();
    setMainProcess(false);
    eConfig = InstallConfiguration::kUnknown;
    launchArgs.clear();
    eclipseSoPath.clear();
    userVMarg = nullptr;
    pid = 0;
}

bool hasPrivateTmp() {
    return privateTmp;
}

// The log is a new one, so that neither a log of another test nor one that is left in /tmp can be
// taken for the statement's.
void logToStderr() {
    static TestFolder* folder = new TestFolder();
    static std::streamoff begin = 0;
    const bool isTracing = std::exchange(debug, false);
    enableLogging(folder->wide());
    debug = isTracing;
    begin = static_cast<std::streamoff>(folder->read("rcplauncher.log").size());
    const auto show = [] {
        std::cerr << folder->read("rcplauncher.log").substr(static_cast<std::size_t>(begin))
                  << std::flush;
        delete std::exchange(folder, nullptr);
    };
    std::atexit(show);
}

}  // namespace rcp::test

int main(int argc, char** argv) {
    setlocale(LC_CTYPE, rcp::platform::kUtf8LocaleName);
    if (const std::optional<int> status = rcp::test::answerProbe(argc, argv)) {
        return *status;
    }
    testing::InitGoogleTest(&argc, argv);
    const bool isDiscovery = testing::GTEST_FLAG(list_tests);
    if (!isDiscovery) {
        rcp::test::enterPrivateTmp();
    }
    const int status = RUN_ALL_TESTS();
    std::error_code ignored;
    if (!rcp::test::tmpFolder.empty()) {
        std::filesystem::remove_all(rcp::test::tmpFolder, ignored);
    }
    return status;
}
