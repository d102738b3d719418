#include "diagnostics/log_file.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/paths.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace rcp {
namespace {

constexpr wchar_t kTemporaryFolder[] = L"/tmp";

// The log file's descriptor, -1 until enableLogging succeeds. Nobody owns it: it is close-on-exec and goes
// with the process, for the last record may come from anywhere.
constinit int logFILE = -1;

// Every record written while no log file is open and, in a log that refuses one (its disk is full),
// all from that one on, in order.
std::string& queue() {
    static std::string logque;
    return logque;
}

std::wstring withSlashes(std::wstring path) {
    std::replace(path.begin(), path.end(), L'\\', L'/');
    return path;
}

// A path in the character set of the process's locale, as every other path of the launcher. Empty
// when it cannot be converted; opening it then fails.
std::string pathBytes(const std::wstring& path) {
    const std::size_t length = std::wcstombs(nullptr, path.c_str(), 0);
    if (length == static_cast<std::size_t>(-1)) {
        return {};
    }
    std::string bytes(length, '\0');
    (void)std::wcstombs(bytes.data(), path.c_str(), length);
    return bytes;
}

// A folder's log is a file of the user's own area: a pipe in its place must not stop the launch,
// hence non-blocking.
constexpr int kLogFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

// Whether the open file is one that this launcher may write: in the user's own folder any regular
// file, in the temporary folder only one that is this user's alone. Somebody could have planted a
// file of his own there, or a second name of one of ours.
bool mayWrite(int descriptor, bool inTemporaryFolder) {
    struct stat status {};
    if (calls::fstat(descriptor, &status) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    if (inTemporaryFolder && (status.st_uid != geteuid() || status.st_nlink != 1)) {
        errno = EPERM;
        return false;
    }
    // One of an earlier launch may be readable for others.
    return !inTemporaryFolder || calls::fchmod(descriptor, 0600) == 0;
}

UniqueFd openLog(const char* path, bool inTemporaryFolder, int extraFlags) {
    const int flags = kLogFlags | extraFlags | (inTemporaryFolder ? O_NOFOLLOW : 0);
    const mode_t mode = inTemporaryFolder ? 0600 : 0666;
    UniqueFd opened(calls::open(path, flags, mode));
    return opened && mayWrite(opened.get(), inTemporaryFolder) ? std::move(opened) : UniqueFd();
}

// The log becomes `text`. What an earlier launch left is written over and then cut off: a file that
// was emptied first would be sent to the disk as soon as it is closed, while the platform starts.
// Later records are appended, so that a second launcher that does this leaves no hole of zeros
// before the first one's next record. False when the file system refuses some of the text.
bool startLog(UniqueFd file, std::string_view text) {
    const int descriptor = file.release();
    const bool isWritten = writeFully(descriptor, text);
    const off_t end = isWritten ? static_cast<off_t>(text.size()) : lseek(descriptor, 0, SEEK_CUR);
    (void)calls::ftruncate(descriptor, end);
    fcntl(descriptor, F_SETFL, O_APPEND | O_NONBLOCK);
    logFILE = descriptor;
    return isWritten;
}

// A traced launch keeps its log: the name carries the start time to the millisecond, and a launch
// that meets an existing name waits a second for the next one.
UniqueFd openFreshLog(const std::wstring& folder, bool inTemporaryFolder, std::wstring& path) {
    for (;;) {
        path = folder;
        path += paths::kTracedLog;
        path += getTimeString();
        path += paths::kTracedLogEnding;
        path = withSlashes(path);
        UniqueFd opened = openLog(pathBytes(path).c_str(), inTemporaryFolder, O_EXCL);
        if (opened || errno != EEXIST) {
            return opened;
        }
        sleep(1);
    }
}

bool enableLoggingIn(const std::wstring& folder, bool inTemporaryFolder) {
    std::wstring path = withSlashes(folder + paths::kLog);
    UniqueFd file = isTracingAsked() ? openFreshLog(folder, inTemporaryFolder, path)
                                     : openLog(pathBytes(path).c_str(), inTemporaryFolder, 0);
    if (!file) {
        report(because(errno), messages.logNotOpened, path);
        return false;
    }
    if (startLog(std::move(file), queue() + '\n')) {
        queue().clear();
    }
    return true;
}

}  // namespace

void writeToLog(std::string_view text) {
    const bool isWritten = logFILE >= 0 && writeFully(logFILE, text);
    if (!isWritten || !queue().empty()) {
        queue() += text;
    }
}

void writeLastWords(std::string_view text) {
    if (logFILE >= 0 && writeFully(logFILE, text)) {
        return;
    }
    UniqueFd file = openLog(paths::kTemporaryLog, true, 0);
    if (file) {
        (void)startLog(std::move(file), text);
    }
}

bool logIsOpen() {
    return logFILE >= 0;
}

bool logHasAll() {
    return logIsOpen() && queue().empty();
}

const std::string& logQueue() {
    return queue();
}

bool enableLogging(const std::wstring& folder) {
    return enableLoggingIn(folder, false);
}

bool dumpLogToTempLocation() {
    return enableLoggingIn(kTemporaryFolder, true);
}

void deleteTempLog() {
    const std::string path = pathBytes(std::wstring(kTemporaryFolder) + paths::kLog);
    struct stat status {};
    if (calls::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == geteuid()) {
        calls::unlink(path.c_str());
    }
}

}  // namespace rcp
