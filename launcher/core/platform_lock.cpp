#include "launcher/core/platform_lock.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "diagnostics/svc_debug.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/lock_content.h"
#include "launcher/core/process_check.h"
#include "launcher/core/running_provisioning.h"
#include "platform/environment.h"
#include "platform/file_lock.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <string_view>
#include <utility>

namespace rcp {

long pid = 0;

namespace {

constexpr int kLongestWaitSeconds = 20;
constexpr int kMostComparisons = 5;
constexpr std::size_t kLongestContent = 256;  // of the lock file, as far as it counts

std::wstring lockFilePath;
std::wstring pipeFilePath;
std::wstring mainPidFilePath;
std::wstring provisioningFilePath;
std::wstring pipename;
bool bDirtyShutdown = false;
UniqueFd lockFILE;  // open from locateLockFile until closeLockFile

// A file that cannot be read must not count as empty: that would make this launcher the main one
// beside a running platform.
std::string contentOfLockFile() {
    std::optional<std::string> content = readBeginning(lockFILE.get(), kLongestContent);
    if (!content) {
        fatal(because(errno), "ZYPRA0092E: Error reading platform lock file. (%ls)", lockFilePath);
    }
    return *std::move(content);
}

// Somebody may have removed the workspace while this launcher waited. A lock on the file that is
// gone keeps nobody out, so the one that is there now is locked instead. The path may be a link to a
// file elsewhere, where a network home cannot be locked.
void takeLock() {
    for (int comparison = 1;; ++comparison) {
        if (!lockExclusively(lockFILE.get())) {
            fatal(because(errno), "ZYPRA0053E: Error locking platform lock file. ");
        }
        if (isLedTo(lockFILE.get(), toNarrow(lockFilePath))) {
            return;
        }
        if (comparison == kMostComparisons) {
            fatal(noReason(),
                  "ZYPRA0053E: Error locking platform lock file. (%ls is another one each time.)",
                  lockFilePath);
        }
        createAndOpenLockFile();
    }
}

void traceWithTime(std::wstring_view format) {
    if (debug) {
        std::wstring time;
        getTimeString(time);
        SvcDebugOutW(format, time);
    }
}

// The old platform has not ended in time: its id is cleared, so that this launcher becomes the main
// one. Under the lock and only while the id is still the old one's: another launcher may have
// recorded its own platform meanwhile.
void giveOldPlatformUp(long oldPid) {
    report(noReason(),
           "ZYPRA0013E: Existing platform has not shutdown within allotted time. Invalidating the "
           "lockfile for new launch.");
    takeLock();
    const LockContent content = parseLockContent(contentOfLockFile());
    if (content.kind == LockContent::kNumber && content.number == oldPid) {
        invalidateLockFile();
    }
}

// On a restart the old platform is still shutting down.
void waitForOldPlatform(const Arguments& arguments, const std::wstring& processMarker) {
    const std::wstring* value = optionValue(L"-rcp_old_pid", arguments);
    const long oldPid = value == nullptr ? 0 : oldProcessId(*value);
    sysSleep(1);
    for (int waited = 0; isMainProcessRunning(processMarker) && pid == oldPid;) {
        sysSleep(1);
        if (++waited == kLongestWaitSeconds) {
            giveOldPlatformUp(oldPid);
            return;
        }
    }
}

}  // namespace

Launch locateLockFile(const Arguments& arguments, const std::wstring& workspace,
                      const std::wstring& processMarker) {
    const ForcedTracing forced;
    lockFilePath = workspace + L"/.rcp.lock";
    pipeFilePath = workspace + L"/.pipe";
    mainPidFilePath = workspace + L"/.rcp.main";
    provisioningFilePath = provisioningFileOf(workspace);
    createAndOpenLockFile();
    if (isRestart(arguments)) {
        waitForOldPlatform(arguments, processMarker);
    }
    return lockLockFile(workspace + L"/.sid", processMarker);
}

void createAndOpenLockFile() {
    const std::string path = toNarrow(lockFilePath);
    closeLockFile();
    lockFILE.reset(
        calls::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600));
    if (!lockFILE) {
        const int error = errno;
        report(noReason(), "ZYPRA0199E: CreateLockFile failed. errno=%d", error);
        fatal(because(error), "ZYPRA0054E: Error locating platform lock file");
    }
    struct stat status {};
    const int error = calls::fstat(lockFILE.get(), &status) == 0 ? 0 : errno;
    if (error != 0 || !S_ISREG(status.st_mode)) {
        fatal(error != 0 ? because(error) : because("not a regular file"),
              "ZYPRA0054E: Error locating platform lock file");
    }
}

Launch lockLockFile(const std::wstring& sidPath, const std::wstring& processMarker) {
    takeLock();
    traceWithTime(L"ZYPRA0303I: lock file captured @ %s");
    if (runningProvisioning(provisioningFilePath) != 0) {
        unlockLockFile();
        waitForProvisioning(provisioningFilePath);
        return Launch::kBeginsAnew;
    }
    removeEndedProvisioning(provisioningFilePath);
    if (isMainProcessRunning(processMarker)) {
        SvcDebugOutA("ZYPRA0305I: We are daemon process");
        return Launch::kGoesOn;
    }
    SvcDebugOutA("ZYPRA0304I: We are main process");
    setMainProcess(true);
    if (exists(sidPath)) {
        deleteFile(sidPath);
    }
    return Launch::kGoesOn;
}

void unlockLockFile() {
    if (!lockFILE) {
        return;
    }
    if (calls::flock(lockFILE.get(), LOCK_UN) != 0) {
        fatal(because(errno), "ZYPRA0070E: Error unlocking platform lock file. ");
    }
    traceWithTime(L"ZYPRA0306I: lock file released @ %s");
}

void closeLockFile() {
    lockFILE.reset();
}

void invalidateLockFile() {
    if (!writeFullyAt(lockFILE.get(), kClearedLockContent, 0)) {
        report(because(errno), "ZYPRA0052E: Unable to invalidate platform lock file");
    }
}

bool isMainProcessRunning(const std::wstring& processMarker) {
    if (!lockFILE || !exists(lockFilePath)) {
        return false;
    }
    report(noReason(), "ZYPRA0090E: Existing platform lock file found - checking validity.");
    const LockContent content = parseLockContent(contentOfLockFile());
    switch (content.kind) {
        case LockContent::kNothing:
            report(noReason(), "ZYPRA0091E: No data in the platform lock file.");
            return false;
        case LockContent::kOther:
            fatal(noReason(), "ZYPRA0092E: Error reading platform lock file. (%ls)", lockFilePath);
        case LockContent::kNumber:
            break;
    }
    pid = content.number;
    return isPlatformProcess(pid, processMarker);
}

void populateLockFile(int processId) {
    if (!isMainProcess()) {
        return;
    }
    populateMainPidFile(static_cast<unsigned long>(processId));
    if (!writeFullyAt(lockFILE.get(), lockContentFor(processId), 0)) {
        report(because(errno), "ZYPRA0051E: Unable to write to platform lock file");
    }
}

void populateMainPidFile(unsigned long processId) {
    Stream stream;
    open_file(stream, mainPidFilePath, L"r+");
    if (!stream) {
        open_file(stream, mainPidFilePath, L"w+");
    }
    if (!stream) {
        SvcDebugOutA("ZYPRA00XXI: Unable to open rcp.main file");
        return;
    }
    // What an earlier launch left is written over and then cut off: a file that was emptied first
    // would be sent to the disk as soon as it is closed, while the platform starts.
    const int written = fprintf(stream.get(), "%lu    ", processId);
    if (written < 0 || fflush(stream.get()) != 0 ||
        calls::ftruncate(fileno(stream.get()), written) != 0) {
        SvcDebugOutA("ZYPRA00XXI: Unable to write pid to rcp.main file");
    }
}

bool getPipeName(std::wstring& name) {
    Stream stream;
    if (exists(pipeFilePath)) {
        open_file(stream, pipeFilePath, L"r");
    }
    if (!stream || readFile(*stream, kPropertyLineFormat, pipename) != 1) {
        return false;
    }
    name = pipename;
    return true;
}

const std::wstring& getLockFilePath() {
    return lockFilePath;
}
const std::wstring& getPipeFilePath() {
    return pipeFilePath;
}
const std::wstring& getMainPidFilePath() {
    return mainPidFilePath;
}
const std::wstring& getProvisioningFilePath() {
    return provisioningFilePath;
}

bool isDirtyShutdown() {
    return bDirtyShutdown;
}

}  // namespace rcp
