// The key filter, and the per-user rewriting of a whole file.
//
// Input: the file, install id, JVM location, base location, install configuration, locale.
#include "diagnostics/svc_debug.h"
#include "fuzz/fuzz.h"
#include "launcher/properties/property_text.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

using namespace rcp;
using rcp::fuzz::require;

constexpr std::size_t kLongestLine = 2024;

std::wstring withoutLeadingBlanks(std::wstring text) {
    text.erase(0, std::min(text.find_first_not_of(L' '), text.size()));
    return text;
}

// A kept line is the line, less blanks in front and perhaps less its key's last part.
bool isKeptFormOf(const std::wstring& kept, const std::wstring& line) {
    const std::wstring plain = withoutLeadingBlanks(line);
    if (kept == line || kept == plain) {
        return true;
    }
    const std::size_t equal = static_cast<std::size_t>(
        std::mismatch(kept.begin(), kept.end(), plain.begin(), plain.end()).first - kept.begin());
    const std::size_t removed = plain.size() - std::min(kept.size(), plain.size());
    for (std::size_t dot = 0; dot <= equal; ++dot) {
        if (plain.compare(dot, 7, L".macosx") == 0 &&
            plain.substr(0, dot) + plain.substr(dot + removed) == kept) {
            return true;
        }
    }
    return false;
}

void checkKeyFilter(const std::wstring& line) {
    std::wstring kept = line;
    if (processFilterKey(kept)) {
        const bool isForeign = line.find(L".win32") != std::wstring::npos ||
                               line.find(L".linux") != std::wstring::npos;
        require(isForeign, "only keys of other systems are dropped");
        return;
    }
    require(isKeptFormOf(kept, line), "a kept line loses no more than its qualifier");
}

// The lines that the launcher keeps of it.
std::string keptLines(const std::string& file) {
    std::string kept;
    for (const UserLine& line : userLines(file)) {
        kept += toNarrow(line.text) + "\n";
    }
    return kept;
}

std::string ownLines(const std::string& file) {
    std::string own;
    std::istringstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        own += line + "\n";
    }
    return own;
}

// Of such a file every line is kept, and as it stands.
bool namesNoSystem(const std::string& file) {
    const char* const systems[] = {".win32", ".linux", ".macosx"};
    return std::none_of(std::begin(systems), std::end(systems),
                        [&](const char* system) { return file.find(system) != std::string::npos; });
}

// Files whose lines the reader gives back as they stand.
bool isPlain(const std::string& file) {
    std::istringstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const bool isText =
            std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; });
        if (line.empty() || line[0] == ' ' || line.size() > kLongestLine || !isText) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const std::string file = fields.bytes();
    PropertyList properties;
    for (const Key key : {keys::kInstallId, keys::kJvmLocation, keys::kBaseLocation,
                          keys::kInstallConfiguration, keys::kLocale}) {
        const std::wstring value = fields.text();
        if (!value.empty()) {
            properties.append({std::wstring(key), value, {}});
        }
    }

    std::istringstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        checkKeyFilter(fuzz::wide(line));
    }

    const std::optional<UserFileBlock> block = userFileBlock(properties);
    require(block.has_value() == (findProperty(keys::kInstallId, properties) != nullptr &&
                                  findProperty(keys::kBaseLocation, properties) != nullptr),
            "a block is made from the two required values");
    const std::string target = fuzz::folder() + "/rcpinstall.properties";
    const bool ended = fuzz::endsLaunch([&] {
        require(fixUserRCPInstallProperties(fuzz::fileWith(file), toWide(target), properties),
                "the file is written");
    });
    require(ended != block.has_value(), "without a block the process ends");
    if (!ended) {
        const std::string written = fuzz::contentOf(target);
        require(written.ends_with(block->lines), "the block ends the file");
        if (isPlain(file)) {
            // Of other files the key filter decides, which is examined line by line.
            const std::string begin = namesNoSystem(file) ? ownLines(file) : keptLines(file);
            require(written == begin + block->lines, "no line is lost, no other is added");
        }
    }
    fuzz::requireLinearTime(fuzz::wide(file),
                            [](const std::wstring& large) { (void)keptLines(toNarrow(large)); });
    return 0;
}
