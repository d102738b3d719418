#include "launcher/properties/property_list.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/properties/property_text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace rcp {
namespace {

constexpr std::size_t kLongList = 64;
constexpr std::size_t kHeadLength = 8;

std::uint64_t headOf(std::wstring_view text) {
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < std::min(text.size(), kHeadLength); ++i) {
        head |= (static_cast<std::uint64_t>(text[i]) & 0xFF) << (8 * i);
    }
    return head;
}

// Tells whether keys begin with a prefix; the text of most is never looked at.
class PrefixTest {
  public:
    explicit PrefixTest(std::wstring_view prefix)
        : prefix_(prefix),
          head_(headOf(prefix)),
          unused_(prefix.size() < kHeadLength ? 8 * (kHeadLength - prefix.size()) : 0) {}
    bool operator()(std::uint64_t head, const Property& entry) const {
        const bool isLikely = prefix_.empty() || ((head ^ head_) << unused_) == 0;
        return isLikely && entry.key.starts_with(prefix_);
    }

  private:
    std::wstring_view prefix_;
    std::uint64_t head_;
    std::size_t unused_;  // bits of a head that the prefix does not reach
};

void tellObserver(const Property& entry) {
    if (observer != nullptr) {
        observer->propertyFound(entry);
    }
}

}  // namespace

PropertyList& PropertyList::operator=(PropertyList&& other) noexcept {
    entries_ = std::exchange(other.entries_, {});
    heads_ = std::exchange(other.heads_, {});
    index_ = std::exchange(other.index_, {});
    indexed_ = std::exchange(other.indexed_, 0);
    return *this;
}

void PropertyList::append(Property property) {
    heads_.push_back(headOf(property.key));
    entries_.push_back(std::move(property));
}

void PropertyList::append(PropertyList&& others) {
    if (entries_.empty()) {
        *this = std::move(others);
        return;
    }
    for (Property& entry : others.entries_) {
        append(std::move(entry));
    }
}

bool PropertyList::hasKey(std::size_t position, std::wstring_view key) const {
    return entries_[position].key == key;
}

std::size_t PropertyList::findPosition(std::wstring_view key) const {
    if (entries_.size() < kLongList) {
        const Head head = headOf(key);
        std::size_t position = 0;
        while (position < heads_.size() && (heads_[position] != head || !hasKey(position, key))) {
            ++position;
        }
        return position == heads_.size() ? KeyIndex::kNone : position;
    }
    const std::hash<std::wstring_view> hash;
    const auto indexed = [this, &hash](std::wstring_view text) {
        return index_.find(hash(text),
                           [this, text](std::size_t position) { return hasKey(position, text); });
    };
    for (; indexed_ < entries_.size(); ++indexed_) {
        const std::wstring& next = entries_[indexed_].key;
        if (indexed(next) == KeyIndex::kNone) {
            index_.add(hash(next), indexed_);
        }
    }
    return indexed(key);
}

const Property* PropertyList::find(Key key) const {
    const std::size_t position = findPosition(key);
    if (position == KeyIndex::kNone) {
        return nullptr;
    }
    tellObserver(entries_[position]);
    return &entries_[position];
}

Property* PropertyList::find(Key key) {
    return const_cast<Property*>(std::as_const(*this).find(key));
}

std::vector<const Property*> PropertyList::findAll(Key prefix) const {
    const PrefixTest matches(prefix);
    std::vector<const Property*> found;
    for (std::size_t i = 0; i < heads_.size(); ++i) {
        if (heads_[i] == 0 && entries_[i].key.empty()) {
            break;
        }
        if (matches(heads_[i], entries_[i])) {
            tellObserver(entries_[i]);
            found.push_back(&entries_[i]);
        }
    }
    return found;
}

std::vector<Property> PropertyList::extract(Key prefix) {
    const PrefixTest matches(prefix);
    std::vector<Property> extracted;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < heads_.size(); ++i) {
        if (matches(heads_[i], entries_[i])) {
            extracted.push_back(std::move(entries_[i]));
            continue;
        }
        if (kept != i) {
            heads_[kept] = heads_[i];
            entries_[kept] = std::move(entries_[i]);
        }
        ++kept;
    }
    if (!extracted.empty()) {
        heads_.resize(kept);
        entries_.resize(kept);
        index_ = {};
        indexed_ = 0;
    }
    return extracted;
}

std::wstring placeOf(const std::wstring& key, const Origin& origin) {
    std::wstring place = key;
    if (origin.file) {
        place += L", " + *origin.file;
    }
    if (origin.line > 0) {
        place += (origin.file ? L", line " : L", argument ") + std::to_wstring(origin.line);
    }
    return place;
}

Argument argumentFrom(const Property& entry) {
    return {entry.value, entry.origin};
}

const std::wstring* findProperty(Key key, const PropertyList& list) {
    const Property* entry = list.find(key);
    return entry == nullptr ? nullptr : &entry->value;
}

std::vector<const Property*> findProperties(Key prefix, const PropertyList& list) {
    return list.findAll(prefix);
}

void pushBackProperty(PropertyList& list, Key name, std::wstring value) {
    std::wstring key(name);
    FilterProp(key);
    trace(messages.keyComputed, key);
    FilterValue(value);
    trace(messages.valueComputed, value);
    list.append({std::move(key), std::move(value), {}});
}

void replaceValue(Key key, const std::wstring& value, PropertyList& list) {
    if (Property* entry = list.find(key)) {
        entry->value = value;
    }
}

}  // namespace rcp
