#include "inspect/check/near_keys.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cwctype>
#include <numeric>
#include <vector>

namespace rcp::inspect {
namespace {

bool isSame(wchar_t left, wchar_t right) {
    return std::towlower(static_cast<std::wint_t>(left)) ==
           std::towlower(static_cast<std::wint_t>(right));
}

// As much of `key` as has as many dots as `prefix`: what the prefix may have been meant by.
std::wstring_view headLike(std::wstring_view prefix, std::wstring_view key) {
    auto dots = std::count(prefix.begin(), prefix.end(), L'.');
    if (!prefix.ends_with(L'.')) {
        ++dots;
    }
    std::size_t end = 0;
    for (; dots > 0; --dots) {
        end = key.find(L'.', end);
        if (end == std::wstring_view::npos) {
            return {};
        }
        ++end;
    }
    return key.substr(0, prefix.ends_with(L'.') ? end : end - 1);
}

// Which characters a text has, but for those that share a bit. Each that the other lacks is a slip.
std::uint64_t characterMask(std::wstring_view text) {
    std::uint64_t mask = 0;
    for (const wchar_t character : text) {
        const auto lower = std::towlower(static_cast<std::wint_t>(character));
        mask |= std::uint64_t{1} << (lower % 64);
    }
    return mask;
}

struct KnownKey {
    const PropertyKey* key;
    std::uint64_t mask;
};

const std::vector<KnownKey>& knownKeys() {
    static const std::vector<KnownKey> all = [] {
        std::vector<KnownKey> known;
        for (const PropertyKey& key : propertyKeys()) {
            known.push_back({&key, characterMask(key.key)});
        }
        return known;
    }();
    return all;
}

// One slip in a short word, two in a longer one.
std::size_t tolerance(std::wstring_view key) {
    if (key.size() < 4) {
        return 0;
    }
    return key.size() < 8 ? 1 : 2;
}

}  // namespace

// Row by row of the table of distances between beginnings; a swap looks two rows back.
std::size_t editDistance(std::wstring_view left, std::wstring_view right, std::size_t limit) {
    const auto [shorter, longer] = std::minmax({left.size(), right.size()});
    if (longer - shorter > limit) {
        return longer - shorter;
    }
    std::vector<std::size_t> before;
    std::vector<std::size_t> former;
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= left.size(); ++i) {
        before.swap(former);
        former.swap(row);
        row.assign(right.size() + 1, i);
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t exchange = isSame(left[i - 1], right[j - 1]) ? 0 : 1;
            row[j] = std::min({former[j] + 1, row[j - 1] + 1, former[j - 1] + exchange});
            if (i > 1 && j > 1 && isSame(left[i - 1], right[j - 2]) &&
                isSame(left[i - 2], right[j - 1])) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        // What follows is no nearer than the nearest of two rows.
        const std::size_t least = std::min(*std::min_element(row.begin(), row.end()),
                                           *std::min_element(former.begin(), former.end()));
        if (least > limit) {
            return least;
        }
    }
    return row[right.size()];
}

std::wstring nearestKey(std::wstring_view key, KeyFile file) {
    std::wstring nearest;
    std::size_t best = std::wstring::npos;
    for (const auto& [entry, mask] : knownKeys()) {
        const PropertyKey& known = *entry;
        if ((known.files & file) == 0 || known.key.starts_with(L'-')) {
            continue;
        }
        const bool isWhole = known.tail == KeyTail::kNothing;
        const std::wstring_view head = isWhole ? key : headLike(known.key, key);
        const std::size_t limit = tolerance(known.key);
        const auto strange = static_cast<std::size_t>(std::popcount(characterMask(head) & ~mask));
        if (head.empty() || strange > limit) {
            continue;
        }
        const std::size_t distance = editDistance(head, known.key, limit);
        if (distance <= limit && distance < best) {
            std::wstring candidate(known.key);
            candidate += key.substr(head.size());
            if (candidate != key) {
                best = distance;
                nearest = std::move(candidate);
            }
        }
    }
    return nearest;
}

}  // namespace rcp::inspect
