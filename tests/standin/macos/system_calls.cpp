// macOS's calls about processes, answered from Linux's process file system, and those about the system itself.
#include "tests/standin/macos/calls.h"

#include <errno.h>
#include <libproc.h>
#include <locale.h>
#include <mach-o/dyld.h>
#include <sys/auxv.h>
#include <sys/proc.h>
#include <sys/sysctl.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::string& executablePath() {
    static std::string path = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return path;
}

std::deque<std::string>& productVersions() {
    static std::deque<std::string> versions;
    return versions;
}

}  // namespace

namespace rcp::test::macos {

void setProductVersions(const std::vector<std::string>& versions) {
    productVersions() = {versions.begin(), versions.end()};
}

void setExecutablePath(const std::string& path) {
    executablePath() = path;
}

}  // namespace rcp::test::macos

extern "C" {

// What the linker puts in the place of setlocale(3): macOS knows a locale "UTF-8", for letters alone.
char* realSetlocale(int category, const char* name) asm("__real_setlocale");
char* macosSetlocale(int category, const char* name) asm("__wrap_setlocale");

char* macosSetlocale(int category, const char* name) {
    const bool isMacos = category == LC_CTYPE && name != nullptr && std::string(name) == "UTF-8";
    return realSetlocale(category, isMacos ? "C.UTF-8" : name);
}

int sysctlbyname(const char* name, void* value, size_t* size, void* newValue, size_t /*newSize*/) {
    if (std::string(name) != "kern.osproductversion" || newValue != nullptr ||
        productVersions().empty()) {
        errno = ENOENT;
        return -1;
    }
    const std::string version = productVersions().front();
    productVersions().pop_front();
    const bool fits = value == nullptr || *size > version.size();
    if (value != nullptr && fits) {
        version.copy(static_cast<char*>(value), version.size());
        static_cast<char*>(value)[version.size()] = '\0';
    }
    errno = fits ? 0 : ENOMEM;
    *size = version.size() + 1;
    return fits ? 0 : -1;
}

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
