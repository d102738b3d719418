// What does not count in a launch, by which of the launcher's rules, and what counts instead.
#pragma once

#include "inspect/explain/sources.h"
#include "inspect/explain/witness.h"
#include "launcher/launch.h"

#include <map>
#include <vector>

namespace rcp::inspect {

class Losers {
  public:
    /// What the launcher has told, the entries behind the first of their key, and the variables that are
    /// changed again.
    Losers(const Witness& witness, const Sources& sources, const Launch& launch);

    /// Why what comes from there does not count, as last told; null when it does.
    [[nodiscard]] const Loser* from(const Origin& origin) const;
    /// Where that comes from which counts in the end instead of what has lost; null when nothing does.
    [[nodiscard]] const Origin* winnerOver(const Origin& loser) const;
    /// All in whose place that counts what comes from there.
    [[nodiscard]] std::vector<const Loser*> beatenBy(const Origin& winner) const;

  private:
    std::vector<Loser> losers_;
    std::map<Place, std::size_t> last_;                 // told of each place
    std::map<Place, std::vector<std::size_t>> beaten_;  // by each winner
};

}  // namespace rcp::inspect
