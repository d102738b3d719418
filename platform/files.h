// Files and directories: the small set of functions through which the launcher touches the file
// system. Paths are wide strings unless a name or signature says otherwise. Nothing here throws;
// only ensureDirectory and copyFile end the launch on failure.
#pragma once

#include "base/unique_fd.h"
#include "diagnostics/argument.h"
#include "diagnostics/message.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace rcp {

struct CloseStream {
    void operator()(std::FILE* stream) const { (void)std::fclose(stream); }
};
/// An owned standard stream.
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Whether `path` can be opened for reading, as fopen(3) "rb" would: an unreadable file counts as
/// missing, a readable directory as existing. False with errno set.
bool exists(const std::wstring& path);
bool existsA(const std::string& path);
/// The same for one that is read if it exists: its descriptor, empty where `exists` is false.
UniqueFd openExisting(const std::wstring& path);
/// Whether the entry itself is a directory; a link to one is not. False with errno
/// set, to 0 when something else stands there.
bool isDirectory(const std::wstring& path);
/// Whether the entry itself is a symbolic link.
bool isLink(const std::wstring& path);
/// Whether the owner's execute permission is set, links followed. False with errno set, to 0
/// when there is a file without it.
bool isExecutable(const std::wstring& path);
bool isExecutable(const std::string& path);

/// The path without links, "." and ".."; empty optional when there is nothing at `path`.
/// realpath(3).
std::optional<std::string> resolvedPath(const std::string& path);

/// Whether the path leads to the root of the file system, by whatever links or mounts.
bool isRoot(const std::string& path);

/// `path` without slashes and "/." at its end, which make the system follow a link that the path
/// names; "/" stays.
std::string withoutTrailingSlashes(std::string path);

/// An absolute `path` without empty elements, "." and "..", each of which takes the element before it
/// whatever that is on disk; any other path as it is.
std::string lexicalPath(const std::string& path);

/// Opens a file as open(2) with `flags`, close-on-exec; none, with errno set, on failure. Files are
/// read and written only where a file is meant: a directory or a pipe in its place is a failure,
/// never a wait.
UniqueFd openRegular(const std::wstring& path, int flags);

/// The same as a stream, with fopen(3)'s `mode`; null, with errno set, on failure.
Stream open_file(const std::wstring& path, const std::wstring& mode);

/// What is in a file, to its end or to where it cannot be read further.
struct FileText {
    std::string bytes;
    int error = 0;  // an errno
};
inline constexpr std::size_t kAllBytes = static_cast<std::size_t>(-1);
/// Of an opened file, from its beginning on, no more than `most` bytes. Empty optional, with errno set, when
/// it is no regular file.
std::optional<FileText> textOf(const UniqueFd& file, std::size_t most = kAllBytes);
/// Reads what open_file would open. Empty optional, with errno set, when it cannot be opened.
std::optional<FileText> readText(const std::wstring& path, std::size_t most = kAllBytes);

/// A text that is taken line by line, and how far it has come.
struct TextLines {
    std::string_view rest;
    std::size_t line = 0;       // of the line taken last, from 1
    std::size_t lineFeeds = 0;  // passed so far
};

/// The formats of readFile: property files, and files that are copied line by line.
inline constexpr std::wstring_view kPropertyLineFormat = L" %2024[^\n]\n";
inline constexpr std::wstring_view kCopiedLineFormat = L"%2024[^\n]\n";

/// Takes one line with `format`, which is "%<N>[^\n]\n" with or without a leading blank:
///
///   [blank] skip white space --> take up to N bytes of the line --> skip line feed and white space
///
/// Without the leading blank only an empty line is skipped, like every other blank line. A line
/// longer than N bytes is cut in front of the UTF-8 character that does not fit; the rest is the
/// next line. Text behind a NUL byte of a line is dropped. False at the end of the text.
///
/// The line comes in `out`, whose memory serves a whole file: a launch reads thousands of lines.
bool readFile(TextLines& text, std::wstring_view format, std::wstring& out);

/// Reports that the text on `line` of the file at `path` could not be converted. One record a file:
/// some files are read twice, and one line is enough to find the cause.
void reportUnreadableLine(const std::wstring& path, std::size_t line);

/// mkdir(2) with mode 0775. True only when the directory was made now.
bool createDirectory(const std::wstring& path);
/// What became of a path's directories.
struct PathMade {
    bool isLastNew = true;
    /// The first one that could not be made although nothing stood there, and its errno, else 0:
    /// what is below it only fails for want of it.
    std::wstring failed;
    int error = 0;

    explicit operator bool() const { return isLastNew; }
};
/// Makes every directory along the path, from "/" on, so a relative path is made below the root.
/// True when the last one was made now or `path` has no components; an existing path gives false.
PathMade mkdirs(const std::wstring& path);
/// mkdirs for callers that need the directory; another process may make it meanwhile. A failure
/// ends the launch with `message`, whose "%ls" is `path`.
void ensureDirectory(const std::wstring& path, Message<Text> message, const Origin& origin = {});

/// Copies a file byte for byte; the target is replaced as a whole. Every failure ends the launch.
bool copyFile(const std::wstring& source, const std::wstring& destination);
/// The same for a source that was opened before.
bool copyFile(const UniqueFd& opened, const std::wstring& source, const std::wstring& destination);
/// rename(2); no copy across volumes.
bool moveFile(const std::wstring& source, const std::wstring& destination);
/// unlink(2).
bool deleteFile(const std::wstring& path);

}  // namespace rcp
