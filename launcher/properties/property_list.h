// The property list: what the launcher has read from its property files, in file order. A key that
// occurs twice is stored twice; a look-up returns the first, so the earliest source wins.
#pragma once

#include "diagnostics/argument.h"
#include "launcher/properties/key_index.h"
#include "launcher/vocabulary/name.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rcp {

struct Property {
    std::wstring key;    // never holds "=", ":", a blank or a tab; may be empty
    std::wstring value;  // may be empty
    Origin origin;
};

class PropertyList {
  public:
    PropertyList() = default;
    PropertyList(const PropertyList& other) = default;
    PropertyList& operator=(const PropertyList& other) = default;
    PropertyList(PropertyList&& other) noexcept { *this = std::move(other); }
    PropertyList& operator=(PropertyList&& other) noexcept;
    ~PropertyList() = default;

    void append(Property property);
    void append(PropertyList&& others);
    /// The first entry of exactly this key (case-sensitive), null without one. Stays valid until
    /// the list is assigned to or filtered.
    [[nodiscard]] const Property* find(Key key) const;
    Property* find(Key key);
    /// The entries whose keys begin with `prefix`, in order, up to the first empty key.
    [[nodiscard]] std::vector<const Property*> findAll(Key prefix) const;

    /// Takes every entry whose key begins with `prefix` out of the list, in order.
    std::vector<Property> extract(Key prefix);

    /// Calls `change` with every value, which it may change, and its entry. Keys stay: look-ups
    /// depend on them.
    template <typename Change>
    void forEachValue(Change change) {
        for (Property& entry : entries_) {
            change(entry.value, std::as_const(entry));
        }
    }
    [[nodiscard]] const std::deque<Property>& entries() const { return entries_; }

  private:
    // The low bytes of a key's first eight characters. A launch goes through the list by prefix a
    // dozen times; in a long list the texts themselves are spread over more memory than the
    // processor's caches hold, and these are not.
    using Head = std::uint64_t;

    [[nodiscard]] bool hasKey(std::size_t position, std::wstring_view key) const;
    [[nodiscard]] std::size_t findPosition(std::wstring_view key) const;

    std::deque<Property> entries_;  // entries stay where they are when others are appended
    std::vector<Head> heads_;       // one an entry
    // The first entry of each key. Kept only once a list is long: a walk over a few dozen heads is
    // faster than building it.
    mutable KeyIndex index_;
    mutable std::size_t indexed_ = 0;
};

/// Where the entry of `key` stands, as far as that is known: "KEY, FILE, line 3".
std::wstring placeOf(const std::wstring& key, const Origin& origin);

/// The value of an entry, as an argument that comes from there.
Argument argumentFrom(const Property& entry);

/// The value of the first entry whose key is `key`; null without one.
const std::wstring* findProperty(Key key, const PropertyList& list);

/// The entries whose keys begin with `prefix`, in list order. The walk ends at the first entry with
/// an empty key: what stands behind it is never returned.
std::vector<const Property*> findProperties(Key prefix, const PropertyList& list);

/// Appends an entry from code, filtered as the reader filters key and value.
void pushBackProperty(PropertyList& list, Key key, std::wstring value);

/// Replaces the value of the first entry of `key`. A missing key is not added.
void replaceValue(Key key, const std::wstring& value, PropertyList& list);

}  // namespace rcp
