// What tests of the platform lock share: a workspace, processes whose listing is the platform's and
// a look at the lock from outside.
#pragma once

#include "launcher/instance/platform_lock.h"
#include "tests/unit/child_process.h"
#include "tests/unit/records.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

namespace rcp::test {

/// The workspace is the test's folder. The process check looks for the beginning of this program's own name, so that
/// the test's forked processes count as platforms (the test itself, like a launcher, never does).
class LockTest : public LauncherTest {
  protected:
    const ProcessMarker kMarker{
        .mainProcessName = L"unit_", .platformExecutable = {}, .invokeDylib = true};

    /// The id of a process that counts as the platform and lives as long as the test.
    [[nodiscard]] pid_t platformId() {
        if (!platform_) {
            platform_ = std::make_unique<ChildProcess>([] { return pause(); });
        }
        return platform_->pid();
    }

    /// Takes the lock, for a launch in place of an older one. False when the launch has to begin anew.
    bool take(std::optional<long> oldPlatform = std::nullopt) {
        lock_.reset();
        lock_ = rcp::PlatformLock::take(folder_.wide(), kMarker, oldPlatform);
        return lock_.has_value();
    }
    [[nodiscard]] bool isMain() const { return lock_ && !lock_->platform(); }
    [[nodiscard]] std::optional<long> platform() const {
        return lock_ ? lock_->platform() : std::nullopt;
    }
    void writeLock(const std::string& content) const { folder_.write(".rcp.lock", content); }
    [[nodiscard]] std::string lockFile() const { return folder_.read(".rcp.lock"); }

    /// Whether somebody holds the lock, as another process sees it.
    [[nodiscard]] bool isLocked() const {
        const int file = open(folder_.narrow(".rcp.lock").c_str(), O_RDWR | O_CLOEXEC);
        const bool isFree = flock(file, LOCK_EX | LOCK_NB) == 0;
        close(file);
        return !isFree;
    }
    /// This process's descriptor of the lock file; -1 without one.
    [[nodiscard]] int descriptor() const {
        struct stat wanted {};
        stat(folder_.narrow(".rcp.lock").c_str(), &wanted);
        for (int file = 0; file < 1024; ++file) {
            struct stat status {};
            if (fstat(file, &status) == 0 && status.st_ino == wanted.st_ino &&
                status.st_dev == wanted.st_dev) {
                return file;
            }
        }
        return -1;
    }

    std::optional<rcp::PlatformLock> lock_;

  private:
    std::unique_ptr<ChildProcess> platform_;
};

}  // namespace rcp::test
