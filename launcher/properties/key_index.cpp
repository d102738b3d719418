#include "launcher/properties/key_index.h"

#include <algorithm>
#include <utility>

namespace rcp {

void KeyIndex::add(std::size_t hash, std::size_t position) {
    constexpr std::size_t kFirstSize = 256;
    if (2 * (taken_ + 1) > slots_.size()) {
        std::vector<Slot> larger(std::max(kFirstSize, 2 * slots_.size()));
        const std::vector<Slot> former = std::exchange(slots_, std::move(larger));
        for (const Slot& slot : former) {
            if (slot.number != 0) {
                place(slot);
            }
        }
    }
    place({static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(position + 1)});
    ++taken_;
}

void KeyIndex::place(Slot slot) {
    std::size_t at = home(slot.hash);
    while (slots_[at].number != 0) {
        at = next(at);
    }
    slots_[at] = slot;
}

}  // namespace rcp
