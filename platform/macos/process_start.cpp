// macOS: when a process was started.
#include "platform/platform.h"

#include <libproc.h>
#include <sys/proc.h>

namespace rcp::platform {

std::optional<std::string> startOfProcess(pid_t process) {
    proc_bsdinfo info{};
    const int size = proc_pidinfo(process, PROC_PIDTBSDINFO, 0, &info, sizeof info);
    if (size != static_cast<int>(sizeof info) || info.pbi_status == SZOMB) {
        return std::nullopt;
    }
    return std::to_string(info.pbi_start_tvsec) + "/" + std::to_string(info.pbi_start_tvusec);
}

}  // namespace rcp::platform
