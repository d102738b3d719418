#include "platform/files.h"

#include "base/system_calls.h"
#include "base/unique_fd.h"
#include "diagnostics/svc_debug.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

struct OpenMode {
    std::wstring_view name;
    const char* stream;  // the mode for fdopen(3)
    int flags;
};

constexpr OpenMode kOpenModes[] = {
    {L"r", "r", O_RDONLY},
    {L"rb", "rb", O_RDONLY},
    {L"r+", "r+", O_RDWR},
    {L"w", "w", O_WRONLY | O_CREAT | O_TRUNC},
    {L"w+", "w+", O_RDWR | O_CREAT | O_TRUNC},
    {L"a+", "a+", O_RDWR | O_CREAT | O_APPEND},
};

const OpenMode* findMode(std::wstring_view name) {
    for (const OpenMode& mode : kOpenModes) {
        if (mode.name == name) {
            return &mode;
        }
    }
    return nullptr;
}

struct FreeMemory {
    void operator()(char* memory) const { free(memory); }
};

// The size of a regular file; none, with errno set, for anything else.
std::optional<std::size_t> regularSize(int descriptor) {
    struct stat status {};
    if (calls::fstat(descriptor, &status) != 0) {
        return std::nullopt;
    }
    if (S_ISREG(status.st_mode)) {
        return static_cast<std::size_t>(status.st_size);
    }
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return std::nullopt;
}

// Non-blocking, so that a pipe without a writer answers at once.
UniqueFd openToRead(const std::string& path) {
    return UniqueFd(calls::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
}

// A file is read to the size that it had, without a read that finds nothing more; one that tells no size,
// as those of the process file system, to its end.
void readInto(FileText& text, int descriptor, std::size_t size, std::size_t most) {
    constexpr std::size_t kAtOnce = std::size_t{1}
                                    << 20;  // a size is a claim: memory follows what comes
    constexpr std::size_t kUnknown = 4096;
    const std::size_t atOnce = size == 0 ? kUnknown : kAtOnce;
    const std::size_t end = size == 0 ? most : std::min(size, most);
    std::size_t done = 0;
    while (done < end) {
        text.bytes.resize(done + std::min(end - done, atOnce));
        const ssize_t length =
            calls::read(descriptor, text.bytes.data() + done, text.bytes.size() - done);
        if (length == 0 || (length < 0 && errno != EINTR)) {
            text.error = length < 0 ? errno : 0;
            break;
        }
        done += length > 0 ? static_cast<std::size_t>(length) : 0;
    }
    text.bytes.resize(done);
}

Reason whyNoDirectory(const std::wstring& path, const PathMade& made) {
    if (made.error != 0) {
        const Reason reason = because(made.error);
        return made.failed == path ? reason : reason.at(made.failed);
    }
    return isLink(path) ? because("it is a symbolic link") : because(EEXIST);
}

}  // namespace

bool existsA(const std::string& path) {
    return static_cast<bool>(openToRead(path));
}

UniqueFd openExisting(const std::wstring& path) {
    return openToRead(toNarrow(path));
}

bool exists(const std::wstring& path) {
    return existsA(toNarrow(path));
}

bool isDirectory(const std::wstring& path) {
    struct stat status {};
    errno = 0;
    return calls::lstat(toNarrow(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isLink(const std::wstring& path) {
    struct stat status {};
    return calls::lstat(toNarrow(path).c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool isExecutable(const std::string& path) {
    struct stat status {};
    errno = 0;
    return calls::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IXUSR) != 0;
}

bool isExecutable(const std::wstring& path) {
    return isExecutable(toNarrow(path));
}

std::optional<std::string> resolvedPath(const std::string& path) {
    const std::unique_ptr<char, FreeMemory> resolved(calls::realpath(path.c_str()));
    return resolved ? std::optional<std::string>(resolved.get()) : std::nullopt;
}

bool isRoot(const std::string& path) {
    struct stat named {};
    struct stat root {};
    return calls::stat(path.c_str(), &named) == 0 && calls::stat("/", &root) == 0 &&
           named.st_ino == root.st_ino && named.st_dev == root.st_dev;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && (path.ends_with('/') || path.ends_with("/."))) {
        path.pop_back();
    }
    return path;
}

// Not the standard library's: its paths want macOS 10.15.
std::string lexicalPath(const std::string& path) {
    if (!path.starts_with('/')) {
        return path;
    }
    std::string result;
    for (std::size_t at = 0; at != std::string::npos;) {
        const std::size_t slash = path.find('/', at + 1);
        const std::string element = path.substr(at + 1, slash - at - 1);
        if (element == "..") {
            result.resize(result.empty() ? 0 : result.rfind('/'));
        } else if (!element.empty() && element != ".") {
            result += "/" + element;
        }
        at = slash;
    }
    return result.empty() ? "/" : result;
}

UniqueFd openRegular(const std::wstring& path, int flags) {
    UniqueFd file(
        calls::open(toNarrow(path).c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666));
    return file && !regularSize(file.get()) ? UniqueFd() : std::move(file);
}

Stream open_file(const std::wstring& path, const std::wstring& mode) {
    const OpenMode* openMode = findMode(mode);
    if (openMode == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    UniqueFd file = openRegular(path, openMode->flags);
    Stream stream(file ? fdopen(file.get(), openMode->stream) : nullptr);
    if (stream) {
        (void)file.release();  // the stream's from now on
    }
    return stream;
}

std::optional<FileText> textOf(const UniqueFd& file, std::size_t most) {
    const std::optional<std::size_t> size = regularSize(file.get());
    if (!size) {
        return std::nullopt;
    }
    FileText text;
    readInto(text, file.get(), *size, most);
    return text;
}

std::optional<FileText> readText(const std::wstring& path, std::size_t most) {
    const UniqueFd file = openExisting(path);
    return file ? textOf(file, most) : std::nullopt;
}

bool createDirectory(const std::wstring& path) {
    return calls::mkdir(toNarrow(path).c_str(), 0775) == 0;
}

PathMade mkdirs(const std::wstring& path) {
    PathMade made;
    std::wstring working = L"/";
    std::size_t at = 0;
    while (at < path.size()) {
        const std::size_t end = std::min(path.find_first_of(L"/\\", at), path.size());
        if (end > at) {
            working.append(path, at, end - at);
            made.isLastNew = createDirectory(working);
            if (!made.isLastNew && errno != EEXIST && made.error == 0) {
                made.error = errno;
                made.failed = working;
            }
            working += L'/';
        }
        at = end + 1;
    }
    return made;
}

void ensureDirectory(const std::wstring& path, Message<Text> message, const Origin& origin) {
    const PathMade made = mkdirs(path);
    if (!made && !isDirectory(path)) {
        fatal(whyNoDirectory(path, made).from(origin), message, path);
    }
}

bool moveFile(const std::wstring& source, const std::wstring& destination) {
    return calls::rename(toNarrow(source).c_str(), toNarrow(destination).c_str()) == 0;
}

bool deleteFile(const std::wstring& path) {
    return calls::unlink(toNarrow(path).c_str()) == 0;
}

}  // namespace rcp
