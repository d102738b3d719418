// The files of two installations, compared by what they hold.
#pragma once

#include <string>
#include <vector>

namespace rcp::inspect {

struct FileDifference {
    enum class Kind { kRemoved, kAdded, kChanged, kBecameLink, kBecameFile };
    Kind kind;
    std::string path;  // below the installation

    bool operator==(const FileDifference&) const = default;
};

/// An installation's folder, and the folders and files in it that are none of its files.
struct Tree {
    std::string path;
    std::vector<std::string> without;  // absolute
    std::string place = path;          // where it really lies
};

/// By path: the files and links of which only one installation has one of that path, or another. That a text
/// names the installation's own folder is no difference. What became a link is told even if it leads to the same
/// content: another package may bring that, and change it, as a link is told that leads elsewhere.
std::vector<FileDifference> differingFiles(const Tree& first, const Tree& second);

/// A text as it would be if the installation at `home` lay elsewhere.
std::string withoutHome(std::string text, const std::string& home);

}  // namespace rcp::inspect
