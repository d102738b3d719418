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
#include <optional>
#include <set>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

// What is longer is no text that an installer writes its folder into.
constexpr std::uintmax_t kLongestText = std::uintmax_t{1} << 20U;

struct Entry {
    bool isLink = false;
    std::uintmax_t size = 0;
};
using Names = std::set<std::string>;  // below an installation

struct Inventory {
    std::map<std::string, Entry> files;
    Names closed;  // folders that cannot be read; the installation's own is "."

    [[nodiscard]] bool isUnknown(const std::string& path) const {
        return std::any_of(closed.begin(), closed.end(), [&](const std::string& folder) {
            return folder == "." || path.starts_with(folder + "/");
        });
    }
};

// Whether a name that ends there goes on, so that it is another.
bool goesOn(const std::string& text, std::size_t at) {
    return at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) != 0 ||
                                std::string_view("-_.").find(text[at]) != std::string_view::npos);
}

// One of the two may have ended before it knew its own.
Names namesIn(const Tree& first, const Tree& second, std::vector<std::string> Tree::*paths) {
    Names names;
    for (const Tree* tree : {&first, &second}) {
        for (const std::string& path : tree->*paths) {
            if (path.starts_with(tree->path + "/")) {
                names.insert(path.substr(tree->path.size() + 1));
            }
        }
    }
    return names;
}

bool isAllowed(const Tree& tree, const std::string& path, int access) {
    return faccessat(AT_FDCWD, (tree.place + "/" + path).c_str(), access, AT_EACCESS) == 0;
}

Inventory inventoryOf(const Tree& tree, const Names& without) {
    Inventory inventory;
    if (!isAllowed(tree, ".", R_OK)) {
        inventory.closed.insert(".");
    }
    std::error_code refused;
    files::recursive_directory_iterator at(
        tree.place, files::directory_options::skip_permission_denied, refused);
    for (const files::recursive_directory_iterator end; !refused && at != end;
         at.increment(refused)) {
        const std::string name = at->path().string().substr(tree.place.size() + 1);
        std::error_code gone;
        const bool isLink = at->is_symlink(gone);
        if (without.contains(name)) {
            at.disable_recursion_pending();
        } else if (isLink || at->is_regular_file(gone)) {
            inventory.files[name] = {isLink, isLink ? 0 : at->file_size(gone)};
        } else if (at->is_directory(gone) && !isAllowed(tree, name, R_OK | X_OK)) {
            inventory.closed.insert(name);
            at.disable_recursion_pending();
        }
    }
    return inventory;
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

// Of what both have; none when it is the same.
std::optional<FileDifference::Kind> differenceOf(const std::string& path, const Entry& ours,
                                                 const Entry& theirs, const Tree& left,
                                                 const Tree& right) {
    using enum FileDifference::Kind;
    const std::string first = left.place + "/" + path;
    const std::string second = right.place + "/" + path;
    if (ours.isLink != theirs.isLink) {
        return ours.isLink ? kBecameFile : kBecameLink;
    }
    if (!ours.isLink && !(isAllowed(left, path, R_OK) && isAllowed(right, path, R_OK))) {
        return kUnreadable;
    }
    const bool isSame = ours.isLink ? isSameTarget(first, second, left, right)
                                    : (ours.size == theirs.size && isSameContent(first, second)) ||
                                          (std::max(ours.size, theirs.size) <= kLongestText &&
                                           isSameText(first, second, left, right));
    return isSame ? std::nullopt : std::optional(kChanged);
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
    const Names without = namesIn(first, second, &Tree::without);
    const Names settings = namesIn(first, second, &Tree::settings);
    const Inventory ours = inventoryOf(first, without);
    const Inventory theirs = inventoryOf(second, without);
    for (const auto& [path, entry] : ours.files) {
        const auto other = theirs.files.find(path);
        if (other != theirs.files.end()) {
            if (const auto kind = differenceOf(path, entry, other->second, first, second);
                kind &&
                (*kind == kBecameLink || *kind == kBecameFile || !settings.contains(path))) {
                differences.push_back({*kind, path});
            }
        } else if (!theirs.isUnknown(path)) {
            differences.push_back({kRemoved, path});
        }
    }
    for (const auto& [path, entry] : theirs.files) {
        if (!ours.files.contains(path) && !ours.isUnknown(path)) {
            differences.push_back({kAdded, path});
        }
    }
    Names closed = ours.closed;
    closed.insert(theirs.closed.begin(), theirs.closed.end());
    for (const std::string& folder : closed) {
        differences.push_back({kUnreadable, folder});
    }
    std::sort(differences.begin(), differences.end(),
              [](const auto& left, const auto& right) { return left.path < right.path; });
    return differences;
}

}  // namespace rcp::inspect
