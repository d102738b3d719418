#include "inspect/rehearsal/rehearsal.h"

#include "inspect/rehearsal/outcomes.h"
#include "inspect/rehearsal/rehearsed_calls.h"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace rcp::inspect {
namespace {

Rehearsal* current = nullptr;

bool refuse(int error) {
    errno = error;
    return false;
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
