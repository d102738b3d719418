// Where keys stand in a list: a hash table of numbers alone, four bytes a slot. The keys stay in the
// list and the hashes in a row of their own, so that the table of a long list still lies in the
// processor's cache.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rcp {

class KeyIndex {
  public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    /// The position with the key of this hash for which `isKeyAt(position)` holds; kNone without.
    template <typename IsKeyAt>
    [[nodiscard]] std::size_t find(std::size_t hash, IsKeyAt isKeyAt) const {
        if (slots_.empty()) {
            return kNone;
        }
        for (std::size_t at = home(hash); slots_[at] != kFree; at = next(at)) {
            if (!isLikely(slots_[at], hash)) {
                continue;
            }
            const std::size_t position = keys_[(slots_[at] & numberBits()) - 1].position;
            if (isKeyAt(position)) {
                return position;
            }
        }
        return kNone;
    }

    /// Adds a position whose key is not there yet.
    void add(std::size_t hash, std::size_t position);

  private:
    struct Indexed {
        std::uint32_t hash;
        std::uint32_t position;
    };
    // The number of a key, from 1, and above it what there is room for of the key's hash.
    using Slot = std::uint32_t;
    static constexpr Slot kFree = 0;

    [[nodiscard]] Slot numberBits() const { return static_cast<Slot>(slots_.size()) - 1; }
    [[nodiscard]] std::size_t home(std::size_t hash) const { return hash & numberBits(); }
    [[nodiscard]] std::size_t next(std::size_t at) const { return (at + 1) & numberBits(); }
    [[nodiscard]] bool isLikely(Slot slot, std::size_t hash) const {
        return ((slot ^ static_cast<Slot>(hash)) & ~numberBits()) == 0;
    }
    void place(std::uint32_t hash, std::size_t number);

    std::vector<Slot> slots_;    // a power of two of them, at most three of four taken
    std::vector<Indexed> keys_;  // in the order in which they were added
};

}  // namespace rcp
