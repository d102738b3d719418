#include "inspect/diff/inventory.h"

#include "base/unique_fd.h"
#include "inspect/quiet_read.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <map>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

// What is longer is no text that an installer writes its folder into.
constexpr std::uintmax_t kLongestText = std::uintmax_t{1} << 20U;

struct Entry {
    bool isLink = false;
    std::uintmax_t size = 0;
};
using Entries = std::map<std::string, Entry>;

// Whether a name that ends there goes on, so that it is another.
bool goesOn(const std::string& text, std::size_t at) {
    return at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) != 0 ||
                                std::string_view("-_.").find(text[at]) != std::string_view::npos);
}

bool isLeftOut(const Tree& tree, const std::string& path) {
    return std::find(tree.without.begin(), tree.without.end(), path) != tree.without.end();
}

Entries entriesOf(const Tree& tree) {
    Entries entries;
    std::error_code refused;
    files::recursive_directory_iterator at(
        tree.place, files::directory_options::skip_permission_denied, refused);
    for (const files::recursive_directory_iterator end; !refused && at != end;
         at.increment(refused)) {
        const std::string name = at->path().string().substr(tree.place.size() + 1);
        std::error_code gone;
        const bool isLink = at->is_symlink(gone);
        if (isLeftOut(tree, tree.path + "/" + name)) {
            at.disable_recursion_pending();
        } else if (isLink || at->is_regular_file(gone)) {
            entries[name] = {isLink, isLink ? 0 : at->file_size(gone)};
        }
    }
    return entries;
}

bool isSameTarget(const std::string& first, const std::string& second, const Tree& left,
                  const Tree& right) {
    std::error_code refused;
    return withoutHome(files::read_symlink(first, refused), left.path) ==
           withoutHome(files::read_symlink(second, refused), right.path);
}

std::string_view block(const UniqueFd& file, std::array<char, 65536>& buffer) {
    const ssize_t length = file ? read(file.get(), buffer.data(), buffer.size()) : -1;
    return {buffer.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

bool isSameContent(const std::string& first, const std::string& second) {
    constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const UniqueFd left(openQuietly(first, kFlags));
    const UniqueFd right(openQuietly(second, kFlags));
    std::array<char, 65536> leftBuffer;
    std::array<char, 65536> rightBuffer;
    while (true) {
        const std::string_view ours = block(left, leftBuffer);
        if (ours != block(right, rightBuffer)) {
            return false;
        }
        if (ours.empty()) {
            return static_cast<bool>(left) == static_cast<bool>(right);
        }
    }
}

bool isSameText(const std::string& first, const std::string& second, const Tree& left,
                const Tree& right) {
    return withoutHome(readPlace(first), left.path) == withoutHome(readPlace(second), right.path);
}

// Of two links or two files.
bool isSame(const std::string& path, const Entry& ours, const Entry& theirs, const Tree& left,
            const Tree& right) {
    const std::string first = left.place + "/" + path;
    const std::string second = right.place + "/" + path;
    if (ours.isLink) {
        return isSameTarget(first, second, left, right);
    }
    if (ours.size == theirs.size && isSameContent(first, second)) {
        return true;
    }
    return std::max(ours.size, theirs.size) <= kLongestText &&
           isSameText(first, second, left, right);
}

}  // namespace

std::string withoutHome(std::string text, const std::string& home) {
    constexpr std::string_view kPlaceholder = "${rcp.home}";
    for (std::size_t at = home.empty() ? std::string::npos : text.find(home);
         at != std::string::npos; at = text.find(home, at)) {
        if (goesOn(text, at + home.size())) {
            at += home.size();
        } else {
            text.replace(at, home.size(), kPlaceholder);
            at += kPlaceholder.size();
        }
    }
    return text;
}

std::vector<FileDifference> differingFiles(const Tree& first, const Tree& second) {
    using enum FileDifference::Kind;
    std::vector<FileDifference> differences;
    const Entries ours = entriesOf(first);
    const Entries theirs = entriesOf(second);
    for (const auto& [path, entry] : ours) {
        const auto other = theirs.find(path);
        if (other == theirs.end()) {
            differences.push_back({kRemoved, path});
        } else if (entry.isLink != other->second.isLink) {
            differences.push_back({entry.isLink ? kBecameFile : kBecameLink, path});
        } else if (!isSame(path, entry, other->second, first, second)) {
            differences.push_back({kChanged, path});
        }
    }
    for (const auto& [path, entry] : theirs) {
        if (!ours.contains(path)) {
            differences.push_back({kAdded, path});
        }
    }
    std::sort(differences.begin(), differences.end(),
              [](const auto& left, const auto& right) { return left.path < right.path; });
    return differences;
}

}  // namespace rcp::inspect
