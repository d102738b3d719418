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

std::nullopt_t failWith(int error) {
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
        text += element == "." ? "" : "/" + element;
    }
    return text;
}

std::string linkTarget(const std::string& place) {
    std::error_code ignored;
    return std::filesystem::read_symlink(place, ignored).string();
}

}  // namespace

std::optional<Found> ChangedTree::find(const std::string& name, LastLink last) const {
    if (name.empty() || name.size() >= PATH_MAX) {
        return failWith(name.empty() ? ENOENT : ENAMETOOLONG);
    }
    const Elements all = split(name);
    Elements elements = all;
    Found found;
    found.hasSlash = endsInSlash(name);
    found.endsInDots = all.empty() || isDots(all.back());
    std::string at = name.front() == '/' ? std::string() : currentDirectory();
    int links = 0;
    bool isLinkFollowed = false;  // at the end
    while (!elements.empty()) {
        const std::string element = std::move(elements.front());
        elements.pop_front();
        const std::string directory = placeAt(at);
        if (faccessat(AT_FDCWD, directory.c_str(), X_OK, AT_EACCESS) != 0) {
            return std::nullopt;
        }
        if (isDots(element)) {
            at = element == "." ? at : at.substr(0, at.empty() ? 0 : at.rfind('/'));
            continue;
        }
        if (element.size() > NAME_MAX) {
            return failWith(ENAMETOOLONG);
        }
        const std::string child = at + "/" + element;
        const std::string place = placeAt(child);
        struct stat status {};
        if (lstat(place.c_str(), &status) != 0) {
            if (errno != ENOENT || !elements.empty()) {
                return std::nullopt;
            }
            found.path = child;
            found.name = isLinkFollowed ? child : readableName(name, all, child);
            return found;
        }
        const bool isLast = elements.empty();
        if (S_ISLNK(status.st_mode) && (!isLast || last == LastLink::kFollowed)) {
            const std::string target = linkTarget(place);
            if (++links > kMostLinks || target.empty()) {
                return failWith(target.empty() ? ENOENT : ELOOP);
            }
            const Elements further = split(target);
            elements.insert(elements.begin(), further.begin(), further.end());
            at = target.front() == '/' ? std::string() : at;
            found.hasSlash |= isLast && endsInSlash(target);
            isLinkFollowed |= isLast;
            continue;
        }
        if (!isLast && !S_ISDIR(status.st_mode)) {
            return failWith(ENOTDIR);
        }
        at = child;
    }
    found.path = at;
    found.place = placeAt(at);
    found.isThere = lstat(found.place.c_str(), &found.status) == 0;
    if (!found.isThere) {
        return std::nullopt;
    }
    if (found.hasSlash && last == LastLink::kFollowed && !found.isDirectory()) {
        return failWith(ENOTDIR);
    }
    found.name = isLinkFollowed ? at : readableName(name, all, at);
    return found;
}

}  // namespace rcp::inspect
