// A rehearsal: file calls that change nothing. What they would change is kept beside the real tree,
// and every later call sees it, so the launcher's own functions run as in a launch. A file is copied
// when it is opened for writing.
#pragma once

#include "base/system_calls.h"
#include "inspect/rehearsal/changed_tree.h"

#include <map>
#include <string>
#include <vector>

namespace rcp::inspect {

class Rehearsal {
  public:
    /// From here on the file calls of this process change nothing but `folder`, which is empty and
    /// the caller's to remove. One rehearsal at a time.
    explicit Rehearsal(std::string folder);
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;
    Rehearsal(Rehearsal&&) = delete;
    Rehearsal& operator=(Rehearsal&&) = delete;
    /// The file calls are real again.
    ~Rehearsal();

    /// What the launch would leave behind, in order of path. A file that was written as it stood is
    /// no change.
    [[nodiscard]] std::vector<FileChange> changes() const { return tree_.changes(); }
    /// From now on there is nothing at `path`.
    void hide(const std::string& path);

    // The calls themselves; base/system_calls.h tells what each does.
    int open(const std::string& path, int flags, unsigned mode);
    /// What `path` means for a call that starts from an open directory.
    [[nodiscard]] std::string pathFrom(int directory, const std::string& path) const;
    int makeDirectory(const std::string& path, unsigned mode);
    int rename(const std::string& source, const std::string& target);
    int unlink(const std::string& path);
    int removeDirectory(const std::string& path);
    int symlink(const std::string& target, const std::string& path);
    /// Where what a path leads to is really found; empty, with errno set, when there is nothing.
    [[nodiscard]] std::string placeOf(const std::string& path,
                                      LastLink last = LastLink::kFollowed) const;
    /// The path without links and dots; empty, with errno set, when it leads to nothing.
    [[nodiscard]] std::string resolved(const std::string& path) const;

  private:
    [[nodiscard]] bool mayAdd(const Found& entry) const;
    [[nodiscard]] bool mayRemove(const Found& entry, bool asDirectory) const;
    [[nodiscard]] bool mayMove(const Found& source, const Found& target) const;
    int openFound(const Found& file, int flags);
    int openForWriting(const Found& file, int flags);
    int openNew(const Found& file, int flags, unsigned mode);
    int openDirectory(const Found& directory, int flags);
    std::string copyUp(const Found& file);

    ChangedTree tree_;
    InstalledCalls calls_;
    std::map<int, std::string> directories_;  // those that were opened, by descriptor
};

/// The one that is at work; null while file calls are real.
Rehearsal* currentRehearsal();

}  // namespace rcp::inspect
