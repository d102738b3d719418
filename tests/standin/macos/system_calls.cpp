// macOS's calls about processes, answered from Linux's process file system.
#include "tests/standin/macos/calls.h"

#include <libproc.h>
#include <mach-o/dyld.h>
#include <sys/auxv.h>
#include <sys/proc.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::string& executablePath() {
    static std::string path = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return path;
}

}  // namespace

namespace rcp::test::macos {

void setExecutablePath(const std::string& path) {
    executablePath() = path;
}

}  // namespace rcp::test::macos

extern "C" {

int _NSGetExecutablePath(char* buffer, uint32_t* size) {
    const std::string& path = executablePath();
    const bool fits = *size > path.size();
    *size = static_cast<uint32_t>(path.size() + 1);
    if (fits) {
        path.copy(buffer, path.size());
        buffer[path.size()] = '\0';
    }
    return fits ? 0 : -1;
}

int proc_pidpath(int process, void* buffer, uint32_t size) {
    std::error_code error;
    const std::string path =
        std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error).string();
    return static_cast<int>(path.copy(static_cast<char*>(buffer), size));
}

int proc_pidinfo(int process, int flavor, uint64_t /*argument*/, void* buffer, int size) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string status(std::istreambuf_iterator<char>(file), {});
    if (flavor != PROC_PIDTBSDINFO || size != static_cast<int>(sizeof(proc_bsdinfo)) ||
        status.empty()) {
        return 0;
    }
    std::istringstream fields(status.substr(status.rfind(')') + 1));
    std::string field;
    proc_bsdinfo info{};
    for (int i = 0; i <= 19 && fields >> field; ++i) {
        if (i == 0) {
            info.pbi_status = field == "Z" ? SZOMB : 0;
        } else if (i == 19) {  // ticks since the system was started
            info.pbi_start_tvsec = std::stoull(field);
        }
    }
    *static_cast<proc_bsdinfo*>(buffer) = info;
    return size;
}
}
