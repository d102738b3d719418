#include "launcher/properties/key_index.h"

#include <algorithm>

namespace rcp {

void KeyIndex::add(std::size_t hash, std::size_t position) {
    constexpr std::size_t kFirstSize = 256;
    keys_.push_back({static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(position)});
    if (4 * keys_.size() <= 3 * slots_.size()) {
        place(keys_.back().hash, keys_.size());
        return;
    }
    slots_.assign(std::max(kFirstSize, 2 * slots_.size()), kFree);
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        place(keys_[i].hash, i + 1);
    }
}

void KeyIndex::place(std::uint32_t hash, std::size_t number) {
    std::size_t at = home(hash);
    while (slots_[at] != kFree) {
        at = next(at);
    }
    slots_[at] = (hash & ~numberBits()) | static_cast<Slot>(number);
}

}  // namespace rcp
