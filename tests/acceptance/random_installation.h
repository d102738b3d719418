// Installations and arguments at random, from a printed seed.
#pragma once

#include "installation.h"

#include <random>

namespace acceptance {

class Dice {
  public:
    explicit Dice(unsigned seed) : engine_(seed) {}

    size_t below(size_t limit) { return static_cast<size_t>(engine_()) % limit; }
    bool chance(size_t percent) { return below(100) < percent; }
    template <typename Item>
    const Item& pick(const std::vector<Item>& items) {
        return items[below(items.size())];
    }

  private:
    std::mt19937 engine_;
};

/// The seed of a test: the standard one unless RCP_TEST_SEED sets another; printed.
unsigned seedFor(unsigned standard);

/// One line for a property file, usually sound.
std::string randomLine(Dice& dice);
/// Lines for kinds of installations and of launches that the random ones rarely make.
const Texts& unusualLines();
/// Property files at random; returns the lines of the launcher's own.
Texts makeRandom(Installation& velmo, Dice& dice);
Texts randomArguments(const Installation& velmo, Dice& dice);
/// Properties and arguments, for a failure's message.
std::string describe(const Texts& properties, const Texts& arguments);

}  // namespace acceptance
