#include "inspect/handoff/platform_values.h"

#include "inspect/quiet_read.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sstream>

namespace rcp::inspect {

std::string trimmed(const std::string& text) {
    constexpr char kBlanks[] = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string::npos
               ? std::string()
               : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::vector<std::string> splitAt(char separator, const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream all(text);
    for (std::string part; std::getline(all, part, separator);) {
        parts.push_back(trimmed(part));
    }
    return parts;
}

bool take(const std::string& start, std::string& text) {
    const bool isThere = text.starts_with(start);
    text.erase(0, isThere ? start.size() : 0);
    return isThere;
}

std::string withoutScheme(std::string text) {
    if (take("file:", text)) {
        text.erase(0, text.find_first_not_of('/') == 0 || text.empty()
                          ? 0
                          : std::min(text.find_first_not_of('/'), text.size()) - 1);
    }
    return text;
}

bool isUnknown(const std::string& text) {
    return text.empty() || text.starts_with('@') || text.find('$') != std::string::npos;
}

std::optional<int> startLevel(const std::string& text) {
    int level = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, level);
    return read.ec == std::errc() && read.ptr == end && level > 0 ? std::optional(level)
                                                                  : std::nullopt;
}

std::string joined(const std::string& folder, const std::string& path) {
    return std::filesystem::path(path).is_absolute() ? path : folder + "/" + path;
}

std::string Folders::find(const std::string& path) {
    return find(path, {"", ".jar"}, {"-", "_"});
}

std::string Folders::findFramework(const std::string& path) {
    return find(path, {""}, {"_"});
}

std::string Folders::find(const std::string& path, const std::vector<std::string>& endings,
                          const std::vector<std::string>& separators) {
    const std::filesystem::path whole(path);
    const std::string folder = whole.parent_path();
    const std::string name = whole.filename();
    const std::set<std::string>& names = namesIn(folder);
    for (const std::string& ending : endings) {
        if (const std::string alone = name + ending; names.contains(alone)) {
            return std::string(folder).append("/").append(alone);
        }
    }
    for (const std::string& separator : separators) {
        const std::string versioned = name + separator;
        const auto entry = names.lower_bound(versioned);
        if (entry != names.end() && entry->starts_with(versioned)) {
            return folder + "/" + *entry;
        }
    }
    return {};
}

const std::set<std::string>& Folders::namesIn(const std::string& folder) {
    const auto [known, isNew] = names_.try_emplace(folder);
    if (!isNew) {
        return known->second;
    }
    return known->second = entryNames(folder);
}

}  // namespace rcp::inspect
