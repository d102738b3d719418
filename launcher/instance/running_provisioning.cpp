#include "launcher/instance/running_provisioning.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/paths.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <charconv>

namespace rcp {
namespace {

constexpr int kPatience = 60;  // seconds, until an error is recorded
constexpr std::size_t kLongestNote = 256;

// None without a file; what cannot be read names nobody.
std::optional<std::string> contentOf(const std::wstring& path) {
    const UniqueFd file(
        calls::open(toNarrow(path).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) {
        return errno == ENOENT ? std::nullopt : std::optional(std::string());
    }
    return readBeginning(file.get(), kLongestNote).value_or(std::string());
}

std::string recordOf(pid_t process, const std::string& start) {
    return std::to_string(process) + " " + start + "\n";
}

// The process that is recorded and has not ended.
std::optional<long> processAtWork(const std::string& content) {
    pid_t process = 0;
    std::from_chars(content.data(), content.data() + content.size(), process);
    if (process <= 0 || process == getpid()) {
        return std::nullopt;
    }
    const std::optional<std::string> start = platform::startOfProcess(process);
    const bool isAtWork = start && content == recordOf(process, *start);
    return isAtWork ? std::optional<long>(process) : std::nullopt;
}

}  // namespace

std::wstring provisioningFileOf(const std::wstring& workspace) {
    return workspace + paths::kProvisioning;
}

void recordProvisioning(const std::wstring& path) {
    const std::optional<std::string> start = platform::startOfProcess(getpid());
    WholeFile file(path);
    if (!file.open() || !file.write(recordOf(getpid(), start.value_or("unknown"))) ||
        !file.commit()) {
        report(because(errno), messages.provisioningNotRecorded, path);
    }
}

std::optional<long> runningProvisioning(const std::wstring& path) {
    return processAtWork(contentOf(path).value_or(std::string()));
}

void waitForProvisioning(const std::wstring& path) {
    std::optional<long> process = runningProvisioning(path);
    trace(messages.provisioningAwaited, std::to_wstring(process.value_or(0)));
    for (int waited = 0; process; ++waited) {
        if (waited == kPatience) {
            report(noReason(), messages.provisioningStillRuns, std::to_wstring(*process));
        }
        tellWait(Wait::kProvisioning, path);
        sysSleep(1);
        process = runningProvisioning(path);
    }
}

bool settleProvisioning(const std::wstring& path) {
    const std::optional<std::string> content = contentOf(path);
    if (!content) {
        return false;  // nobody else writes it meanwhile
    }
    if (processAtWork(*content)) {
        return true;
    }
    if (calls::unlink(toNarrow(path).c_str()) != 0 && errno != ENOENT) {
        report(because(errno), messages.provisioningRecordStays, path);
    }
    return false;
}

}  // namespace rcp
