// Linux: when a process was started.
#include "platform/platform.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace rcp::platform {

// "4711 (name) S 1 ...": the name may hold anything, so the fields are counted from behind it.
std::optional<std::string> startOfProcess(pid_t process) {
    constexpr std::size_t kState = 0;
    constexpr std::size_t kStartTime = 19;  // in clock ticks since the system was started
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    const std::string status(std::istreambuf_iterator<char>(file), {});
    const std::size_t name = status.rfind(')');
    if (name == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream text(status.substr(name + 1));
    const std::vector<std::string> fields{std::istream_iterator<std::string>(text), {}};
    if (fields.size() <= kStartTime || fields[kState] == "Z" || fields[kState] == "X") {
        return std::nullopt;
    }
    std::string system;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> system;
    return fields[kStartTime] + "/" + system;
}

}  // namespace rcp::platform
