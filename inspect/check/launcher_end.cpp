#include "inspect/check/launcher_end.h"

#include "diagnostics/svc_debug.h"

namespace rcp::inspect {

std::optional<std::string> endOf(const std::function<void()>& step) {
    try {
        step();
    } catch (const LaunchEnded& end) {
        return end.record.substr(0, end.record.rfind(" : "));  // the reason is about this process
    }
    return std::nullopt;
}

}  // namespace rcp::inspect
