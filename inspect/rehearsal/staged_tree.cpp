#include "inspect/rehearsal/staged_tree.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace rcp::inspect {
namespace {

// Below /etc, but of the system whose programs and libraries the tree uses: what leads to them.
constexpr const char* kOfSystem[] = {"/etc/alternatives", "/etc/ld.so.cache"};

struct StagedTree {
    std::string folder;  // without links and dots; empty without a tree
    std::vector<std::string> alone{"/etc"};
};
StagedTree stagedTree;

bool isAtOrBelow(const std::string& path, const std::string& directory) {
    return path == directory || isBelow(path, directory);
}

bool isAlone(const std::string& path) {
    return std::any_of(stagedTree.alone.begin(), stagedTree.alone.end(),
                       [&](const std::string& folder) { return isBelow(path, folder); }) &&
           std::none_of(std::begin(kOfSystem), std::end(kOfSystem),
                        [&](const char* one) { return isAtOrBelow(path, one); });
}

bool liesAt(const std::string& place) {
    struct stat status {};
    return lstat(place.c_str(), &status) == 0;
}

}  // namespace

bool stage(const std::string& folder) {
    std::error_code failed;
    const std::string path = std::filesystem::canonical(folder, failed);
    stagedTree.folder = failed || path == "/" ? std::string() : path;
    return !failed && std::filesystem::is_directory(path, failed);
}

void stageAlone(const std::string& path) {
    stagedTree.alone.push_back(path);
}

Unstaged::Unstaged() : folder_(std::exchange(stagedTree.folder, {})) {}

Unstaged::~Unstaged() {
    stagedTree.folder = folder_;
}

std::string placeOfPlain(const std::string& path) {
    const std::string staged = stagedTree.folder + path;
    const bool isOfTree = !stagedTree.folder.empty() && (liesAt(staged) || isAlone(path));
    return isOfTree ? staged : path.empty() ? "/" : path;
}

std::string placeOf(const std::string& path, LastLink last) {
    if (stagedTree.folder.empty()) {
        return path;
    }
    const auto found = ChangedTree({}).find(path, path.ends_with('/') ? LastLink::kFollowed : last);
    return found ? placeOfPlain(found->path) : std::string();
}

std::string pathOfPlace(const std::string& place) {
    if (stagedTree.folder.empty() || !isAtOrBelow(place, stagedTree.folder)) {
        return place;
    }
    return place == stagedTree.folder ? "/" : place.substr(stagedTree.folder.size());
}

bool isStaged(const std::string& path) {
    const std::string place = placeOf(path);
    return isAtOrBelow(place, stagedTree.folder) && liesAt(place);
}

std::vector<std::string> layersOf(const std::string& place) {
    const std::string path = pathOfPlace(place);
    if (path == place || isAlone(path + "/")) {
        return {place};
    }
    std::error_code unknown;
    return std::filesystem::is_directory(path, unknown) ? std::vector{place, path}
                                                        : std::vector{place};
}

}  // namespace rcp::inspect
