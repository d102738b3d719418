#include "inspect/explain/losers.h"

#include "diagnostics/whys.h"
#include "launcher/vocabulary/property_keys.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// Those of whose key the launch has found the first entry.
void addLaterEntries(const Witness& witness, const Sources& sources, const Launch& launch,
                     std::vector<Loser>& losers) {
    for (const ReadFile& file : sources.files()) {
        const LaunchInputs& inputs = launch.inputs;
        const bool isUsers = keyFileOf(file.path) == kUserFile;
        for (const Property& entry : file.entries.entries()) {
            const Property* first =
                (isUsers ? inputs.userProperties : inputs.properties).find(entry.key);
            if (first != nullptr && witness.wasFound(first->origin) &&
                !witness.wasFound(entry.origin)) {
                losers.push_back({entry.value, entry.origin, &whys::kReadFirstWins, first->origin});
            }
        }
    }
}

void addEarlierChanges(const EnvironmentChanges& changes, std::vector<Loser>& losers) {
    std::map<std::wstring, const EnvironmentChange*> last;
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        const auto [at, isLast] = last.try_emplace(change->name, &*change);
        if (!isLast) {
            losers.push_back(
                {change->value, change->origin, &whys::kReadLastWins, at->second->origin});
        }
    }
}

}  // namespace

Losers::Losers(const Witness& witness, const Sources& sources, const Launch& launch)
    : losers_(witness.losers()) {
    addLaterEntries(witness, sources, launch, losers_);
    if (launch.plan) {
        addEarlierChanges(launch.plan->environment, losers_);
    }
    for (std::size_t i = 0; i < losers_.size(); ++i) {
        last_[placeOf(losers_[i].origin)] = i;
    }
    for (const auto& [place, i] : last_) {
        const Origin* winner = winnerOver(losers_[i].origin);
        if (winner != nullptr && !winner->isComputed()) {
            beaten_[placeOf(*winner)].push_back(i);
        }
    }
}

const Loser* Losers::from(const Origin& origin) const {
    const auto found = last_.find(placeOf(origin));
    return found == last_.end() ? nullptr : &losers_[found->second];
}

const Origin* Losers::winnerOver(const Origin& loser) const {
    constexpr int kLongestChain = 8;  // none is: whoever has lost to an option does so once
    const Origin* winner = nullptr;
    const Loser* next = from(loser);
    for (int i = 0; i < kLongestChain && next != nullptr && next->winner; ++i) {
        winner = &*next->winner;
        next = from(*winner);
    }
    return winner;
}

std::vector<const Loser*> Losers::beatenBy(const Origin& winner) const {
    std::vector<const Loser*> beaten;
    if (const auto found = beaten_.find(placeOf(winner)); found != beaten_.end()) {
        for (const std::size_t i : found->second) {
            beaten.push_back(&losers_[i]);
        }
        std::sort(beaten.begin(), beaten.end());  // as they were told
    }
    return beaten;
}

}  // namespace rcp::inspect
