// The files of two installations, compared by what they hold.
#pragma once

#include <string>
#include <vector>

namespace rcp::inspect {

struct FileDifference {
    enum class Kind { kRemoved, kAdded, kChanged, kBecameLink, kBecameFile, kUnreadable };
    Kind kind;
    std::string path;  // below the installation

    bool operator==(const FileDifference&) const = default;
};

/// An installation's folder, and by absolute paths what of it is not compared.
struct Tree {
    std::string path;
    std::vector<std::string> without;   // none of its files, with all below
    std::vector<std::string> settings;  // of which it counts alone whether they are there
    std::string place = path;           // where it really lies
};

/// By path: the files and links of which only one installation has one of that path, or another; and the files and
/// folders that cannot be read in either. What is not compared in one is not in the other. That a text names the
/// installation's own folder is no difference. What became a link is told even if it leads to the same content: another
/// package may bring that, and change it, as a link is told that leads elsewhere.
std::vector<FileDifference> differingFiles(const Tree& first, const Tree& second);

/// A text as it would be if the installation at `home` lay elsewhere.
std::string withoutHome(std::string text, const std::string& home);

}  // namespace rcp::inspect
