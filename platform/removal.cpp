#include "platform/removal.h"

#include "base/system_calls.h"
#include "base/unique_fd.h"
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/text.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace rcp {
namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

// An entry of a directory that is open, and its path for people.
struct Entry {
    int directory = AT_FDCWD;
    std::string name;  // a path, as long as no directory is open
    std::string path;
};

Entry atPath(const std::string& path) {
    std::string trimmed = withoutTrailingSlashes(path);
    return {AT_FDCWD, trimmed, trimmed};
}

// Null, with errno set, also for a link in the directory's place.
Directory openDirectory(const Entry& entry) {
    UniqueFd opened(calls::openat(entry.directory, entry.name.c_str(),
                                  O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    Directory directory(opened ? fdopendir(opened.get()) : nullptr);
    if (directory) {
        (void)opened.release();  // the stream's from now on
    }
    return directory;
}

// The names in a directory but "." and "..". Collected before anything is deleted: what readdir(3)
// returns while entries go away is unspecified. False when reading ended with an error.
bool collectNames(DIR* directory, std::vector<std::string>& names) {
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(directory);
        if (entry == nullptr) {
            return errno == 0;
        }
        const std::string_view name = static_cast<const char*>(entry->d_name);
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
}

// Goes from each open directory to the next by one name, so that nothing which takes a directory's
// place meanwhile leads out of the tree.
class Removal {
  public:
    explicit Removal(const std::wstring& pattern = kEveryFile)
        : isEveryFile_(pattern == kEveryFile), pattern_(toNarrow(pattern)) {}

    [[nodiscard]] Removed ended(bool isComplete) const { return {isComplete, toWide(failures_)}; }

    // Each of them is false, with a line added, when something failed. The lines of a deeper level are
    // indented by two blanks more.
    bool empty(const Entry& directory, const std::string& indentation);
    bool removeTree(const Entry& directory) {
        const bool isEmptied = empty(directory, "");
        return removeDirectory(directory, "") && isEmptied;
    }
    // The system's reason is that of the current errno.
    bool fail(const std::string& indentation, std::string_view what, const std::string& path);

  private:
    bool remove(const Entry& entry, const std::string& indentation);
    bool removeDirectory(const Entry& entry, const std::string& indentation) {
        return calls::unlinkat(entry.directory, entry.name.c_str(), AT_REMOVEDIR) == 0 ||
               fail(indentation, "Can't delete dir ", entry.path);
    }
    [[nodiscard]] bool isMeant(const std::string& name) const {
        return isEveryFile_ || name.find(pattern_) != std::string::npos;
    }

    bool isEveryFile_;
    std::string pattern_;
    std::string failures_;
};

bool Removal::fail(const std::string& indentation, std::string_view what, const std::string& path) {
    const std::string reason = GetLastErrorMsg();
    failures_.append(indentation).append(what).append(path);
    failures_.append("  - ").append(reason).append("\n");
    return false;
}

bool Removal::empty(const Entry& directory, const std::string& indentation) {
    const Directory open = openDirectory(directory);
    if (!open) {
        return fail(indentation, "Error in ", directory.path);
    }
    std::vector<std::string> names;
    bool succeeded =
        collectNames(open.get(), names) || fail(indentation, "readdir error ", directory.path);
    for (const std::string& name : names) {
        succeeded &= remove({dirfd(open.get()), name, directory.path + "/" + name}, indentation);
    }
    return succeeded;
}

bool Removal::remove(const Entry& entry, const std::string& indentation) {
    struct stat status {};
    if (calls::fstatat(entry.directory, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return fail(indentation, "Can't stat ", entry.path);
    }
    if (S_ISDIR(status.st_mode)) {
        empty(entry, indentation + "  ");  // its failures show through the next line
        return removeDirectory(entry, indentation);
    }
    return !isMeant(entry.name) || calls::unlinkat(entry.directory, entry.name.c_str(), 0) == 0 ||
           fail(indentation, "Can't delete file ", entry.path);
}

}  // namespace

Removed removeDirectoryContents(const std::wstring& directory, const std::wstring& pattern) {
    Removal removal(pattern);
    return removal.ended(removal.empty(atPath(toNarrow(directory)), ""));
}

Removed removeDirectoryAndContents(const std::wstring& directory) {
    Removal removal;
    return removal.ended(removal.removeTree(atPath(toNarrow(directory))));
}

Removed removeDirectoryBelow(const std::wstring& folder, const std::wstring& directory) {
    Removal removal;
    std::string path = toNarrow(folder);
    std::string name = toNarrow(directory);
    // By this name through a link; a path that is no text of the locale is empty, and not the root.
    Directory open = openDirectory({AT_FDCWD, path.empty() ? path : path + "/.", path});
    for (std::size_t slash = 0; open && (slash = name.find('/')) != std::string::npos;) {
        path += "/" + name.substr(0, slash);
        open = openDirectory({dirfd(open.get()), name.substr(0, slash), path});
        name.erase(0, slash + 1);
    }
    return removal.ended(open ? removal.removeTree({dirfd(open.get()), name, path + "/" + name})
                              : removal.fail("", "Error in ", path));
}

}  // namespace rcp
