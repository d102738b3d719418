#include "inspect/rehearsal/changed_tree.h"

#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"

#include <errno.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <tuple>
#include <utility>

namespace rcp::inspect {
namespace {

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

bool linkStatus(const std::string& place, struct stat& status) {
    return !place.empty() && lstat(place.c_str(), &status) == 0;
}

std::string contentOf(const std::string& place) {
    return readPlace(place, kLongestSettings);
}

std::string targetOf(const std::string& link) {
    std::error_code ignored;
    return std::filesystem::read_symlink(link, ignored).string();
}

// Whether what was written is as it was.
bool isSame(const std::string& now, const std::string& before) {
    struct stat one {};
    struct stat other {};
    if (!linkStatus(now, one) || !linkStatus(before, other) || one.st_mode != other.st_mode) {
        return false;
    }
    if (S_ISLNK(one.st_mode)) {
        return targetOf(now) == targetOf(before);
    }
    return S_ISDIR(one.st_mode) ||
           (one.st_size == other.st_size && contentOf(now) == contentOf(before));
}

}  // namespace

bool isBelow(const std::string& path, const std::string& directory) {
    return path.starts_with(directory) && path.size() > directory.size() &&
           path[directory.size()] == '/';
}

// --- Looking ----------------------------------------------------------------------------------------

std::string ChangedTree::placeAt(const std::string& path) const {
    for (std::string known = path; !known.empty(); known = parentOf(known)) {
        const auto node = nodes_.find(known);
        if (node != nodes_.end()) {
            return node->second.kind == Node::Kind::kRemoved
                       ? std::string()
                       : node->second.place + path.substr(known.size());
        }
    }
    return placeOfPlain(path);
}

std::string ChangedTree::placeOfParent(const Found& entry) const {
    return placeAt(parentOf(entry.path));
}

std::map<std::string, std::string> ChangedTree::entries(const Found& directory) const {
    std::map<std::string, std::string> found;
    const auto add = [&](const std::string& name) {
        const std::string place = placeAt(directory.path + "/" + name);
        if (!place.empty()) {
            found[name] = place;
        }
    };
    std::error_code ignored;
    for (const std::string& layer : layersOf(directory.place)) {
        for (const auto& entry : std::filesystem::directory_iterator(layer, ignored)) {
            add(entry.path().filename().string());
        }
    }
    for (const auto& [path, node] : nodes_) {
        if (parentOf(path) == directory.path) {
            add(path.substr(directory.path.size() + 1));
        }
    }
    return found;
}

bool ChangedTree::isListChanged(const Found& directory) const {
    const auto isIn = [&](const auto& node) { return parentOf(node.first) == directory.path; };
    return layersOf(directory.place).size() > 1 || std::any_of(nodes_.begin(), nodes_.end(), isIn);
}

dev_t ChangedTree::deviceOf(std::string path) const {
    while (isOwn(placeAt(path))) {
        path = parentOf(path);
    }
    struct stat status {};
    return linkStatus(placeAt(path), status) ? status.st_dev : 0;
}

// --- Changing ---------------------------------------------------------------------------------------

std::string ChangedTree::newPlace() {
    return folder_ + "/" + std::to_string(++count_);
}

bool ChangedTree::isOwn(const std::string& place) const {
    return isBelow(place, folder_);
}

// The name of what is really there, whatever has moved.
std::string ChangedTree::originOf(const Found& entry) const {
    for (std::string known = entry.path; !known.empty(); known = parentOf(known)) {
        const auto node = nodes_.find(known);
        if (node != nodes_.end() && node->second.kind == Node::Kind::kElsewhere) {
            return node->second.origin + entry.path.substr(known.size());
        }
    }
    return entry.name;
}

void ChangedTree::put(const Found& entry, const std::string& place) {
    const auto node = nodes_.find(entry.path);
    if (node != nodes_.end() && node->second.kind == Node::Kind::kElsewhere) {
        removed_[entry.place] = node->second.origin;  // it has moved, and is another one now
    }
    nodes_[entry.path] = {Node::Kind::kCopy, place, entry.name, {}};
}

void ChangedTree::markRemoved(const std::string& path) {
    std::erase_if(nodes_, [&](const auto& node) { return isBelow(node.first, path); });
    nodes_[path] = {};
}

// What really is there will not be any more, a copy of it having been made or not.
void ChangedTree::noteGone(const Found& entry) {
    const std::string place = isOwn(entry.place) ? formerPlace(entry.path) : entry.place;
    if (!place.empty()) {
        removed_.try_emplace(place, originOf(entry));
    }
}

void ChangedTree::remove(const Found& entry) {
    noteGone(entry);
    markRemoved(entry.path);
}

void ChangedTree::move(const Found& source, const Found& target) {
    Node moved{Node::Kind::kElsewhere, source.place, {}, originOf(source)};
    const auto own = nodes_.find(source.path);
    if (own != nodes_.end()) {
        moved = own->second;
    }
    if (moved.kind == Node::Kind::kCopy) {
        noteGone(source);
    }
    moved.name = target.name;
    Nodes below;
    for (const auto& [path, node] : nodes_) {
        if (isBelow(path, source.path)) {
            const std::string rest = path.substr(source.path.size());
            Node& copy = below[target.path + rest] = node;
            copy.name = target.name + rest;
        }
    }
    markRemoved(source.path);
    markRemoved(target.path);
    nodes_.merge(below);
    nodes_[target.path] = moved;
}

void ChangedTree::hide(const Found& entry) {
    markRemoved(entry.path);
}

// --- What has changed -------------------------------------------------------------------------------

// Where in the tree that which really lies at `place` is, once what moves has moved.
std::string ChangedTree::laterPath(const std::string& place) const {
    std::string later = pathOfPlace(place);
    std::size_t longest = 0;
    for (const auto& [path, node] : nodes_) {
        const bool holds = node.kind == Node::Kind::kElsewhere &&
                           (place == node.place || isBelow(place, node.place));
        if (holds && node.place.size() > longest) {
            longest = node.place.size();
            later = path + place.substr(longest);
        }
    }
    return later;
}

// Where that really lies which is at `path` if nothing is written there; empty without one.
std::string ChangedTree::formerPlace(const std::string& path) const {
    std::string place = placeOfPlain(path);
    for (std::string known = parentOf(path); !known.empty(); known = parentOf(known)) {
        const auto node = nodes_.find(known);
        if (node != nodes_.end()) {
            if (node->second.kind == Node::Kind::kElsewhere) {
                place = node->second.place + path.substr(known.size());
            }
            break;
        }
    }
    struct stat status {};
    return laterPath(place) == path && linkStatus(place, status) ? place : std::string();
}

void ChangedTree::addPresent(std::vector<FileChange>& changes) const {
    for (const auto& [path, node] : nodes_) {
        struct stat status {};
        if (node.kind == Node::Kind::kRemoved || !linkStatus(node.place, status)) {
            continue;
        }
        FileChange change;
        change.isDirectory = S_ISDIR(status.st_mode);
        change.isLink = S_ISLNK(status.st_mode);
        if (node.kind == Node::Kind::kElsewhere) {
            if (node.place == placeOfPlain(path)) {
                continue;  // moved away and back
            }
            change.kind = FileChange::Kind::kMoved;
            change.path = pathOfPlace(node.place);
            change.to = path;
            change.name = node.origin;
            change.toName = node.name;
        } else {
            const std::string former = formerPlace(path);
            if (isSame(node.place, former)) {
                continue;
            }
            change.kind = former.empty() ? FileChange::Kind::kMade : FileChange::Kind::kReplaced;
            change.path = path;
            change.name = node.name;
        }
        changes.push_back(std::move(change));
    }
}

void ChangedTree::addRemoved(std::vector<FileChange>& changes) const {
    std::set<std::string> gone;
    for (const auto& [place, name] : removed_) {
        const std::string later = laterPath(place);
        const auto node = nodes_.find(later);
        const bool isReplaced = node != nodes_.end() && node->second.kind == Node::Kind::kCopy &&
                                formerPlace(later) == place;
        struct stat status {};
        if (isReplaced || !linkStatus(place, status)) {
            continue;
        }
        gone.insert(place);
        if (!gone.contains(parentOf(place))) {
            FileChange change;
            change.kind = FileChange::Kind::kRemoved;
            change.path = pathOfPlace(place);
            change.name = name;
            change.isDirectory = S_ISDIR(status.st_mode);
            change.isLink = S_ISLNK(status.st_mode);
            changes.push_back(std::move(change));
        }
    }
}

std::vector<FileChange> ChangedTree::changes() const {
    std::vector<FileChange> changes;
    addPresent(changes);
    addRemoved(changes);
    std::sort(changes.begin(), changes.end(), [](const FileChange& one, const FileChange& other) {
        return std::tie(one.name, one.kind) < std::tie(other.name, other.kind);
    });
    return changes;
}

}  // namespace rcp::inspect
