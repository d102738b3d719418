#include "inspect/check/near_keys.h"

#include <algorithm>
#include <cwctype>
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

// One slip in a short word, two in a longer one.
std::size_t tolerance(std::wstring_view key) {
    if (key.size() < 4) {
        return 0;
    }
    return key.size() < 8 ? 1 : 2;
}

}  // namespace

std::size_t editDistance(std::wstring_view left, std::wstring_view right) {
    std::vector<std::vector<std::size_t>> cost(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t exchange = isSame(left[i - 1], right[j - 1]) ? 0 : 1;
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + exchange});
            if (i > 1 && j > 1 && isSame(left[i - 1], right[j - 2]) &&
                isSame(left[i - 2], right[j - 1])) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[left.size()][right.size()];
}

std::wstring nearestKey(std::wstring_view key, KeyFile file) {
    std::wstring nearest;
    std::size_t best = std::wstring::npos;
    for (const PropertyKey& known : propertyKeys()) {
        if ((known.files & file) == 0 || known.key.starts_with(L'-')) {
            continue;
        }
        const bool isWhole = known.tail == KeyTail::kNothing;
        const std::wstring_view head = isWhole ? key : headLike(known.key, key);
        if (head.size() > known.key.size() + tolerance(known.key)) {
            continue;  // too far apart for the distance to be worth its time
        }
        const std::size_t distance = editDistance(head, known.key);
        if (!head.empty() && distance <= tolerance(known.key) && distance < best) {
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
