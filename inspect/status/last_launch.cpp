#include "inspect/status/last_launch.h"

#include "base/system_calls.h"
#include "inspect/messages.h"
#include "inspect/quiet_read.h"
#include "launcher/vocabulary/paths.h"
#include "platform/text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

namespace rcp::inspect {
namespace {

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
    for (const std::string& name : entryNames(folder)) {
        const std::string path = std::string(folder).append("/").append(name);
        struct stat status {};
        if (!isLogName(name) || calls::lstat(path.c_str(), &status) != 0 ||
            !S_ISREG(status.st_mode) || (isTemporary && status.st_uid != geteuid())) {
            continue;
        }
        logs.push_back({path,
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

enum class Owner { kThis, kOther, kUnknown };

Owner ownerBy(bool isThis) {
    return isThis ? Owner::kThis : Owner::kOther;
}

// The argument dump begins with the program; empty without a dump. One that is not absolute was relative
// to a folder that nobody knows any more.
std::string_view programOf(std::string_view log) {
    constexpr std::string_view kDump = "ZYPRA0030I: rcplauncher main arguments=\"";
    const std::size_t at = log.find(kDump);
    if (at == std::string_view::npos) {
        return {};
    }
    log.remove_prefix(at + kDump.size());
    return log.substr(0, log.find(", "));
}

// Whose the temporary log is. What ends a launch before its dump is mostly its property file, and the
// record names it.
Owner ownerOf(std::string_view log, const Options& options) {
    const std::string_view program = programOf(log);
    if (program.starts_with('/')) {
        struct stat one {};
        struct stat other {};
        return ownerBy(calls::stat(std::string(program).c_str(), &one) == 0 &&
                       calls::stat(options.launcher.c_str(), &other) == 0 &&
                       one.st_dev == other.st_dev && one.st_ino == other.st_ino);
    }
    const std::string file = toNarrow(paths::kSettings);
    return log.find(file) == std::string_view::npos
               ? Owner::kUnknown
               : ownerBy(log.find(" " + options.installation + file) != std::string_view::npos);
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

std::optional<LastLaunch> lastLaunch(const std::string& logFolder, const Options& options) {
    std::vector<LogFile> logs;
    addLogs(logFolder, false, logs);
    addLogs(kTemporaryFolder, true, logs);
    std::sort(logs.begin(), logs.end(), isLater);
    std::optional<LastLaunch> unclear;
    for (const LogFile& file : logs) {
        const std::string text = readQuietly(file.path, kLongestLog);
        const Owner owner = file.isTemporary ? ownerOf(text, options) : Owner::kThis;
        if (owner == Owner::kOther || (owner == Owner::kUnknown && unclear)) {
            continue;
        }
        LastLaunch launch = readLaunch(text);
        launch.log = file.path;
        launch.time = file.time;
        launch.isTemporary = file.isTemporary;
        launch.isOwn = owner == Owner::kThis;
        if (launch.isOwn) {
            launch.unclear = unclear ? unclear->log : std::string();
            return launch;
        }
        unclear = std::move(launch);
    }
    return unclear;
}

std::optional<time_t> ageOf(const LastLaunch& launch, std::optional<time_t> now) {
    return now && *now >= launch.time.tv_sec ? std::optional(*now - launch.time.tv_sec)
                                             : std::nullopt;
}

}  // namespace rcp::inspect
