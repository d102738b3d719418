#include "launcher/instance/platform_lock.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/instance/lock_content.h"
#include "launcher/instance/running_provisioning.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "platform/environment.h"
#include "platform/file_lock.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

constexpr int kLongestWaitSeconds = 20;
constexpr int kMostComparisons = 5;
constexpr std::size_t kLongestContent = 256;  // of the lock file, as far as it counts

void traceWithTime(Message<Text> message) {
    if (debug) {
        trace(message, getTimeString());
    }
}

// For programs of the platform's side that look for its process.
void populateMainPidFile(const std::wstring& path, unsigned long processId) {
    UniqueFd file = openRegular(path, O_RDWR);
    if (!file) {
        file = openRegular(path, O_RDWR | O_CREAT | O_TRUNC);
    }
    if (!file) {
        trace(messages.mainFileNotOpened);
        return;
    }
    // What an earlier launch left is written over and then cut off: a file that was emptied first
    // would be sent to the disk as soon as it is closed, while the platform starts.
    const std::string text = std::to_string(processId) + "    ";
    if (!writeFully(file.get(), text) ||
        calls::ftruncate(file.get(), static_cast<off_t>(text.size())) != 0) {
        trace(messages.mainFileNotWritten);
    }
}

}  // namespace

std::wstring getLockFilePath(const std::wstring& workspace) {
    return workspace + paths::kLock;
}

std::wstring getMainPidFilePath(const std::wstring& workspace) {
    return workspace + paths::kMainProcess;
}

std::optional<long> oldPlatform(const Arguments& arguments) {
    if (!isRestart(arguments)) {
        return std::nullopt;
    }
    const Argument* value = optionValue(options::kOldPid, arguments);
    return value == nullptr ? 0 : oldProcessId(value->text);
}

std::optional<PlatformLock> PlatformLock::take(const std::wstring& workspace,
                                               const ProcessMarker& marker,
                                               std::optional<long> oldPlatform) {
    const ForcedTracing forced;
    const std::wstring provisioning = provisioningFileOf(workspace);
    PlatformLock lock(workspace);
    lock.open();
    if (oldPlatform) {
        lock.waitForOldPlatform(*oldPlatform, marker);
    }
    lock.lock();
    traceWithTime(messages.lockTaken);
    if (settleProvisioning(provisioning)) {
        lock.release();
        waitForProvisioning(provisioning);
        return std::nullopt;
    }
    lock.platform_ = lock.runningPlatform(marker);
    if (lock.platform_) {
        trace(messages.isDaemon);
        return lock;
    }
    trace(messages.isMain);
    const std::wstring sid = workspace + paths::kSid;
    if (exists(sid)) {
        deleteFile(sid);
    }
    return lock;
}

void PlatformLock::record(pid_t processId) const {
    if (platform_) {
        return;
    }
    populateMainPidFile(mainPidPath_, static_cast<unsigned long>(processId));
    if (!writeFullyAt(file_.get(), lockContentFor(processId), 0)) {
        report(because(errno), messages.lockNotWritten);
    }
}

void PlatformLock::release() const {
    if (!file_) {
        return;
    }
    if (calls::flock(file_.get(), LOCK_UN) != 0) {
        fatal(because(errno), messages.lockNotReleased);
    }
    traceWithTime(messages.lockReleased);
}

PlatformLock::PlatformLock(const std::wstring& workspace)
    : path_(getLockFilePath(workspace)), mainPidPath_(getMainPidFilePath(workspace)) {}

void PlatformLock::open() {
    const std::string path = toNarrow(path_);
    file_.reset();
    file_.reset(
        calls::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600));
    if (!file_) {
        const int error = errno;
        report(noReason(), messages.lockNotCreated, error);
        fatal(because(error), messages.lockNotFound);
    }
    const int error = calls::fstat(file_.get(), &status_) == 0 ? 0 : errno;
    if (error != 0 || !S_ISREG(status_.st_mode)) {
        fatal(error != 0 ? because(error) : because("not a regular file"), messages.lockNotFound);
    }
}

// Somebody may have removed the workspace while this launcher waited. A lock on the file that is
// gone keeps nobody out, so the one that is there now is locked instead. The path may be a link to a
// file elsewhere, where a network home cannot be locked.
void PlatformLock::lock() {
    for (int comparison = 1;; ++comparison) {
        if (!lockExclusively(file_.get())) {
            fatal(because(errno), messages.lockFailed);
        }
        if (const auto status = isLedTo(status_, toNarrow(path_))) {
            status_ = *status;
            return;
        }
        if (comparison == kMostComparisons) {
            fatal(noReason(), messages.lockReplacedEachTime, path_);
        }
        open();
    }
}

// Whether somebody may have written into the file since; without the lock its status is a new one each time.
bool PlatformLock::isThere() {
    if (calls::fstat(file_.get(), &status_) != 0) {
        status_.st_size = kLongestContent;
    }
    return exists(path_);
}

// A file that cannot be read must not count as empty: that would make this launcher the main one
// beside a running platform.
std::string PlatformLock::content() const {
    const auto size = static_cast<std::size_t>(std::max(status_.st_size, off_t{1}));
    std::optional<std::string> content =
        readBeginning(file_.get(), std::min(size, kLongestContent));
    if (!content) {
        fatal(because(errno), messages.lockNotRead, path_);
    }
    return *std::move(content);
}

// The recorded process, if it is alive and the platform.
std::optional<long> PlatformLock::runningPlatform(const ProcessMarker& marker) const {
    report(noReason(), messages.lockFileFound);
    const LockContent recorded = parseLockContent(content());
    switch (recorded.kind) {
        case LockContent::kNothing:
            report(noReason(), messages.lockFileEmpty);
            return std::nullopt;
        case LockContent::kOther:
            fatal(noReason(), messages.lockNotRead, path_);
        case LockContent::kNumber:
            break;
    }
    return isPlatformProcess(recorded.number, marker) ? std::optional(recorded.number)
                                                      : std::nullopt;
}

// On a restart the old platform is still shutting down.
void PlatformLock::waitForOldPlatform(long oldPlatform, const ProcessMarker& marker) {
    sysSleep(1);
    for (int waited = 0; isThere() && runningPlatform(marker) == oldPlatform;) {
        tellWait(Wait::kOldPlatform, path_);
        sysSleep(1);
        if (++waited == kLongestWaitSeconds) {
            giveOldPlatformUp(oldPlatform);
            return;
        }
    }
}

// The old platform has not ended in time: its id is cleared, so that this launcher becomes the main
// one. Under the lock and only while the id is still the old one's: another launcher may have
// recorded its own platform meanwhile.
void PlatformLock::giveOldPlatformUp(long oldPlatform) {
    report(noReason(), messages.oldPlatformStillRuns);
    lock();
    const LockContent recorded = parseLockContent(content());
    if (recorded.kind == LockContent::kNumber && recorded.number == oldPlatform &&
        !writeFullyAt(file_.get(), kClearedLockContent, 0)) {
        report(because(errno), messages.lockNotInvalidated);
    }
}

}  // namespace rcp
