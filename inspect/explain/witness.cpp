#include "inspect/explain/witness.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// A value that brings itself back is replaced thousands of times; nobody reads more than a few.
constexpr std::size_t kMostReplacements = 64;

}  // namespace

void Witness::propertyFileRead(const std::wstring& path, const PropertyList& entries) {
    const auto file = std::find_if(files_.begin(), files_.end(),
                                   [&](const ReadFile& known) { return known.path == path; });
    if (file == files_.end()) {
        files_.push_back({path, entries});
    } else {
        file->entries = entries;
    }
}

void Witness::propertyFound(const Property& entry) {
    found_.insert(placeOf(entry.origin));
}

void Witness::lost(const std::wstring& text, const Origin& origin, const Why& why,
                   const Origin* winner) {
    if (!origin.isComputed()) {
        losers_.push_back(
            {text, origin, &why, winner == nullptr ? std::nullopt : std::optional(*winner)});
    }
}

void Witness::placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                                  const std::wstring& value, const std::wstring& after) {
    byText_[before].push_back(replacements_.size());
    replacements_.push_back({before, std::wstring(placeholder), value, after});
}

bool Witness::wasFound(const Origin& place) const {
    return found_.contains(placeOf(place));
}

const std::wstring* Witness::awaited(Wait wait) const {
    const auto found = waits_.find(wait);
    return found == waits_.end() ? nullptr : &found->second;
}

std::vector<Replacement> Witness::replacementsFrom(const std::wstring& text) const {
    std::vector<Replacement> way;
    std::size_t next = 0;
    for (auto same = byText_.find(text); same != byText_.end() && way.size() < kMostReplacements;
         same = byText_.find(way.back().after)) {
        const auto at = std::find_if(same->second.begin(), same->second.end(), [&](std::size_t i) {
            return i >= next && replacements_[i].after != same->first;
        });
        if (at == same->second.end()) {
            break;
        }
        way.push_back(replacements_[*at]);
        next = *at + 1;
    }
    return way;
}

}  // namespace rcp::inspect
