// A launch that is killed at any instant at which it changes files: the next one ends up where an
// undisturbed one would have.
#include "traced_calls.h"
#include "user_area_scenarios.h"

#include <gtest/gtest.h>

#include <tuple>

namespace acceptance {

namespace {

// The calls are dealt out to this many tests, which can run side by side.
constexpr int kShards = 3;

class Crash : public testing::TestWithParam<std::tuple<int, int>> {
  protected:
    const Scenario scenario = scenarios()[static_cast<std::size_t>(std::get<0>(GetParam()))];
    const std::size_t shard = static_cast<std::size_t>(std::get<1>(GetParam()));
};

TEST_P(Crash, NextLaunchEndsUpWhereAnUndisturbedOneWouldHave) {
    if (!tracingObstacle().empty()) {
        GTEST_SKIP() << tracingObstacle();
    }
    Installation undisturbed;
    scenario.prepare(undisturbed);
    const std::vector<TracedCall> calls = traceLaunch(undisturbed, scenario.disturbed);
    ASSERT_GT(calls.size(), 30U);
    const Outcome expected = launchNext(undisturbed, scenario);

    for (std::size_t i = shard; i < calls.size() && !HasFailure(); i += kShards) {
        SCOPED_TRACE(calls[i].name + " " + std::to_string(calls[i].count));
        Installation velmo;
        scenario.prepare(velmo);
        launchKilledAt(velmo, calls[i], scenario.disturbed);
        expectSameOutcome(expected, launchNext(velmo, scenario), scenario);
    }
}

INSTANTIATE_TEST_SUITE_P(
    AtEveryFileChangingCall, Crash,
    testing::Combine(testing::Range(0, static_cast<int>(scenarios().size())),
                     testing::Range(0, kShards)),
    [](const auto& info) {
        return scenarios()[static_cast<std::size_t>(std::get<0>(info.param))].name +
               std::to_string(std::get<1>(info.param));
    });

}  // namespace

}  // namespace acceptance
