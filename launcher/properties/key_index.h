// Where keys stand in a list: a hash table of positions alone, eight bytes a slot. The keys stay in
// the list, so that the table of a long one still lies in the processor's cache.
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
        for (std::size_t at = home(hash); slots_[at].number != 0; at = next(at)) {
            const std::size_t position = slots_[at].number - 1;
            if (slots_[at].hash == static_cast<std::uint32_t>(hash) && isKeyAt(position)) {
                return position;
            }
        }
        return kNone;
    }

    /// Adds a position whose key is not there yet.
    void add(std::size_t hash, std::size_t position);

  private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;  // the position from 1; 0: free
    };

    [[nodiscard]] std::size_t home(std::size_t hash) const {
        return static_cast<std::uint32_t>(hash) & (slots_.size() - 1);
    }
    [[nodiscard]] std::size_t next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }
    void place(Slot slot);

    std::vector<Slot> slots_;  // a power of two of them, at most half of them taken
    std::size_t taken_ = 0;
};

}  // namespace rcp
