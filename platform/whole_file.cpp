#include "platform/whole_file.h"

#include "platform/file_lock.h"
#include "platform/text.h"
#include "platform/transfer.h"
#include "system/system_calls.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace rcp {
namespace {

constexpr std::size_t kBufferLimit = std::size_t{64} * 1024;

// Opens the temporary file. What a killed launch left under its name may be no file that can be
// written, or not with these permissions; the name is ours, so it goes.
int openTemporary(const char* path) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = calls::open(path, kFlags, 0666);
    if (descriptor >= 0 || (errno != EACCES && errno != ELOOP)) {
        return descriptor;
    }
    const int savedErrno = errno;
    if (calls::unlink(path) != 0) {
        errno = savedErrno;
        return -1;
    }
    return calls::open(path, kFlags, 0666);
}

// Whether the locked file is ours to write, emptied. `isStale` when it has lost its name meanwhile:
// the former holder of the lock renames or removes it.
bool takeOver(int descriptor, const char* path, bool& isStale) {
    struct stat status {};
    if (!lockExclusively(descriptor) || fstat(descriptor, &status) != 0) {
        return false;
    }
    isStale = !isNamed(descriptor, path);
    if (isStale || !S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return false;
    }
    return status.st_size == 0 || ftruncate(descriptor, 0) == 0;
}

// Opens `path` and locks it; a file that lost its name while its lock was waited for is given up
// for the next one.
int openAndLock(const char* path) {
    for (;;) {
        const int descriptor = openTemporary(path);
        bool isStale = false;
        if (descriptor < 0 || takeOver(descriptor, path, isStale)) {
            return descriptor;
        }
        const int savedErrno = errno;
        close(descriptor);
        errno = savedErrno;
        if (!isStale) {
            return -1;
        }
    }
}

}  // namespace

TemporaryName* TemporaryName::claimed_ = nullptr;

void TemporaryName::claim() {
    if (isClaimed_) {
        return;
    }
    static const bool isRegistered = std::atexit(removeAll) == 0;
    (void)isRegistered;
    next_ = std::exchange(claimed_, this);
    isClaimed_ = true;
}

void TemporaryName::release() {
    for (TemporaryName** link = &claimed_; *link != nullptr; link = &(*link)->next_) {
        if (*link == this) {
            *link = next_;
            break;
        }
    }
    isClaimed_ = false;
}

void TemporaryName::remove() {
    if (isClaimed_) {
        calls::unlink(path_.c_str());
        release();
    }
}

void TemporaryName::removeAll() {
    while (claimed_ != nullptr) {
        claimed_->remove();
    }
}

bool holdsText(const std::wstring& path, std::string_view text) {
    const int descriptor = calls::open(toNarrow(path).c_str(),
                                       O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    struct stat status {};
    bool isSame = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                  status.st_size == static_cast<off_t>(text.size());
    isSame = isSame && readBeginning(descriptor, text.size()) == text;
    close(descriptor);
    return isSame;
}

void removeUnfinished(const std::wstring& target) {
    const std::string path = toNarrow(target + L".tmp");
    const int descriptor =
        calls::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    if (calls::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && isNamed(descriptor, path)) {
        calls::unlink(path.c_str());
    }
    close(descriptor);
}

WholeFile::WholeFile(std::wstring target, const std::wstring& suffix)
    : target_(std::move(target)),
      targetBytes_(toNarrow(target_)),
      temporary_(toNarrow(target_ + suffix)) {}

// The name goes while the lock is still held: the next launcher must find it gone or its own.
WholeFile::~WholeFile() {
    temporary_.remove();
    closeAndForget();
}

bool WholeFile::open() {
    struct stat status {};
    if (calls::lstat(targetBytes_.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EISDIR;  // nothing could be renamed over it
        return false;
    }
    descriptor_ = openAndLock(temporary_.path().c_str());
    if (descriptor_ < 0) {
        return false;
    }
    temporary_.claim();
    return true;
}

bool WholeFile::write(std::string_view bytes) {
    buffer_ += bytes;
    return buffer_.size() < kBufferLimit || flush();
}

bool WholeFile::flush() {
    if (firstError_ == 0 && !writeFully(descriptor_, buffer_)) {
        firstError_ = errno;
    }
    buffer_.clear();
    errno = firstError_;
    return firstError_ == 0;
}

bool WholeFile::keepPermissionsOfTarget() const {
    struct stat status {};
    if (calls::stat(targetBytes_.c_str(), &status) != 0) {
        return errno == ENOENT;
    }
    return fchmod(descriptor_, status.st_mode & 07777U) == 0;
}

bool WholeFile::commit() {
    if (descriptor_ < 0 || !flush() || !keepPermissionsOfTarget() ||
        calls::rename(temporary_.path().c_str(), targetBytes_.c_str()) != 0) {
        const int savedErrno = errno;
        temporary_.remove();
        closeAndForget();
        errno = savedErrno;
        return false;
    }
    temporary_.release();
    closeAndForget();
    return true;
}

void WholeFile::closeAndForget() {
    if (descriptor_ >= 0) {
        close(std::exchange(descriptor_, -1));
    }
    buffer_.clear();
}

}  // namespace rcp
