#include "inspect/status/platform_log.h"

#include "base/system_calls.h"
#include "inspect/quiet_read.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <tuple>
#include <utility>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr std::string_view kSession = "!SESSION ";
constexpr std::string_view kEntry = "!ENTRY ";
constexpr std::string_view kPart = "!SUBENTRY ";
constexpr std::string_view kMessage = "!MESSAGE ";
constexpr std::string_view kStack = "!STACK ";
constexpr std::string_view kUnmet = "Unresolved requirement: ";
constexpr std::string_view kError = "4";  // the severity

constexpr std::size_t kMostErrors = 3;
constexpr std::size_t kLongestLine = 400;  // some exceptions list all that there is

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

std::string_view nextWord(std::string_view& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

// For a terminal: of a reasonable length, and nothing in it that steers.
std::string told(std::string_view line) {
    std::string text(line.substr(0, kLongestLine));
    if (line.size() > kLongestLine) {
        while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xc0U) == 0x80U) {
            text.pop_back();  // of a character that was cut
        }
        if (!text.empty()) {
            text.pop_back();
        }
        text += " ...";
    }
    std::replace_if(
        text.begin(), text.end(),
        [](char character) {
            const auto code = static_cast<unsigned char>(character);
            return code < 0x20U || code == 0x7fU;
        },
        ' ');
    return text;
}

std::string_view lastSession(std::string_view log) {
    for (std::size_t at = log.rfind(kSession); at != std::string_view::npos && at > 0;
         at = log.rfind(kSession, at - 1)) {
        if (log[at - 1] == '\n') {
            return log.substr(at);
        }
    }
    return log;
}

// The lines of one session, one after another.
class Reader {
  public:
    void read(std::string_view line) {
        const bool isBehindStack = std::exchange(isStackNext_, false);
        if (line.starts_with(kEntry)) {
            line.remove_prefix(kEntry.size());
            const std::string_view bundle = nextWord(line);
            isError_ = nextWord(line) == kError;
            if (isError_) {
                errors_.push_back({told(bundle), {}, {}, {}});
            }
        } else if (line.starts_with(kPart)) {
            isError_ = false;
        } else if (isError_) {
            readPart(line, isBehindStack);
        }
    }
    std::vector<PlatformError> errors() && { return std::move(errors_); }

  private:
    void readPart(std::string_view line, bool isBehindStack) {
        PlatformError& error = errors_.back();
        const std::size_t unmet = line.find(kUnmet);
        if (line.starts_with(kMessage) && error.message.empty()) {
            error.message = told(line.substr(kMessage.size()));
        } else if (line.starts_with(kStack)) {
            isStackNext_ = true;
        } else if (isBehindStack && error.exception.empty()) {
            error.exception = told(line);
        } else if (unmet != std::string_view::npos && line.find_first_not_of(" \t") == unmet) {
            const std::string name = told(line.substr(unmet + kUnmet.size()));
            if (std::find(error.missing.begin(), error.missing.end(), name) ==
                error.missing.end()) {
                error.missing.push_back(name);
            }
        }
    }

    std::vector<PlatformError> errors_;
    bool isError_ = false;
    bool isStackNext_ = false;
};

bool isBefore(const timespec& left, const timespec& right) {
    return std::tie(left.tv_sec, left.tv_nsec) < std::tie(right.tv_sec, right.tv_nsec);
}

// Keeps the later one of two logs.
void offer(const files::path& path, std::optional<PlatformLog>& latest) {
    struct stat status {};
    if (calls::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return;
    }
#ifdef __APPLE__
    const timespec time = status.st_mtimespec;
#else
    const timespec time = status.st_mtim;
#endif
    if (!latest || isBefore(latest->time, time)) {
        latest = PlatformLog{path, time, 0, {}};
    }
}

// "1767225600000.log": the milliseconds at which it was begun.
bool isNumbered(const files::path& path) {
    const std::string stem = path.stem();
    return path.extension() == ".log" && !stem.empty() &&
           stem.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::vector<PlatformError> readPlatformErrors(std::string_view log) {
    std::string_view session = lastSession(log);
    Reader reader;
    while (!session.empty()) {
        reader.read(nextLine(session));
    }
    return std::move(reader).errors();
}

std::optional<PlatformLog> platformLog(const std::string& configuration,
                                       const std::string& workspace, const timespec& launch) {
    std::optional<PlatformLog> latest;
    offer(workspace + "/.metadata/.log", latest);
    for (const std::string& name : entryNames(configuration)) {
        if (isNumbered(name)) {
            offer(files::path(configuration) / name, latest);
        }
    }
    if (!latest || isBefore(latest->time, launch)) {
        return std::nullopt;
    }
    latest->errors = readPlatformErrors(readQuietly(latest->path, kLongestLog));
    latest->count = latest->errors.size();
    if (latest->count == 0) {
        return std::nullopt;
    }
    if (latest->count > kMostErrors) {
        latest->errors.erase(latest->errors.begin(), latest->errors.end() - kMostErrors);
    }
    return latest;
}

}  // namespace rcp::inspect
