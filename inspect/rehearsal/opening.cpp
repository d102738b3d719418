// Opening files in a rehearsal: those that are written are copies, and so are directories whose entries changed.
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/outcomes.h"
#include "inspect/rehearsal/rehearsal.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace rcp::inspect {
namespace {

bool isWriting(int flags) {
    return (flags & O_ACCMODE) != O_RDONLY || (flags & O_TRUNC) != 0;
}

int accessFor(int flags) {
    const int mode = flags & O_ACCMODE;
    return (isWriting(flags) ? W_OK : 0) | (mode == O_WRONLY ? 0 : R_OK);
}

// Something of the same kind and name, for whoever reads its directory.
void standIn(const std::string& place, const std::string& original) {
    std::error_code ignored;
    const std::filesystem::file_type type =
        std::filesystem::symlink_status(original, ignored).type();
    if (type == std::filesystem::file_type::directory) {
        ::mkdir(place.c_str(), 0700);
    } else if (type == std::filesystem::file_type::symlink) {
        std::filesystem::create_symlink("nowhere", place, ignored);
    } else {
        const UniqueFd made(::open(place.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    }
}

}  // namespace

int Rehearsal::open(const std::string& path, int flags, unsigned mode) {
    const bool isKept = (flags & O_NOFOLLOW) != 0 || ((flags & O_CREAT) && (flags & O_EXCL));
    const auto file = tree_.find(path, isKept ? LastLink::kKept : LastLink::kFollowed);
    if (!file) {
        return -1;
    }
    if (!file->isThere) {
        return (flags & O_CREAT) == 0 ? failWith(ENOENT) : openNew(*file, flags, mode);
    }
    const int descriptor = openFound(*file, flags);
    if (descriptor >= 0 && file->isDirectory()) {
        directories_[descriptor] = path;
    }
    return descriptor;
}

std::string Rehearsal::pathFrom(int directory, const std::string& path) const {
    const auto opened = directories_.find(directory);
    return path.starts_with("/") || opened == directories_.end() ? path
                                                                 : opened->second + "/" + path;
}

int Rehearsal::openFound(const Found& file, int flags) {
    if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) {
        return failWith(EEXIST);
    }
    if (file.isDirectory() && (isWriting(flags) || (flags & O_CREAT) != 0)) {
        return failWith(EISDIR);
    }
    if (file.isDirectory() && tree_.isListChanged(file)) {
        return openDirectory(file, flags);
    }
    if (isWriting(flags) && !file.isLink()) {
        return openForWriting(file, flags & ~O_CREAT);
    }
    return openQuietly(file.place, flags & ~O_CREAT);
}

int Rehearsal::openForWriting(const Found& file, int flags) {
    if (!isAllowed(file.place, accessFor(flags))) {
        return -1;
    }
    if (!S_ISREG(file.status.st_mode)) {
        return ::open(file.place.c_str(), O_RDONLY | (flags & (O_NONBLOCK | O_CLOEXEC | O_NOCTTY)));
    }
    const std::string place = tree_.isOwn(file.place) ? file.place : copyUp(file);
    return place.empty() ? -1 : ::open(place.c_str(), flags);
}

int Rehearsal::openNew(const Found& file, int flags, unsigned mode) {
    if (file.hasSlash) {
        return failWith(EISDIR);
    }
    if (!mayAdd(file)) {
        return -1;
    }
    const std::string place = tree_.newPlace();
    const int descriptor = ::open(place.c_str(), flags, static_cast<mode_t>(mode));
    if (descriptor >= 0) {
        tree_.put(file, place);
    }
    return descriptor;
}

// What a directory lists is the system's affair, so a directory is made that lists the right names.
int Rehearsal::openDirectory(const Found& directory, int flags) {
    if (!isAllowed(directory.place, R_OK)) {
        return -1;
    }
    const std::string list = tree_.newPlace();
    ::mkdir(list.c_str(), 0700);
    for (const auto& [name, place] : tree_.entries(directory)) {
        standIn(std::string(list).append("/").append(name), place);
    }
    return ::open(list.c_str(), flags);
}

std::string Rehearsal::copyUp(const Found& file) {
    std::string copy = tree_.newPlace();
    struct stat status {};
    if (::stat(file.place.c_str(), &status) != 0) {
        return {};
    }
    const UniqueFd opened(::open(copy.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    // What lies behind is a hole in the copy, which takes no room.
    if (!opened || !writeFully(opened.get(), readPlace(file.place, kLongestSettings)) ||
        ftruncate(opened.get(), status.st_size) != 0 ||
        fchmod(opened.get(), status.st_mode & 07777U) != 0) {
        return {};
    }
    tree_.put(file, copy);
    return copy;
}

}  // namespace rcp::inspect
