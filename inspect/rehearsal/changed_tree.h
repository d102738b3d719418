// The tree of files as a rehearsed launch sees it: the real one, with changes that are kept beside
// it.
//
//   path --> the longest part of it that a change is known of --> removed       no such file
//     |                                                        |-> moved here   where it really is
//     |                                                        '-> written      its copy
//     '----- none ------------------------------------------------------------> the path itself
//
// Paths in here lead through no link and no dots, and the root's is empty: what one launch names in
// two ways is one file.
#pragma once

#include <sys/stat.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace rcp::inspect {

bool isBelow(const std::string& path, const std::string& directory);

/// Of all changes of one launch: what is removed goes first, then what moves is moved, each by the
/// longest path that it has a move for, then the rest is made or replaced.
struct FileChange {
    enum class Kind { kRemoved, kMoved, kReplaced, kMade };
    Kind kind = Kind::kMade;
    std::string path;
    std::string to;      // kMoved: where it went
    std::string name;    // the path as the launch named it
    std::string toName;  // the same of `to`
    bool isDirectory = false;
    bool isLink = false;
};

/// What becomes of a link that a path ends in.
enum class LastLink { kFollowed, kKept };

/// What a path leads to, or an entry that could be made in a directory that is there.
struct Found {
    std::string path;   // in the tree
    std::string place;  // where it really is; empty for what is not there
    std::string name;   // as the launch named it
    struct stat status {};
    bool isThere = false;
    bool hasSlash = false;    // the name ended in one
    bool endsInDots = false;  // the name ended in "." or ".."
    [[nodiscard]] bool isDirectory() const { return isThere && S_ISDIR(status.st_mode); }
    [[nodiscard]] bool isLink() const { return isThere && S_ISLNK(status.st_mode); }
};

class ChangedTree {
  public:
    /// The changes are kept in `folder`, which is empty.
    explicit ChangedTree(std::string folder) : folder_(std::move(folder)) {}

    /// What `name` leads to; nothing, with errno set, when its directory cannot be come to.
    [[nodiscard]] std::optional<Found> find(const std::string& name, LastLink last) const;
    /// The directory that an entry lies in.
    [[nodiscard]] std::string placeOfParent(const Found& entry) const;
    /// The names in a directory with the places of what they name.
    [[nodiscard]] std::map<std::string, std::string> entries(const Found& directory) const;
    /// Whether the real directory does not list what the launch would find in it.
    [[nodiscard]] bool isListChanged(const Found& directory) const;
    /// The device that a directory is on, or would be.
    [[nodiscard]] dev_t deviceOf(std::string path) const;

    /// A name in the folder that is free.
    std::string newPlace();
    [[nodiscard]] bool isOwn(const std::string& place) const;

    /// From now on what lies at `place`, one of newPlace(), is found there.
    void put(const Found& entry, const std::string& place);
    void remove(const Found& entry);
    /// There is nothing at `target` any more.
    void move(const Found& source, const Found& target);
    /// As removed, but no change.
    void hide(const Found& entry);

    [[nodiscard]] std::vector<FileChange> changes() const;

  private:
    struct Node {
        enum class Kind { kRemoved, kCopy, kElsewhere };
        Kind kind = Kind::kRemoved;
        std::string place;   // where it really is
        std::string name;    // as the launch named it
        std::string origin;  // kElsewhere: the name of its place
    };
    using Nodes = std::map<std::string, Node>;

    [[nodiscard]] std::string placeAt(const std::string& path) const;
    [[nodiscard]] std::string originOf(const Found& entry) const;
    [[nodiscard]] std::string laterPath(const std::string& place) const;
    [[nodiscard]] std::string formerPlace(const std::string& path) const;
    void noteGone(const Found& entry);
    void markRemoved(const std::string& path);
    void addPresent(std::vector<FileChange>& changes) const;
    void addRemoved(std::vector<FileChange>& changes) const;

    std::string folder_;
    unsigned count_ = 0;
    Nodes nodes_;                                 // by path
    std::map<std::string, std::string> removed_;  // what is really there and would go: its name
};

}  // namespace rcp::inspect
