#include "inspect/archive/jar.h"

#include "base/system_calls.h"
#include "base/unique_fd.h"
#include "inspect/archive/inflate.h"
#include "inspect/archive/zip_format.h"
#include "inspect/bundle/bytes.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace rcp::inspect {
namespace {

constexpr std::uint32_t kEndPlace = 0x07064b50;  // of the end in files beyond 32 bits
constexpr std::uint32_t kLargeEnd = 0x06064b50;
// How long the records are without names and comments.
constexpr std::uint64_t kEndSize = 22;
constexpr std::uint64_t kEndPlaceSize = 20;
constexpr std::uint64_t kLargeEndSize = 56;
constexpr std::uint64_t kEntrySize = 46;
constexpr std::uint64_t kLocalEntrySize = 30;
constexpr std::uint64_t kStored = 0;
constexpr std::uint64_t kDeflated = 8;
constexpr std::size_t kLongestFile = std::size_t{1} << 20U;
constexpr std::uint64_t kInLargeEnd = 0xFFFFFFFF;
constexpr std::uint64_t kCountedElsewhere = 0xFFFF;
constexpr std::uint64_t kLongestTail = 65535 + kEndSize + kEndPlaceSize;
constexpr std::uint64_t kLongestDirectory = std::uint64_t{1} << 26U;

// Parts of a regular file; of one that cannot be read, and of what lies beyond its end, nothing.
class File {
  public:
    explicit File(const std::string& path)
        : file_(calls::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        struct stat status {};
        if (file_ && fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode)) {
            size_ = static_cast<std::uint64_t>(status.st_size);
        }
    }
    [[nodiscard]] std::uint64_t size() const { return size_; }
    [[nodiscard]] std::string part(std::uint64_t begin, std::uint64_t size) const {
        if (begin > size_ || size > size_ - begin || size > kLongestDirectory) {
            return {};
        }
        std::string bytes(static_cast<std::size_t>(size), '\0');
        std::size_t done = 0;
        for (ssize_t length = 1; length > 0 && done < bytes.size();) {
            length = pread(file_.get(), bytes.data() + done, bytes.size() - done,
                           static_cast<off_t>(begin + done));
            done += length > 0 ? static_cast<std::size_t>(length) : 0;
        }
        bytes.resize(done);
        return bytes;
    }

  private:
    UniqueFd file_;
    std::uint64_t size_ = 0;
};

// Where in the file's last bytes the record stands with which it ends, but for a comment.
std::optional<std::uint64_t> findEnd(const std::string& tail) {
    Bytes bytes(tail, ByteOrder::kLittle);
    for (std::uint64_t rest = kEndSize; rest <= tail.size(); ++rest) {
        const std::uint64_t at = tail.size() - rest;
        if (bytes.word(at) == kEnd && kEndSize + bytes.number(at + 20, 2) == rest) {
            return at;
        }
    }
    return std::nullopt;
}

struct Directory {
    std::string bytes;
    std::uint64_t shift = 0;  // what stands in front of the zip file
    std::uint64_t count = 0;  // of its entries, as far as its end tells
};

std::optional<Directory> readDirectory(const File& file) {
    const std::uint64_t tailSize = std::min(file.size(), kLongestTail);
    const std::uint64_t tailBegin = file.size() - tailSize;
    const std::string tail = file.part(tailBegin, tailSize);
    const std::optional<std::uint64_t> end = findEnd(tail);
    if (!end) {
        return std::nullopt;
    }
    Bytes bytes(tail, ByteOrder::kLittle);
    std::uint64_t size = bytes.word(*end + 12);
    // The directory ends where its end begins; something may stand in front of the zip file.
    std::uint64_t begin = tailBegin + *end - std::min(size, tailBegin + *end);
    std::uint64_t told = bytes.word(*end + 16);
    std::uint64_t count = bytes.number(*end + 10, 2);
    if ((size == kInLargeEnd || told == kInLargeEnd) && *end >= kEndPlaceSize &&
        bytes.word(*end - kEndPlaceSize) == kEndPlace) {
        const std::string large =
            file.part(bytes.number(*end - kEndPlaceSize + 8, 8), kLargeEndSize);
        Bytes record(large, ByteOrder::kLittle);
        size = record.number(40, 8);
        begin = told = record.number(48, 8);
        count = record.number(32, 8);
        if (record.word(0) != kLargeEnd) {
            return std::nullopt;
        }
    }
    Directory directory{file.part(begin, size), begin - std::min(told, begin), count};
    return directory.bytes.size() == size && told <= begin ? std::optional(directory)
                                                           : std::nullopt;
}

struct Entry {
    std::uint64_t place = 0;
    std::uint64_t method = kStored;
    std::uint64_t size = 0;  // as it is stored
};

// Whether there is an entry where the directory says so.
bool isEntryAt(std::uint64_t place, const Directory& directory, const File& file) {
    const std::string start = file.part(directory.shift + place, 4);
    return place == kInLargeEnd || Bytes(start, ByteOrder::kLittle).word(0) == kLocalEntry;
}

std::optional<std::map<std::string, Entry>> readEntries(const File& file) {
    const std::optional<Directory> directory = readDirectory(file);
    if (!directory) {
        return std::nullopt;
    }
    Bytes bytes(directory->bytes, ByteOrder::kLittle);
    std::uint64_t count = 0;
    std::map<std::string, Entry> entries;
    for (std::uint64_t at = 0; at < directory->bytes.size() && !bytes.isDamaged(); ++count) {
        const std::uint64_t place = bytes.word(at + 42);
        if (bytes.word(at) != kEntry || !isEntryAt(place, *directory, file)) {
            return std::nullopt;
        }
        const std::uint64_t name = bytes.number(at + 28, 2);
        entries.emplace(
            bytes.part(at + kEntrySize, name),
            Entry{directory->shift + place, bytes.number(at + 10, 2), bytes.word(at + 20)});
        at += kEntrySize + name + bytes.number(at + 30, 2) + bytes.number(at + 32, 2);
    }
    const bool isCounted = directory->count == kCountedElsewhere || directory->count == count;
    return bytes.isDamaged() || !isCounted ? std::nullopt : std::optional(std::move(entries));
}

// The attributes of a manifest are in any case, its lines are of 72 bytes and go on behind a blank.
std::string attributeOf(const std::string& manifest, std::string_view name) {
    std::string whole;
    std::istringstream lines(manifest);
    for (std::string line; std::getline(lines, line) && line != "\r" && !line.empty();) {
        line.erase(std::min(line.find('\r'), line.size()));
        const bool goesOn = line.starts_with(' ') && !whole.empty();
        whole += goesOn ? line.substr(1) : "\n" + line;
    }
    std::istringstream attributes(whole);
    for (std::string line; std::getline(attributes, line);) {
        if (strncasecmp(line.c_str(), name.data(), name.size()) == 0 &&
            line.compare(name.size(), 2, ": ") == 0) {
            return line.substr(name.size() + 2);
        }
    }
    return {};
}

std::optional<std::string> contentOf(const Entry& entry, const File& file) {
    const std::string head = file.part(entry.place, kLocalEntrySize);
    Bytes bytes(head, ByteOrder::kLittle);
    const std::uint64_t begin =
        entry.place + kLocalEntrySize + bytes.number(26, 2) + bytes.number(28, 2);
    std::string content = entry.size > kLongestFile ? "" : file.part(begin, entry.size);
    if (bytes.isDamaged() || content.size() != entry.size) {
        return std::nullopt;
    }
    return entry.method == kStored     ? std::optional(std::move(content))
           : entry.method == kDeflated ? inflated(content, kLongestFile)
                                       : std::nullopt;
}

}  // namespace

std::optional<std::set<std::string>> jarEntries(const std::string& path) {
    const auto entries = readEntries(File(path));
    if (!entries) {
        return std::nullopt;
    }
    std::set<std::string> names;
    for (const auto& entry : *entries) {
        names.insert(names.end(), entry.first);
    }
    return names;
}

std::optional<std::string> jarFile(const std::string& path, const std::string& name) {
    const File file(path);
    const auto entries = readEntries(file);
    const auto entry =
        entries ? entries->find(name) : std::map<std::string, Entry>::const_iterator();
    return entries && entry != entries->end() ? contentOf(entry->second, file) : std::nullopt;
}

std::string mainClassOf(const std::string& path) {
    const std::string name = attributeOf(jarFile(path, kManifest).value_or(""), "Main-Class");
    return name.substr(0, name.find_last_not_of(' ') + 1);
}

}  // namespace rcp::inspect
