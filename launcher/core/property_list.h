// The property list: what the launcher has read from its property files, in file order. A key that
// occurs twice is stored twice; a look-up returns the first, so the earliest source wins.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace rcp {

/// Where an entry came from. An entry that the launcher computed has no file.
struct PropertyOrigin {
    std::shared_ptr<const std::wstring> file;
    std::size_t line = 0;
};

struct Property {
    std::wstring key;    // never holds "=", ":", a blank or a tab; may be empty
    std::wstring value;  // may be empty
    PropertyOrigin origin;
};

class PropertyList {
  public:
    PropertyList() = default;
    // The index views keys of its own list's entries: a copy makes another, a move takes it along.
    PropertyList(const PropertyList& other) : entries_(other.entries_) {}
    PropertyList& operator=(const PropertyList& other);
    PropertyList(PropertyList&& other) noexcept { *this = std::move(other); }
    PropertyList& operator=(PropertyList&& other) noexcept;
    ~PropertyList() = default;

    void append(Property property);
    /// The first entry of exactly this key (case-sensitive), null without one. Stays valid until
    /// the list is assigned to or filtered.
    [[nodiscard]] const Property* find(std::wstring_view key) const;
    Property* find(std::wstring_view key);

    /// Takes every entry whose key begins with `prefix` out of the list, in order.
    std::vector<Property> extract(std::wstring_view prefix);

    /// Calls `change` with every value, which it may change. Keys stay: look-ups depend on them.
    template <typename Change>
    void forEachValue(Change change) {
        for (Property& entry : entries_) {
            change(entry.value);
        }
    }
    [[nodiscard]] const std::deque<Property>& entries() const { return entries_; }

  private:
    // The first entry of each key. Kept only once a list is long: a walk over a few dozen entries
    // is faster than building it. Entries of a deque stay where they are, so the keys can be
    // viewed.
    using Index = std::unordered_map<std::wstring_view, std::size_t>;

    std::deque<Property> entries_;
    mutable Index index_;
    mutable std::size_t indexed_ = 0;
};

/// The value of the first entry whose key is `key`; null without one.
const std::wstring* findProperty(std::wstring_view key, const PropertyList& list);

/// The entries whose keys begin with `prefix`, in list order. The walk ends at the first entry with
/// an empty key: what stands behind it is never returned.
std::vector<const Property*> findProperties(std::wstring_view prefix, const PropertyList& list);

/// Appends an entry from code, filtered as the reader filters key and value.
void pushBackProperty(PropertyList& list, std::wstring key, std::wstring value);

/// Replaces the value of the first entry of `key`. A missing key is not added.
void replaceValue(std::wstring_view key, const std::wstring& value, PropertyList& list);

}  // namespace rcp
