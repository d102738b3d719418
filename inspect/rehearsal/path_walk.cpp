// The way from a path's first element to its last, as the system goes it.
#include "inspect/rehearsal/changed_tree.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <filesystem>

namespace rcp::inspect {
namespace {

constexpr int kMostLinks = 40;  // path_resolution(7)

std::nullopt_t noPath(int error) {
    errno = error;
    return std::nullopt;
}

using Elements = std::deque<std::string>;

Elements split(const std::string& path) {
    Elements elements;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (end > at) {
            elements.push_back(path.substr(at, end - at));
        }
        at = end + 1;
    }
    return elements;
}

bool isDots(const std::string& element) {
    return element == "." || element == "..";
}

bool endsInSlash(const std::string& path) {
    return !path.empty() && path.back() == '/';
}

std::string currentDirectory() {
    std::error_code ignored;
    const std::string path = std::filesystem::current_path(ignored).string();
    return path == "/" ? std::string() : path;
}

// What people are told; a way through ".." is not to be seen in the letters.
std::string readableName(const std::string& name, const Elements& elements,
                         const std::string& path) {
    if (std::count(elements.begin(), elements.end(), "..") != 0) {
        return path;
    }
    std::string text = name.front() == '/' ? std::string() : currentDirectory();
    for (const std::string& element : elements) {
        if (element != ".") {
            text += '/';
            text += element;
        }
    }
    return text;
}

std::string linkTarget(const std::string& place) {
    std::error_code ignored;
    return std::filesystem::read_symlink(place, ignored).string();
}

// Where the way has come to, always a directory but at its end.
struct Way {
    Elements elements;  // still to go
    std::string at;
    int links = 0;
    bool isLastFollowed = false;  // the path's last element was a link
};

bool mayEnter(const std::string& place) {
    return faccessat(AT_FDCWD, place.c_str(), X_OK, AT_EACCESS) == 0;
}

// Goes on where the link at `place` leads; false, with errno set, when that is nowhere.
bool follow(const std::string& place, Way& way, bool& hasSlash) {
    const std::string target = linkTarget(place);
    if (++way.links > kMostLinks || target.empty()) {
        errno = target.empty() ? ENOENT : ELOOP;
        return false;
    }
    if (way.elements.empty()) {
        way.isLastFollowed = true;
        hasSlash |= endsInSlash(target);
    }
    const Elements further = split(target);
    way.elements.insert(way.elements.begin(), further.begin(), further.end());
    if (target.front() == '/') {
        way.at.clear();
    }
    return true;
}

}  // namespace

std::optional<Found> ChangedTree::find(const std::string& name, LastLink last) const {
    if (name.empty() || name.size() >= PATH_MAX) {
        return noPath(name.empty() ? ENOENT : ENAMETOOLONG);
    }
    const Elements all = split(name);
    Found found;
    found.hasSlash = endsInSlash(name);
    found.endsInDots = all.empty() || isDots(all.back());
    Way way{all, name.front() == '/' ? std::string() : currentDirectory()};
    while (!way.elements.empty()) {
        const std::string element = std::move(way.elements.front());
        way.elements.pop_front();
        if (!mayEnter(placeAt(way.at))) {
            return std::nullopt;
        }
        if (isDots(element)) {
            way.at.erase(element == "." || way.at.empty() ? way.at.size() : way.at.rfind('/'));
            continue;
        }
        if (element.size() > NAME_MAX) {
            return noPath(ENAMETOOLONG);
        }
        std::string child = way.at;
        child.append("/").append(element);
        const std::string place = placeAt(child);
        const bool isLast = way.elements.empty();
        struct stat status {};
        if (lstat(place.c_str(), &status) != 0) {
            if (errno != ENOENT || !isLast) {
                return std::nullopt;
            }
            found.path = child;
            found.name = way.isLastFollowed ? child : readableName(name, all, child);
            return found;
        }
        if (S_ISLNK(status.st_mode) && (!isLast || last == LastLink::kFollowed)) {
            if (!follow(place, way, found.hasSlash)) {
                return std::nullopt;
            }
        } else if (!isLast && !S_ISDIR(status.st_mode)) {
            return noPath(ENOTDIR);
        } else {
            way.at = child;
        }
    }
    found.path = way.at;
    found.place = placeAt(way.at);
    found.isThere = lstat(found.place.c_str(), &found.status) == 0;
    if (!found.isThere) {
        return std::nullopt;
    }
    if (found.hasSlash && last == LastLink::kFollowed && !found.isDirectory()) {
        return noPath(ENOTDIR);
    }
    found.name = way.isLastFollowed ? way.at : readableName(name, all, way.at);
    return found;
}

}  // namespace rcp::inspect
