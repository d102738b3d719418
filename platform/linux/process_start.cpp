// Linux: when a process was started.
#include "base/system_calls.h"
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "platform/platform.h"

#include <fcntl.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace rcp::platform {
namespace {

// No streams of the standard library: with the locales that these bring, a program has twice the code and is found
// its symbols half as fast, at every start.
std::string textOfProc(const std::string& name) {
    constexpr std::size_t kLongest = 4096;
    const UniqueFd file(calls::open(("/proc/" + name).c_str(), O_RDONLY | O_CLOEXEC));
    return file ? readBeginning(file.get(), kLongest).value_or(std::string()) : std::string();
}

std::vector<std::string_view> fieldsOf(std::string_view text) {
    constexpr std::string_view kSpace = " \n";
    std::vector<std::string_view> fields;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
        if (text.empty()) {
            return fields;
        }
        fields.push_back(text.substr(0, text.find_first_of(kSpace)));
        text.remove_prefix(fields.back().size());
    }
}

}  // namespace

// "4711 (name) S 1 ...": the name may hold anything, so the fields are counted from behind it.
std::optional<std::string> startOfProcess(pid_t process) {
    constexpr std::size_t kState = 0;
    constexpr std::size_t kStartTime = 19;  // in clock ticks since the system was started
    const std::string status = textOfProc(std::to_string(process) + "/stat");
    const std::size_t name = status.rfind(')');
    if (name == std::string::npos) {
        return std::nullopt;
    }
    const auto fields = fieldsOf(std::string_view(status).substr(name + 1));
    if (fields.size() <= kStartTime || fields[kState] == "Z" || fields[kState] == "X") {
        return std::nullopt;
    }
    const std::string boot = textOfProc("sys/kernel/random/boot_id");
    return std::string(fields[kStartTime]) + "/" + boot.substr(0, boot.find('\n'));
}

}  // namespace rcp::platform
