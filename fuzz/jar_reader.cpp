// The names in jars and what their manifests say: in files that are none or were cut or changed, and in whole ones,
// whatever stands in front of them and behind.
//
// Input: the file. And of a whole one: what stands in front of it, its comment, and its names.
#include "fuzz/fuzz.h"
#include "inspect/archive/inflate.h"
#include "inspect/archive/jar.h"
#include "inspect/archive/zip_archive.h"
#include "platform/text.h"

#include <algorithm>

namespace {

using namespace rcp;
using rcp::fuzz::require;

constexpr std::size_t kEntrySize = 46;
constexpr std::string_view kEnd = "PK\x05\x06";

auto entriesOf(std::string_view bytes) {
    return inspect::jarEntries(toNarrow(fuzz::fileWith(bytes)));
}

void checkBounds(std::string_view bytes) {
    const auto entries = entriesOf(bytes);
    if (!entries) {
        return;
    }
    std::size_t size = 0;
    for (const std::string& name : *entries) {
        size += name.size() + kEntrySize;
    }
    require(size <= bytes.size(), "every name has its entry");
    require(bytes.find(kEnd) != std::string_view::npos, "what has no end is no jar");
}

void checkInflated(std::string_view bytes) {
    constexpr std::size_t kMost = 5000;
    const auto text = inspect::inflated(bytes, kMost);
    require(!text || text->size() <= kMost, "no more is inflated than is asked for");
    (void)inspect::mainClassOf(toNarrow(fuzz::fileWith(bytes)));
}

// The end's last two bytes are the comment's size.
std::string withComment(std::string archive, const std::string& comment) {
    archive[archive.size() - 2] = static_cast<char>(comment.size() & 255U);
    archive[archive.size() - 1] = static_cast<char>(comment.size() >> 8U);
    return archive + comment;
}

void checkWhole(const std::string& front, const std::string& comment,
                const std::set<std::string>& names) {
    inspect::ZipArchive archive(0);
    for (const std::string& name : names) {
        archive.add(name, name);
    }
    const std::string whole = front + withComment(archive.bytes(), comment);
    const auto entries = entriesOf(whole);
    require(entries && *entries == names, "the names are those that were put in");
    require(!entriesOf(std::string_view(whole).substr(0, whole.size() - 1)),
            "a jar whose last byte is gone is none");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkBounds({reinterpret_cast<const char*>(data), size});
    checkInflated({reinterpret_cast<const char*>(data), size});
    fuzz::Fields fields(data, size);
    const std::string front = fields.bytes();
    const std::string comment = fields.bytes();
    std::set<std::string> names;
    for (std::string name = fields.bytes(); !name.empty(); name = fields.bytes()) {
        names.insert(name);
    }
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    // With an end in its parts it could be read in two ways.
    if (all.find(kEnd) == std::string_view::npos && comment.size() < 65536) {
        checkWhole(front, comment, names);
    }
    return 0;
}
