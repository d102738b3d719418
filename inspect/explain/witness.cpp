#include "inspect/explain/witness.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// A value that brings itself back is replaced thousands of times; nobody reads more than a few.
constexpr std::size_t kMostReplacements = 64;

}  // namespace

void Witness::propertyFileRead(const std::wstring& path) {
    if (std::find(files_.begin(), files_.end(), path) == files_.end()) {
        files_.push_back(path);
    }
}

void Witness::propertyFound(const Property& entry) {
    if (entry.origin.file) {
        found_.emplace(*entry.origin.file, entry.origin.line);
    }
}

void Witness::placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                                  const std::wstring& value, const std::wstring& after) {
    replacements_.push_back({before, std::wstring(placeholder), value, after});
}

bool Witness::wasFound(const std::wstring& file, std::size_t line) const {
    return found_.contains({file, line});
}

std::vector<Replacement> Witness::replacementsFrom(const std::wstring& text) const {
    std::vector<Replacement> way;
    std::wstring current = text;
    for (const Replacement& replacement : replacements_) {
        if (replacement.before == current && replacement.after != current &&
            way.size() < kMostReplacements) {
            way.push_back(replacement);
            current = replacement.after;
        }
    }
    return way;
}

}  // namespace rcp::inspect
