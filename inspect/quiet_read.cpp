#include "inspect/quiet_read.h"

#include "base/system_calls.h"
#include "base/unique_fd.h"
#include "inspect/rehearsal/staged_tree.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace rcp::inspect {

int openQuietly(const std::string& place, int flags) {
#ifdef O_NOATIME
    // For the owner only.
    const int descriptor = ::open(place.c_str(), flags | O_NOATIME);
    if (descriptor >= 0 || errno != EPERM) {
        return descriptor;
    }
#endif
    return ::open(place.c_str(), flags);
}

namespace {

enum class Part { kBeginning, kEnd };

std::string readPart(const std::string& place, Part part, std::size_t limit) {
    const UniqueFd file(openQuietly(place, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    std::string text;
    std::array<char, 65536> buffer;
    bool goesOn = file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (goesOn && part == Part::kEnd && static_cast<std::uintmax_t>(status.st_size) > limit) {
        goesOn = lseek(file.get(), -static_cast<off_t>(limit), SEEK_END) >= 0;
    }
    while (goesOn && text.size() < limit) {
        const ssize_t length =
            read(file.get(), buffer.data(), std::min(buffer.size(), limit - text.size()));
        goesOn = length > 0 || (length < 0 && errno == EINTR);
        text.append(buffer.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    }
    return text;
}

}  // namespace

std::string readPlace(const std::string& place, std::size_t limit) {
    return readPart(place, Part::kBeginning, limit);
}

std::string readQuietly(const std::string& path, std::size_t limit) {
    return readPlace(placeOf(path), limit);
}

std::string readEndQuietly(const std::string& path, std::size_t limit) {
    return readPart(placeOf(path), Part::kEnd, limit);
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return calls::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isRegularFile(const std::string& path) {
    struct stat status {};
    return calls::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isThere(const std::string& path) {
    struct stat status {};
    return calls::stat(path.c_str(), &status) == 0;
}

bool isAllowedAt(const std::string& path, int access) {
    return faccessat(AT_FDCWD, placeOf(path).c_str(), access, AT_EACCESS) == 0;
}

std::set<std::string> entryNames(const std::string& path) {
    std::set<std::string> names;
    for (const std::string& layer : layersOf(placeOf(path))) {
        std::error_code unknown;
        for (std::filesystem::directory_iterator at(layer, unknown), end; !unknown && at != end;
             at.increment(unknown)) {
            names.insert(at->path().filename());
        }
    }
    return names;
}

}  // namespace rcp::inspect
