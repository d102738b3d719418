#include "launcher/core/property_list.h"

#include "diagnostics/svc_debug.h"
#include "launcher/core/property_text.h"

#include <algorithm>
#include <utility>

namespace rcp {
namespace {

constexpr std::size_t kLongList = 64;

template <typename Entries>
auto* walk(Entries& entries, std::wstring_view key) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [key](const Property& entry) { return entry.key == key; });
    return found == entries.end() ? nullptr : &*found;
}

}  // namespace

PropertyList& PropertyList::operator=(const PropertyList& other) {
    PropertyList copy(other);
    *this = std::move(copy);
    return *this;
}

PropertyList& PropertyList::operator=(PropertyList&& other) noexcept {
    entries_ = std::exchange(other.entries_, {});
    index_ = std::exchange(other.index_, {});
    indexed_ = std::exchange(other.indexed_, 0);
    return *this;
}

void PropertyList::append(Property property) {
    entries_.push_back(std::move(property));
}

const Property* PropertyList::find(std::wstring_view key) const {
    if (entries_.size() < kLongList) {
        return walk(entries_, key);
    }
    for (; indexed_ < entries_.size(); ++indexed_) {
        index_.emplace(entries_[indexed_].key, indexed_);  // keeps the first
    }
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : &entries_[found->second];
}

Property* PropertyList::find(std::wstring_view key) {
    return const_cast<Property*>(std::as_const(*this).find(key));
}

std::vector<Property> PropertyList::extract(std::wstring_view prefix) {
    const auto matches = [prefix](const Property& entry) { return entry.key.starts_with(prefix); };
    std::vector<Property> extracted;
    if (std::none_of(entries_.begin(), entries_.end(), matches)) {
        return extracted;
    }
    std::deque<Property> kept;
    for (Property& entry : entries_) {
        if (matches(entry)) {
            extracted.push_back(std::move(entry));
        } else {
            kept.push_back(std::move(entry));
        }
    }
    entries_ = std::move(kept);
    index_.clear();
    indexed_ = 0;
    return extracted;
}

const std::wstring* findProperty(std::wstring_view key, const PropertyList& list) {
    const Property* entry = list.find(key);
    return entry == nullptr ? nullptr : &entry->value;
}

std::vector<const Property*> findProperties(std::wstring_view prefix, const PropertyList& list) {
    std::vector<const Property*> found;
    for (const Property& entry : list.entries()) {
        if (entry.key.empty()) {
            break;
        }
        if (entry.key.starts_with(prefix)) {
            found.push_back(&entry);
        }
    }
    return found;
}

void pushBackProperty(PropertyList& list, std::wstring key, std::wstring value) {
    FilterProp(key);
    SvcDebugOutW(L"ZYPRA0126I:   key = \"%s\"", key);
    FilterValue(value);
    SvcDebugOutW(L"ZYPRA0127I:   value  = \"%s\"", value);
    list.append({std::move(key), std::move(value), {}});
}

void replaceValue(std::wstring_view key, const std::wstring& value, PropertyList& list) {
    if (Property* entry = list.find(key)) {
        entry->value = value;
    }
}

}  // namespace rcp
