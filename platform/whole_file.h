// Files that appear whole or not at all. The content is written under a temporary name beside the
// target and renamed over it as the last step, so a launch that is killed or runs out of disk
// leaves the old file (or none), never half of one.
//
// The temporary name is always the same, target + suffix. What a killed launch left under it is
// therefore taken over by the next one instead of piling up. Two launchers that write the same file
// take turns: each locks the temporary file before it touches it. A launch that ends by itself, by
// a fatal error too, leaves no temporary name behind; one that runs out of memory leaves it like a
// killed one.
#pragma once

#include "base/unique_fd.h"
#include "launcher/vocabulary/paths.h"

#include <string>
#include <string_view>
#include <utility>

namespace rcp {

/// A name in the file system that is removed when this object ends.
class TemporaryName {
  public:
    explicit TemporaryName(std::string path) : path_(std::move(path)) {}
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;
    TemporaryName(TemporaryName&&) = delete;
    TemporaryName& operator=(TemporaryName&&) = delete;
    ~TemporaryName() { remove(); }

    /// From now on the name is ours to remove.
    void claim() { isClaimed_ = true; }
    /// The name is somebody else's from now on (it was renamed).
    void release() { isClaimed_ = false; }
    /// Removes the name if it is claimed.
    void remove();
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
    bool isClaimed_ = false;
};

/// Tells whoever comes next that temporary names may be left: an empty file that stands from before the
/// first of this process is made until this object ends. Without it every launch would have to look for
/// each name, and there is hardly ever one. One at a time.
class UnfinishedNote {
  public:
    explicit UnfinishedNote(std::string path);
    UnfinishedNote(const UnfinishedNote&) = delete;
    UnfinishedNote& operator=(const UnfinishedNote&) = delete;
    UnfinishedNote(UnfinishedNote&&) = delete;
    UnfinishedNote& operator=(UnfinishedNote&&) = delete;
    /// Removes the file if this object has made it: that of a killed launch stays until somebody has
    /// removed what that launch left.
    ~UnfinishedNote();

    /// Whether somebody else's stands there, or that cannot be told.
    [[nodiscard]] bool isLeft() const;
    /// Removes that of somebody else.
    void settle() const;
    /// Makes the file unless it stands. Failure is nobody's concern: a name that is left then goes when the
    /// same file is written again.
    void leave();
    /// The file stays for the next launch: a name could be neither used nor removed.
    void keep();

  private:
    TemporaryName file_;
    bool isTold_ = false;
};

/// Whether the file at `path`, itself and not through a link, holds exactly `text`. What is there
/// already need not be written again: replacing a file is the dearest thing a launch does.
bool holdsText(const std::wstring& path, std::string_view text);

/// Removes what a killed launch left under the temporary name of `target`. True when it is gone, or the
/// name is that of another launcher, which is writing just now.
bool removeUnfinished(const std::wstring& target);

class WholeFile {
  public:
    explicit WholeFile(std::wstring target, const std::wstring& suffix = paths::kTemporary);
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;
    WholeFile(WholeFile&&) = delete;
    WholeFile& operator=(WholeFile&&) = delete;
    /// Removes the temporary file unless it was committed.
    ~WholeFile();

    /// Opens the temporary file, empty. False, with errno set, when that fails or the target is a
    /// directory.
    bool open();
    /// Appends bytes. False, with errno set, when they cannot be written; commit then fails too.
    bool write(std::string_view bytes);
    /// Writes what is left and puts the file in place, with the permissions of the file it replaces
    /// (a new one gets 0666 less the umask). False, with errno set, when any write or the rename
    /// failed; the target is then untouched.
    bool commit();

  private:
    bool flush();
    bool keepPermissionsOfTarget() const;
    void closeAndForget();

    std::wstring target_;
    std::string targetBytes_;
    TemporaryName temporary_;
    std::string buffer_;
    UniqueFd file_;
    int firstError_ = 0;
};

}  // namespace rcp
