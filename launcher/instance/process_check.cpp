#include "launcher/instance/process_check.h"

#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/platform.h"
#include "platform/process.h"
#include "platform/text.h"

#include <errno.h>
#include <regex.h>
#include <signal.h>
#include <unistd.h>

#include <limits>
#include <optional>

namespace rcp {
namespace {

class BasicRegex {
  public:
    explicit BasicRegex(const std::string& pattern)
        : isValid_(regcomp(&regex_, pattern.c_str(), REG_NOSUB) == 0) {}
    ~BasicRegex() {
        if (isValid_) {
            regfree(&regex_);
        }
    }
    BasicRegex(const BasicRegex&) = delete;
    BasicRegex& operator=(const BasicRegex&) = delete;
    BasicRegex(BasicRegex&&) = delete;
    BasicRegex& operator=(BasicRegex&&) = delete;

    [[nodiscard]] bool matches(const std::string& line) const {
        return isValid_ && regexec(&regex_, line.c_str(), 0, nullptr, 0) == 0;
    }

  private:
    regex_t regex_{};
    bool isValid_;
};

// The launcher itself is not the platform that it looks for, though its own command line may look
// like it: where process ids start anew, in a container or after a reboot, a stale one can be ours.
bool isAlive(long processId) {
    if (processId <= 0 || processId > std::numeric_limits<pid_t>::max()) {
        return false;
    }
    const bool isThere = kill(static_cast<pid_t>(processId), 0) == 0 || errno != ESRCH;
    return isThere && processId != getpid();
}

// The process's own command line, never cut at a terminal's width and without a heading.
std::string listProcess(long processId) {
    const std::optional<ProgramResult> listing =
        runProgram({"ps", "-ww", "-o", "command=", "-p", std::to_string(processId)});
    if (!listing) {
        report(noReason(), messages.psNotStarted);
    }
    return listing && listing->succeeded ? listing->output : std::string();
}

// A platform that was started by a relative path need not show in the listing. One that an upgrade
// has replaced since still runs under its name.
bool runsPlatformExecutable(long processId, const std::wstring& platformExecutable) {
    const std::optional<std::string> executable =
        platform::executableOfProcess(static_cast<pid_t>(processId));
    const auto isAt = [&](const std::string& path) {
        return !path.empty() && resolvedPath(path).value_or(path) == executable;
    };
    return executable && (isAt(launcherExecutable()) || isAt(toNarrow(platformExecutable)));
}

}  // namespace

bool isPlatformProcess(long processId, const ProcessMarker& marker) {
    return isAlive(processId) && (listingShowsPlatform(listProcess(processId), marker) ||
                                  runsPlatformExecutable(processId, marker.platformExecutable));
}

bool listingShowsPlatform(std::string_view listing, const ProcessMarker& marker) {
    if (marker.mainProcessName.empty()) {
        return false;
    }
    const BasicRegex nameRegex(toNarrow(marker.mainProcessName));
    const BasicRegex baseRegex("rcp.base");
    while (!listing.empty()) {
        const std::size_t end = listing.find('\n');
        const std::string line(listing.substr(0, end));
        const bool hasEnded = line.find("<defunct>") != std::string::npos;  // not yet waited for
        if (!hasEnded && nameRegex.matches(line) &&
            (marker.invokeDylib || baseRegex.matches(line))) {
            return true;
        }
        if (end == std::string_view::npos) {
            break;
        }
        listing.remove_prefix(end + 1);
    }
    return false;
}

}  // namespace rcp
