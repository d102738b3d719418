#include "inspect/handoff/elf.h"
#include "inspect/handoff/own_code.h"
#include "inspect/quiet_read.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

namespace rcp::inspect {
namespace {

constexpr char kCache[] = "/etc/ld.so.cache";
constexpr const char* kStandardFolders[] = {"/lib", "/usr/lib", "/lib64", "/usr/lib64"};

std::string thisMachine() {
    utsname system{};
    return uname(&system) == 0 ? system.machine : "";
}

// 32 bits of the same kind, or what somebody has registered an emulator for.
bool isEmulated(const std::string& machine) {
    return (machine == "i686" && thisMachine() == "x86_64") ||
           access(("/proc/sys/fs/binfmt_misc/qemu-" + machine).c_str(), F_OK) == 0;
}

bool isReadable(const std::string& path) {
    return isAllowedAt(path, R_OK);
}

// The name of the folder that the program lies in, in a search path.
std::string expanded(std::string folder, const std::string& path) {
    const std::string own = std::filesystem::path(path).parent_path();
    for (const std::string name : {"${ORIGIN}", "$ORIGIN"}) {
        for (std::size_t at = 0; (at = folder.find(name, at)) != std::string::npos;) {
            folder.replace(at, name.size(), own);
            at += own.size();
        }
    }
    return folder;
}

// The first of a path's folders in which there is a library of this name.
std::string findAlong(const std::string& folders, const std::string& name) {
    std::istringstream all(folders);
    for (std::string folder; std::getline(all, folder, ':');) {
        std::string path = (folder.empty() ? "." : folder) + "/" + name;
        if (isReadable(path)) {
            return path;
        }
    }
    return {};
}

// The loader's own list holds the paths of all libraries, each ended by a NUL.
std::string findInCache(const std::string& name) {
    static const std::string cache = readQuietly(kCache);
    const std::string end = "/" + name + '\0';
    const std::size_t found = cache.find(end);
    if (found == std::string::npos) {
        return {};
    }
    const std::size_t begin = cache.rfind('\0', found) + 1;
    return cache.substr(begin, found + end.size() - 1 - begin);
}

}  // namespace

const char* const kLibraryEnding = ".so";

bool looksLikeOwnCode(std::string_view start) {
    return looksLikeElf(start);
}

std::optional<OwnCode> readOwnCode(std::string_view file) {
    const std::optional<ElfImage> image = readElf(file);
    if (!image) {
        return std::nullopt;
    }
    return OwnCode{.machine = image->machine,
                   .isForThisMachine = image->machine == thisMachine(),
                   .isEmulated = isEmulated(image->machine),
                   .isLibrary = image->isShared,
                   .interpreter = image->interpreter,
                   .libraries = image->libraries,
                   .searchPaths = image->searchPaths,
                   .symbols = image->symbols};
}

std::string findLibrary(const std::string& name, const OwnCode& loader, const std::string& path,
                        const std::string& variable) {
    if (name.find('/') != std::string::npos) {
        return isReadable(name) ? name : std::string();
    }
    std::string folders = variable.empty() ? std::string() : variable + ":";
    for (const std::string& paths : loader.searchPaths) {
        folders += expanded(paths, path) + ":";
    }
    if (std::string found = folders.empty() ? std::string() : findAlong(folders, name);
        !found.empty()) {
        return found;
    }
    if (std::string found = findInCache(name); !found.empty()) {
        return found;
    }
    for (const char* folder : kStandardFolders) {
        if (std::string found = findAlong(folder, name); !found.empty()) {
            return found;
        }
    }
    return {};
}

}  // namespace rcp::inspect
