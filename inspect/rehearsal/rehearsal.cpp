#include "inspect/rehearsal/rehearsal.h"

#include "base/transfer.h"
#include "base/unique_fd.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/rehearsed_calls.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

namespace rcp::inspect {
namespace {

Rehearsal* current = nullptr;

int failWith(int error) {
    errno = error;
    return -1;
}

bool refuse(int error) {
    errno = error;
    return false;
}

bool isAllowed(const std::string& place, int access) {
    return faccessat(AT_FDCWD, place.c_str(), access, AT_EACCESS) == 0;
}

bool isBelow(const std::string& path, const std::string& directory) {
    return path.starts_with(directory + "/");
}

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

Rehearsal* currentRehearsal() {
    return current;
}

Rehearsal::Rehearsal(std::string folder) : tree_(std::move(folder)), calls_(rehearsedCalls()) {
    current = this;
}

Rehearsal::~Rehearsal() {
    current = nullptr;
}

void Rehearsal::hide(const std::string& path) {
    if (const auto found = tree_.find(path, LastLink::kKept)) {
        tree_.hide(*found);
    }
}

std::string Rehearsal::placeOf(const std::string& path, LastLink last) const {
    const bool isKept = last == LastLink::kKept && !path.ends_with('/');
    const auto found = tree_.find(path, isKept ? LastLink::kKept : LastLink::kFollowed);
    if (found && !found->isThere) {
        errno = ENOENT;
    }
    return found ? found->place : std::string();
}

std::string Rehearsal::resolved(const std::string& path) const {
    const auto found = tree_.find(path, LastLink::kFollowed);
    if (!found || !found->isThere) {
        errno = found ? ENOENT : errno;
        return {};
    }
    return found->path.empty() ? "/" : found->path;
}

// --- What the system would allow; false with errno set -------------------------------------------------

bool Rehearsal::mayAdd(const Found& entry) const {
    if (entry.isThere) {
        return refuse(EEXIST);
    }
    return isAllowed(tree_.placeOfParent(entry), W_OK | X_OK);
}

bool Rehearsal::mayRemove(const Found& entry, bool asDirectory) const {
    const std::string directory = tree_.placeOfParent(entry);
    if (!isAllowed(directory, W_OK | X_OK)) {
        return false;
    }
    struct stat status {};
    const uid_t user = geteuid();
    const bool isSticky = stat(directory.c_str(), &status) == 0 && (status.st_mode & S_ISVTX) != 0;
    if (isSticky && user != 0 && user != status.st_uid && user != entry.status.st_uid) {
        return refuse(EPERM);
    }
    if (entry.isDirectory() != asDirectory) {
        return refuse(asDirectory ? ENOTDIR : EISDIR);
    }
    return true;
}

bool Rehearsal::mayMove(const Found& source, const Found& target) const {
    if (!source.isThere) {
        return refuse(ENOENT);
    }
    if ((source.hasSlash || target.hasSlash) && !source.isDirectory()) {
        return refuse(ENOTDIR);
    }
    if (isBelow(target.path, source.path)) {
        return refuse(EINVAL);
    }
    if (isBelow(source.path, target.path)) {
        return refuse(ENOTEMPTY);
    }
    const bool isDirectory = source.isDirectory();
    if (!mayRemove(source, isDirectory) ||
        !(target.isThere ? mayRemove(target, isDirectory) : mayAdd(target))) {
        return false;
    }
    // A directory that gets another parent is written to: its "..".
    const bool isStaying = tree_.placeOfParent(source) == tree_.placeOfParent(target);
    if (isDirectory && !isStaying && !isAllowed(source.place, W_OK)) {
        return false;
    }
    return !target.isDirectory() || tree_.entries(target).empty() || refuse(ENOTEMPTY);
}

// --- Opening ------------------------------------------------------------------------------------------

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
    if (!opened || !writeFully(opened.get(), readQuietly(file.place)) ||
        fchmod(opened.get(), status.st_mode & 07777U) != 0) {
        return {};
    }
    tree_.put(file, copy);
    return copy;
}

// --- Entries of directories -----------------------------------------------------------------------------

int Rehearsal::makeDirectory(const std::string& path, unsigned mode) {
    const auto entry = tree_.find(path, LastLink::kKept);
    if (!entry || !mayAdd(*entry)) {
        return -1;
    }
    const std::string place = tree_.newPlace();
    if (::mkdir(place.c_str(), static_cast<mode_t>(mode)) != 0) {
        return -1;
    }
    tree_.put(*entry, place);
    return 0;
}

int Rehearsal::symlink(const std::string& target, const std::string& path) {
    const auto entry = tree_.find(path, LastLink::kKept);
    if (!entry) {
        return -1;
    }
    if (target.empty() || (entry->hasSlash && !entry->isThere)) {
        return failWith(ENOENT);
    }
    const std::string place = tree_.newPlace();
    if (!mayAdd(*entry) || ::symlink(target.c_str(), place.c_str()) != 0) {
        return -1;
    }
    tree_.put(*entry, place);
    return 0;
}

int Rehearsal::unlink(const std::string& path) {
    const auto entry = tree_.find(path, LastLink::kKept);
    if (!entry) {
        return -1;
    }
    if (!entry->isThere) {
        return failWith(ENOENT);
    }
    if (entry->endsInDots || entry->hasSlash) {
        return failWith(entry->isDirectory() ? EISDIR : ENOTDIR);
    }
    if (!mayRemove(*entry, false)) {
        return -1;
    }
    tree_.remove(*entry);
    return 0;
}

int Rehearsal::removeDirectory(const std::string& path) {
    const auto entry = tree_.find(path, LastLink::kKept);
    if (!entry) {
        return -1;
    }
    if (!entry->isThere || entry->endsInDots) {
        return failWith(entry->isThere ? EBUSY : ENOENT);
    }
    if (!mayRemove(*entry, true)) {
        return -1;
    }
    if (!tree_.entries(*entry).empty()) {
        return failWith(ENOTEMPTY);
    }
    tree_.remove(*entry);
    return 0;
}

int Rehearsal::rename(const std::string& source, const std::string& target) {
    const auto from = tree_.find(source, LastLink::kKept);
    const auto to = from ? tree_.find(target, LastLink::kKept) : std::nullopt;
    if (!from || !to) {
        return -1;
    }
    if (from->endsInDots || to->endsInDots) {
        return failWith(EBUSY);
    }
    const auto deviceOf = [this](const Found& entry) {
        return tree_.deviceOf(entry.path.substr(0, entry.path.rfind('/')));
    };
    if (deviceOf(*from) != deviceOf(*to)) {
        return failWith(EXDEV);
    }
    if (from->isThere && from->path == to->path) {
        return 0;
    }
    if (!mayMove(*from, *to)) {
        return -1;
    }
    if (to->isThere) {
        tree_.remove(*to);
    }
    tree_.move(*from, *to);
    return 0;
}

}  // namespace rcp::inspect
