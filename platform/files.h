// Files and directories: the small set of functions through which the launcher touches the file
// system. Paths are wide strings unless a name or signature says otherwise. Nothing here throws;
// only copyFile ends the process on failure.
#pragma once

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
/// missing, a readable directory as existing.
bool exists(const std::wstring& path);
bool existsA(const std::string& path);
/// Whether the entry itself is a directory; a link to one is not.
bool isDirectory(const std::wstring& path);
/// Whether the owner's execute permission is set, links followed.
bool isExecutable(const std::wstring& path);
bool isExecutable(const std::string& path);

/// The path without links, "." and ".."; empty optional when there is nothing at `path`.
/// realpath(3).
std::optional<std::string> resolvedPath(const std::string& path);

/// Opens a stream as fopen(3) with `mode`; null, with errno set, on failure. The descriptor is
/// close-on-exec. Files are read and written only where a file is meant: a directory or a pipe in
/// its place is a failure, never a wait.
void open_file(Stream& stream, const std::wstring& path, const std::wstring& mode);
/// The same; both names have their callers.
void open_wfile(Stream& stream, const std::wstring& path, const std::wstring& mode);

/// On which line of a file a text stands; one position accompanies a stream from its first line on.
struct LinePosition {
    std::size_t line = 0;       // of the text returned last, from 1
    std::size_t lineFeeds = 0;  // passed so far
};

/// The formats of readFile: property files, and files that are copied line by line.
inline constexpr std::wstring_view kPropertyLineFormat = L" %2024[^\n]\n";
inline constexpr std::wstring_view kCopiedLineFormat = L"%2024[^\n]\n";

/// Scans one line with `format`, which is "%<N>[^\n]\n" with or without a leading blank:
///
///   [blank] skip white space --> take up to N bytes of the line --> skip line feed and white space
///
/// Without the leading blank only an empty line is skipped, like every other blank line. A line
/// longer than N bytes is cut in front of the UTF-8 character that does not fit; the rest is the
/// next line. Text behind a NUL byte of a line is dropped. Returns 1, or -1 at the end of the file
/// and after a read error (tell them apart with std::ferror).
int readFile(std::FILE& stream, std::wstring_view format, std::wstring& out,
             LinePosition* position = nullptr);

/// Reports that the text on `line` of the file at `path` could not be converted. One record a file:
/// some files are read twice, and one line is enough to find the cause.
void reportUnreadableLine(const std::wstring& path, std::size_t line);

/// mkdir(2) with mode 0775. True only when the directory was made now.
bool createDirectory(const std::wstring& path);
/// Makes every directory along the path, from "/" on, so a relative path is made below the root.
/// True when the last one was made now or `path` has no components; an existing path gives false.
bool mkdirs(const std::wstring& path);
/// For callers that need the directory: true also when another process made it meanwhile.
bool ensureDirectory(const std::wstring& path);

/// Copies a text file; the target is replaced as a whole. Every failure ends the process.
bool copyFile(const std::wstring& source, const std::wstring& destination);
/// rename(2); no copy across volumes.
bool moveFile(const std::wstring& source, const std::wstring& destination);
/// unlink(2).
bool deleteFile(const std::wstring& path);

}  // namespace rcp
