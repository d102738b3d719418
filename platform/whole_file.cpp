#include "platform/whole_file.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "launcher/vocabulary/paths.h"
#include "platform/file_lock.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

namespace rcp {
namespace {

constexpr std::size_t kBufferLimit = std::size_t{64} * 1024;

// What tells of the temporary names of this process, if anything does.
constinit UnfinishedNote* unfinishedNote = nullptr;

void keepNote() {
    if (unfinishedNote != nullptr) {
        unfinishedNote->keep();
    }
}

// Opens the temporary file. What stands under its name may be no file that can be written, or not with
// these permissions; the name is ours, so it goes.
UniqueFd openTemporary(const char* path) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    UniqueFd opened(calls::open(path, kFlags, 0666));
    const int error = errno;
    const bool isSocket = error == ENXIO || error == EOPNOTSUPP;  // as Linux and macOS say it
    if (!opened && (error == EACCES || error == ELOOP || isSocket)) {
        if (calls::unlink(path) == 0) {
            opened.reset(calls::open(path, kFlags, 0666));
        } else {
            errno = error;
        }
    }
    return opened;
}

enum class TakeOver { kOurs, kFailed, kLostItsName };

// Locks the file and empties it unless it has lost its name meanwhile: the former holder of the lock renames
// or removes it, or has been killed and left it as long as it had become. Failure leaves errno set.
TakeOver takeOver(int descriptor, const char* path) {
    struct stat status {};
    if (calls::fstat(descriptor, &status) != 0) {
        return TakeOver::kFailed;
    }
    if (!S_ISREG(status.st_mode)) {  // a pipe: can be opened like a file, but not locked everywhere
        const bool isGone = !isNamed(status, path) || calls::unlink(path) == 0;
        return isGone ? TakeOver::kLostItsName : TakeOver::kFailed;
    }
    if (!lockExclusively(descriptor)) {
        return TakeOver::kFailed;
    }
    const std::optional<struct stat> locked = isNamed(status, path);
    if (!locked) {
        return TakeOver::kLostItsName;
    }
    const bool isEmpty = locked->st_size == 0 || calls::ftruncate(descriptor, 0) == 0;
    return isEmpty ? TakeOver::kOurs : TakeOver::kFailed;
}

// Opens `path` and locks it; a file that lost its name while its lock was waited for is given up
// for the next one.
UniqueFd openAndLock(const char* path) {
    for (;;) {
        UniqueFd opened = openTemporary(path);
        const TakeOver result = opened ? takeOver(opened.get(), path) : TakeOver::kFailed;
        if (result == TakeOver::kOurs) {
            return opened;
        }
        if (result == TakeOver::kFailed) {
            if (opened) {
                keepNote();  // the file is there, perhaps of our making
            }
            return {};
        }
    }
}

}  // namespace

void TemporaryName::remove() {
    if (isClaimed_) {
        if (calls::unlink(path_.c_str()) != 0 && errno != ENOENT) {
            keepNote();
        }
        release();
    }
}

UnfinishedNote::UnfinishedNote(std::string path) : file_(std::move(path)) {
    unfinishedNote = this;
}

UnfinishedNote::~UnfinishedNote() {
    unfinishedNote = nullptr;
}

bool UnfinishedNote::isLeft() const {
    struct stat status {};
    return calls::lstat(file_.path().c_str(), &status) == 0 || errno != ENOENT;
}

void UnfinishedNote::settle() const {
    calls::unlink(file_.path().c_str());
}

void UnfinishedNote::leave() {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    if (!isTold_ && UniqueFd(calls::open(file_.path().c_str(), kFlags, 0600))) {
        file_.claim();
    }
    isTold_ = true;
}

void UnfinishedNote::keep() {
    file_.release();
}

bool holdsText(const std::wstring& path, std::string_view text) {
    const UniqueFd file(calls::open(toNarrow(path).c_str(),
                                    O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    return file && calls::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_size == static_cast<off_t>(text.size()) &&
           readBeginning(file.get(), text.size()) == text;
}

bool removeUnfinished(const std::wstring& target) {
    const std::string path = toNarrow(target + paths::kTemporary);
    const UniqueFd file(calls::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) {
        return errno == ENOENT;
    }
    if (calls::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK;
    }
    errno = 0;  // and stays so where the name is another file's by now
    if (isNamed(file.get(), path)) {
        calls::unlink(path.c_str());
    }
    return errno == 0 || errno == ENOENT;
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
    if (unfinishedNote != nullptr) {
        unfinishedNote->leave();
    }
    file_ = openAndLock(temporary_.path().c_str());
    if (!file_) {
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
    if (firstError_ == 0 && !writeFully(file_.get(), buffer_)) {
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
    return calls::fchmod(file_.get(), status.st_mode & 07777U) == 0;
}

bool WholeFile::commit() {
    if (!file_ || !flush() || !keepPermissionsOfTarget() ||
        calls::rename(temporary_.path().c_str(), targetBytes_.c_str()) != 0) {
        const int error = errno;
        temporary_.remove();
        closeAndForget();
        errno = error;
        return false;
    }
    temporary_.release();
    closeAndForget();
    return true;
}

void WholeFile::closeAndForget() {
    file_.reset();
    buffer_.clear();
}

}  // namespace rcp
