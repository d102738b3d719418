#include "platform/removal.h"

#include "diagnostics/svc_debug.h"
#include "platform/text.h"
#include "system/system_calls.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>
#include <vector>

namespace rcp {
namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

// One line of the failures' text; the system's reason is that of the current errno.
void addFailure(std::string& errors, const std::string& indentation, std::string_view what,
                const std::string& path) {
    std::string reason;
    GetLastErrorMsg(reason);
    errors += indentation;
    errors += what;
    errors += path;
    errors += "  - ";
    errors += reason;
    errors += '\n';
}

Directory openDirectory(const std::string& path) {
    const int descriptor =
        calls::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    Directory directory(fdopendir(descriptor));
    if (!directory) {
        const int savedErrno = errno;
        close(descriptor);
        errno = savedErrno;
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

bool isLink(const std::string& path) {
    struct stat status {};
    return calls::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// Removes one entry; false, with a line added, when that failed.
bool removeEntry(const std::string& path, std::string_view name, const std::string& pattern,
                 std::string& errors, const std::string& indentation) {
    struct stat status {};
    if (calls::stat(path.c_str(), &status) != 0) {
        addFailure(errors, indentation, "Can't stat ", path);
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        if (!isLink(path)) {
            // Its failures show here through the rmdir below.
            removeDirectoryContents(path, pattern, errors, indentation + "  ");
        }
        if (calls::rmdir(path.c_str()) != 0) {
            addFailure(errors, indentation, "Can't delete dir ", path);
            return false;
        }
        return true;
    }
    if ((pattern == "*" || name.find(pattern) != std::string_view::npos) &&
        calls::unlink(path.c_str()) != 0) {
        addFailure(errors, indentation, "Can't delete file ", path);
        return false;
    }
    return true;
}

}  // namespace

bool removeDirectoryContents(const std::string& directory, const std::string& pattern,
                             std::string& errors, const std::string& indentation) {
    Directory open = openDirectory(directory);
    if (!open) {
        addFailure(errors, indentation, "Error in ", directory);
        return false;
    }
    std::vector<std::string> names;
    bool succeeded = collectNames(open.get(), names);
    if (!succeeded) {
        addFailure(errors, indentation, "readdir error ", directory);
    }
    open.reset();  // one open directory at a time, however deep the tree
    for (const std::string& name : names) {
        succeeded &= removeEntry(std::string(directory).append("/").append(name), name, pattern,
                                 errors, indentation);
    }
    return succeeded;
}

bool removeDirectoryContents(const std::string& directory, std::string& errors,
                             const std::string& indentation) {
    return removeDirectoryContents(directory, "*", errors, indentation);
}

bool removeDirectoryContents(const std::wstring& directory, std::wstring& errors) {
    std::string text;
    const bool succeeded = removeDirectoryContents(toNarrow(directory), text, "");
    errors = toWide(text);
    return succeeded;
}

bool removeFileWithPatternFromDirectory(const std::wstring& directory, const std::wstring& pattern,
                                        std::wstring& errors) {
    std::string text;
    const bool succeeded =
        removeDirectoryContents(toNarrow(directory), toNarrow(pattern), text, "");
    errors += toWide(text);
    return succeeded;
}

bool removeDirectoryAndContents(const std::wstring& directory, std::wstring& errors) {
    const std::string path = toNarrow(directory);
    std::string text;
    bool succeeded = removeDirectoryContents(path, text, "");
    if (calls::rmdir(path.c_str()) != 0) {
        addFailure(text, "", "Can't delete dir ", path);
        succeeded = false;
    }
    errors = toWide(text);
    return succeeded;
}

}  // namespace rcp
