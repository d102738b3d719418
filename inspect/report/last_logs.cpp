#include "inspect/report/last_logs.h"

#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "inspect/status/last_launch.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr std::size_t kMost = 3;
constexpr std::size_t kLongest = std::size_t{1} << 20U;
constexpr std::size_t kInFront = 3;  // the end of a line that is continued: "\\\r\n"

using Paths = std::vector<files::path>;

// The newest files in the folder that `isLog`.
Paths newestIn(const files::path& folder, const std::function<bool(const std::string&)>& isLog) {
    std::vector<std::pair<files::file_time_type, files::path>> found;
    for (const std::string& name : entryNames(folder)) {
        const files::path path = folder / name;
        const files::path place = placeOf(path, LastLink::kKept);
        std::error_code gone;
        if (isLog(name) && files::is_regular_file(files::symlink_status(place, gone))) {
            found.emplace_back(files::last_write_time(place, gone), path);
        }
    }
    std::sort(found.begin(), found.end(), std::greater<>());
    found.resize(std::min(found.size(), kMost));
    Paths paths;
    for (auto& [time, path] : found) {
        paths.push_back(std::move(path));
    }
    return paths;
}

bool isContinued(std::string_view line) {
    return line.ends_with('\\') || line.ends_with("\\\r");
}

// From the beginning of a line on that continues no other: the rest may be that of a secret.
std::string endOf(const files::path& log) {
    std::string text = readEndQuietly(log, kLongest + kInFront);
    if (text.size() <= kLongest) {
        return text;
    }
    std::size_t end = text.find('\n', text.size() - kLongest - 1);
    while (end != std::string::npos && isContinued(std::string_view(text).substr(0, end))) {
        end = text.find('\n', end + 1);
    }
    return end == std::string::npos ? std::string() : text.substr(end + 1);
}

bool isLaunchersLog(const std::string& name) {
    return name.starts_with("rcplauncher") && name.ends_with(".log");
}

bool isPlatformsLog(const std::string& name) {
    return name == ".log" ||
           (name.ends_with(".log") && name.find_first_not_of("0123456789") == name.size() - 4);
}

}  // namespace

std::vector<Log> lastLogs(const nlohmann::json& facts, const Options& options) {
    const std::string logs = facts.value("logs", "");
    Paths paths = newestIn(logs, isLaunchersLog);
    if (const auto last = lastLaunch(logs, options); last && last->isTemporary) {
        paths.emplace_back(last->log);
    }
    for (const std::string& folder :
         {facts.value("workspace", "") + "/.metadata", facts.value("configuration", "")}) {
        const Paths more = newestIn(folder, isPlatformsLog);
        paths.insert(paths.end(), more.begin(), more.end());
    }
    std::vector<Log> result;
    for (const files::path& path : paths) {
        result.push_back({path, endOf(path)});
    }
    return result;
}

}  // namespace rcp::inspect
