#include "diagnostics/log_file.h"

#include "diagnostics/svc_debug.h"
#include "system/system_calls.h"

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
constexpr wchar_t kLogName[] = L"/rcplauncher.log";

// The log file's descriptor, -1 until enableLogging succeeds. The launcher never closes it: it is
// close-on-exec and goes with the process.
constinit int logFILE = -1;

// Every record written while no log file is open and, in a log that refuses one (its disk is full),
// all from that one on, in order.
std::string& queue() {
    static std::string logque;
    return logque;
}

// False when the file system refuses some of it.
bool writeFully(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
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
    if (fstat(descriptor, &status) != 0) {
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
    return !inTemporaryFolder || fchmod(descriptor, 0600) == 0;
}

int openLog(const char* path, bool inTemporaryFolder, int extraFlags) {
    const int flags = kLogFlags | extraFlags | (inTemporaryFolder ? O_NOFOLLOW : 0);
    const mode_t mode = inTemporaryFolder ? 0600 : 0666;
    const int descriptor = calls::open(path, flags, mode);
    if (descriptor < 0) {
        return -1;
    }
    if (!mayWrite(descriptor, inTemporaryFolder)) {
        const int savedErrno = errno;
        close(descriptor);
        errno = savedErrno;
        return -1;
    }
    return descriptor;
}

// The log becomes `text`. What an earlier launch left is written over and then cut off: a file that
// was emptied first would be sent to the disk as soon as it is closed, while the platform starts.
// Later records are appended, so that a second launcher that does this leaves no hole of zeros
// before the first one's next record. False when the file system refuses some of the text.
bool startLog(int descriptor, std::string_view text) {
    const bool isWritten = writeFully(descriptor, text);
    (void)ftruncate(descriptor, lseek(descriptor, 0, SEEK_CUR));
    fcntl(descriptor, F_SETFL, O_APPEND | O_NONBLOCK);
    logFILE = descriptor;
    return isWritten;
}

// A traced launch keeps its log: the name carries the start time to the millisecond, and a launch
// that meets an existing name waits a second for the next one.
int openFreshLog(const std::wstring& folder, bool inTemporaryFolder, std::wstring& path) {
    for (;;) {
        std::wstring time;
        getTimeString(time);
        path = folder;
        path += L"/rcplauncher_";
        path += time;
        path += L".log";
        path = withSlashes(path);
        const int descriptor = openLog(pathBytes(path).c_str(), inTemporaryFolder, O_EXCL);
        if (descriptor >= 0 || errno != EEXIST) {
            return descriptor;
        }
        sleep(1);
    }
}

bool enableLoggingIn(const std::wstring& folder, bool inTemporaryFolder) {
    std::wstring path = withSlashes(folder + kLogName);
    const int descriptor = isTracingAsked()
                               ? openFreshLog(folder, inTemporaryFolder, path)
                               : openLog(pathBytes(path).c_str(), inTemporaryFolder, 0);
    if (descriptor < 0) {
        report(because(errno), "ZYPRA0019E: Could not open %ls for writing!", path);
        return false;
    }
    if (startLog(descriptor, queue() + '\n')) {
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
    const int descriptor = openLog("/tmp/rcplauncher.log", true, 0);
    if (descriptor >= 0) {
        (void)startLog(descriptor, text);
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
    const std::string path = pathBytes(std::wstring(kTemporaryFolder) + kLogName);
    struct stat status {};
    if (calls::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == geteuid()) {
        calls::unlink(path.c_str());
    }
}

}  // namespace rcp
