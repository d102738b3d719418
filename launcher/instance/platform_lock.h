// The platform lock file: which launcher of a workspace becomes the platform.
//
//   launcher A                       launcher B
//   locks ".rcp.lock"                blocks in flock
//   no live id in it: main           .
//   prepares, forks                  .
//     parent becomes the platform    .
//     child writes the parent's id   .
//     child sees the parent become   .
//     the platform, unlocks -------> locked; id is alive and the platform: daemon
//
// The lock is flock(2) on one open file description, which parent and child share. Other kinds of
// lock would be dropped as soon as anything in the process closed another descriptor of the file.
// The parent gives its descriptor up before the hand-off (close-on-exec, or closed before the
// library runs): from then on only the child holds the lock, so a child that dies early cannot keep
// the next launcher waiting for the platform's whole life.
//
// While a launcher has become the provisioning program, nobody decides: running_provisioning.h.
//
// The id is read and written at offset 0 by position; the two processes share the stream offset
// too.
#pragma once

#include "base/unique_fd.h"
#include "launcher/inputs/arguments.h"
#include "launcher/instance/process_check.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>
#include <string>

namespace rcp {

/// The files of a workspace's lock.
std::wstring getLockFilePath(const std::wstring& workspace);
std::wstring getMainPidFilePath(const std::wstring& workspace);

/// The id behind "-rcp_old_pid" of a launch that restarts a platform, 0 without a number there; none for
/// other launches.
std::optional<long> oldPlatform(const Arguments& arguments);

/// The lock of a workspace, from the moment when this launcher holds it, and what was decided under it: it
/// is the main launcher, or a platform runs already.
class PlatformLock {
  public:
    /// Opens the lock file of `workspace`, waits for the old platform of a restart to end (about 20
    /// seconds at most), takes the lock, and decides: the main launcher deletes the file ".sid", which an
    /// earlier platform left. None when the workspace was being provisioned: that has ended, and the
    /// launch has to begin as if it had just been started, because what it has read may be out of date.
    /// Failures end the launch.
    [[nodiscard]] static std::optional<PlatformLock> take(const std::wstring& workspace,
                                                          const ProcessMarker& marker,
                                                          std::optional<long> oldPlatform);

    /// The process of the platform that runs already; none in the main launcher, whose process becomes it.
    [[nodiscard]] const std::optional<long>& platform() const { return platform_; }

    /// Records the platform's process id in the lock file and in ".rcp.main"; only in the main launcher.
    void record(pid_t processId) const;
    /// Does nothing when this process has left the lock to its child.
    void release() const;
    /// Gives this process's descriptor of the lock file up without releasing the lock for the child that
    /// shares it.
    void leaveToChild() { file_.reset(); }

  private:
    explicit PlatformLock(const std::wstring& workspace);

    void open();
    void lock();
    [[nodiscard]] bool isThere();
    [[nodiscard]] std::string content() const;
    [[nodiscard]] std::optional<long> runningPlatform(const ProcessMarker& marker) const;
    void waitForOldPlatform(long oldPlatform, const ProcessMarker& marker);
    void giveOldPlatformUp(long oldPlatform);

    std::wstring path_;
    std::wstring mainPidPath_;
    UniqueFd file_;
    struct stat status_ {};  // which file it is, and how long
    std::optional<long> platform_;
};

}  // namespace rcp
