// What tests of the user's area share: an installation's core files, a configuration directory and
// surroundings in which file operations fail.
#pragma once

#include "launcher/inputs/launch_inputs.h"
#include "tests/unit/records.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace rcp::test {

inline PropertyList listOf(
    std::initializer_list<std::pair<const wchar_t*, std::wstring>> properties) {
    PropertyList list;
    for (const auto& [key, value] : properties) {
        list.append({key, value, {}});
    }
    return list;
}

/// From now on this process has to keep to the permissions of files.
inline void becomeOrdinaryUser() {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
        _exit(1);
    }
}

class UserAreaTest : public LauncherTest {
  protected:
    UserAreaTest() {
        inputs_.traits.eConfig = InstallConfiguration::kUser;
        inputs_.workspace = workspace();
        inputs_.configuration = configuration();
        for (const char* directory : {"base", "ws/.config"}) {
            std::filesystem::create_directories(folder_.path() / directory);
        }
    }

    [[nodiscard]] std::wstring base() const { return folder_.wide("base"); }
    [[nodiscard]] std::wstring workspace() const { return folder_.wide("ws"); }
    [[nodiscard]] std::wstring configuration() const { return folder_.wide("ws/.config"); }
    void writeCore(const std::string& name, const std::string& text) const {
        folder_.write("base/config/user/" + name, text);
    }
    [[nodiscard]] std::string own(const std::string& name) const {
        return folder_.read("ws/.config/" + name);
    }
    [[nodiscard]] bool hasOwn(const std::string& name) const {
        return folder_.has("ws/.config/" + name);
    }
    [[nodiscard]] LaunchInputs with(const PropertyList& properties) const {
        LaunchInputs inputs = inputs_;
        inputs.properties = properties;
        return inputs;
    }
    /// Whether a file of the test's has a name that was meant for a moment only.
    [[nodiscard]] bool hasTemporaryName() const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
            const std::string extension = entry.path().extension();
            if (extension == ".tmp" || extension == ".new") {
                return true;
            }
        }
        return false;
    }
    /// Lets a directory of the test's take no new entries and give none away.
    void close(const std::string& directory) const {
        (void)chmod(folder_.narrow().c_str(), 0755);
        (void)chmod(folder_.narrow(directory).c_str(), 0555);
    }

    LaunchInputs inputs_;
};

}  // namespace rcp::test

/// The statement, run by an ordinary user, must end the process and leave `record` in a log that
/// was opened before.
#define EXPECT_FATAL_AS_ORDINARY_USER(statement, record)                     \
    do {                                                                     \
        std::filesystem::create_directories(folder_.path() / "log");         \
        EXPECT_EXIT(                                                         \
            {                                                                \
                enableLogging(folder_.wide("log"));                          \
                becomeOrdinaryUser();                                        \
                _exit(::rcp::test::statusOf([&] { statement; }));            \
            },                                                               \
            ::testing::ExitedWithCode(255), "");                             \
        const std::string log_ = folder_.read("log/rcplauncher.log");        \
        EXPECT_NE(log_.find(record), std::string::npos) << "log:\n" << log_; \
    } while (false)
