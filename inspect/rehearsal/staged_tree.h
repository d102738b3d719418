// A tree that lies below a folder for the time being, as a package's or an image's does, with the paths
// that it will have. What it does not hold is the running system's:
//
//   path --> below the folder, if it is there or is the tree's alone
//     '----> the path itself
//
// The tree's alone are the installation that is looked at and the settings in /etc: that they lie on the
// machine that makes the package says nothing about the one that gets it.
#pragma once

#include "inspect/rehearsal/changed_tree.h"

#include <string>
#include <vector>

namespace rcp::inspect {

/// From here on paths are those of the tree below `folder`. False when that is no folder.
bool stage(const std::string& folder);
/// From here on what lies below `path` is the tree's alone.
void stageAlone(const std::string& path);

/// For a while paths are the running system's again.
class Unstaged {
  public:
    Unstaged();
    Unstaged(const Unstaged&) = delete;
    Unstaged& operator=(const Unstaged&) = delete;
    Unstaged(Unstaged&&) = delete;
    Unstaged& operator=(Unstaged&&) = delete;
    ~Unstaged();

  private:
    std::string folder_;
};

/// Where that really lies, or would lie, which `path` names; empty, which no call takes for a path, when
/// there is no way there. Without a tree that is `path`.
std::string placeOf(const std::string& path, LastLink last = LastLink::kFollowed);
/// The path, without links and dots, of what really lies at `place`.
std::string pathOfPlace(const std::string& place);
/// Whether the tree itself holds what `path` leads to; without a tree, whether it is there.
bool isStaged(const std::string& path);

/// placeOf() a path that leads through no link and no dots; the root's is empty.
std::string placeOfPlain(const std::string& path);
/// The folders whose entries together are those of the folder at `place`.
std::vector<std::string> layersOf(const std::string& place);

}  // namespace rcp::inspect
