#include "inspect/status/last_launch.h"

#include "inspect/messages.h"
#include "inspect/quiet_read.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <tuple>
#include <vector>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr const char* kTemporaryFolder = "/tmp";

struct LogFile {
    std::string path;
    timespec time{};
    bool isTemporary = false;
};

bool isLogName(const std::string& name) {
    return name == "rcplauncher.log" ||
           (name.starts_with("rcplauncher_") && name.ends_with(".log"));
}

// In the temporary folder only what the launcher itself would take for this user's.
void addLogs(const std::string& folder, bool isTemporary, std::vector<LogFile>& logs) {
    std::error_code refused;
    for (files::directory_iterator at(folder, refused), end; !refused && at != end;
         at.increment(refused)) {
        struct stat status {};
        if (!isLogName(at->path().filename()) || lstat(at->path().c_str(), &status) != 0 ||
            !S_ISREG(status.st_mode) || (isTemporary && status.st_uid != geteuid())) {
            continue;
        }
        logs.push_back({at->path(),
#ifdef __APPLE__
                        status.st_mtimespec,
#else
                        status.st_mtim,
#endif
                        isTemporary});
    }
}

bool isLater(const LogFile& left, const LogFile& right) {
    return std::tie(left.time.tv_sec, left.time.tv_nsec) >
           std::tie(right.time.tv_sec, right.time.tv_nsec);
}

// A log is short; what a foreign file of the name holds beyond this is not worth reading.

bool isRecord(std::string_view line) {
    return line.starts_with("ZYPRA") || line.starts_with("Error: ");
}

// The two that say that the program which was to be started was not.
bool isFailedHandOff(std::string_view record) {
    return record.starts_with("Error: execv:") || record.starts_with("Error: invokeEclipseDylib:");
}

// Whether the temporary log is one of `launcher`: its argument dump begins with the program. A
// launch that ended before the dump may be anybody's.
bool isLogOf(const std::string& launcher, std::string_view log) {
    constexpr std::string_view kDump = "ZYPRA0030I: rcplauncher main arguments=\"";
    const std::size_t at = log.find(kDump);
    if (at == std::string_view::npos) {
        return true;
    }
    log.remove_prefix(at + kDump.size());
    const std::string_view program = log.substr(0, log.find(", "));
    if (!program.starts_with('/')) {
        return true;  // relative to a folder that nobody knows any more
    }
    std::error_code missing;
    return files::equivalent(files::path(program), launcher, missing);
}

}  // namespace

LastLaunch readLaunch(std::string_view log) {
    LastLaunch launch;
    std::string_view last;
    bool isHandedOff = false;
    bool isProvisioned = false;
    while (!log.empty()) {
        const std::size_t end = std::min(log.find('\n'), log.size());
        const std::string_view line = log.substr(0, end);
        log.remove_prefix(std::min(end + 1, log.size()));
        if (isRecord(line)) {
            last = line;
        }
        isHandedOff = isHandedOff || line.starts_with("ZYPRA0133I");
        isProvisioned = isProvisioned || line.starts_with("ZYPRA0130I");
        if (line.starts_with("ZYPRA0304I")) {
            launch.role = "main";
        } else if (line.starts_with("ZYPRA0305I")) {
            launch.role = "daemon";
        }
    }
    // A fatal record is the last that a launch writes, and behind a start only one of these is fatal.
    const bool hasStarted = isHandedOff || isProvisioned;
    if (hasStarted ? isFailedHandOff(last) : isErrorRecord(last)) {
        launch.outcome = Outcome::kFailed;
        launch.record = last;
    } else if (hasStarted) {
        launch.outcome = isHandedOff ? Outcome::kHandedOff : Outcome::kProvisioned;
    }
    return launch;
}

std::optional<LastLaunch> lastLaunch(const std::string& logFolder, const std::string& launcher) {
    std::vector<LogFile> logs;
    addLogs(logFolder, false, logs);
    addLogs(kTemporaryFolder, true, logs);
    std::sort(logs.begin(), logs.end(), isLater);
    for (const LogFile& file : logs) {
        const std::string text = readQuietly(file.path, kLongestLog);
        if (file.isTemporary && !isLogOf(launcher, text)) {
            continue;
        }
        LastLaunch launch = readLaunch(text);
        launch.log = file.path;
        launch.time = file.time;
        launch.isTemporary = file.isTemporary;
        return launch;
    }
    return std::nullopt;
}

}  // namespace rcp::inspect
