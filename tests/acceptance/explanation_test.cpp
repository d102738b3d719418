// rcpinspect beside the launcher: what it explains is what happens, and explaining changes nothing.
#include "explanation.h"

#include "checks.h"
#include "random_installation.h"
#include "traced_calls.h"

namespace acceptance {

namespace {

class Explanations : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }

    // Kinds of installations and of launches that the random lines rarely make.
    static void vary(Installation& velmo, Dice& dice) {
        for (size_t left = dice.below(4); left > 0; --left) {
            velmo.addLine(dice.pick(unusualLines()));
        }
        if (dice.chance(10)) {
            velmo.write("Velmo/rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini",
                        "a=b\n");
        }
        if (dice.chance(10)) {
            velmo.write(velmo.base + "/macosx/x86/eclipse", "no program of this system", 0755);
        }
    }

    // One launch explained and made, and then a second one in the area that the first one made.
    void explainAndLaunch(Installation& velmo, Dice& dice) {
        const Texts properties = makeRandom(velmo, dice);
        vary(velmo, dice);
        for (int again = 0; again < 2 && !HasFailure(); ++again) {
            const Texts arguments = randomArguments(velmo, dice);
            SCOPED_TRACE(describe(properties, arguments));
            velmo.write("unused", "");  // the property files are written with the first launch
            const Json explanation = explain(velmo, arguments);
            expectSameOfStagedTree(velmo, arguments);
            const Snapshot before = takeSnapshot(velmo.root);
            const Launch launch = velmo.launch(arguments);
            const Snapshot after = takeSnapshot(velmo.root);
            expectExplained(explanation, launch, logOfLaunch(before, after), velmo.environment);
            expectChangesExplained(explanation, velmo, before, after);
            started_ += launch.platform ? 1 : 0;
            ++launches_;
        }
    }

    int started_ = 0;
    int launches_ = 0;
};

TEST_P(Explanations, AgreeWithTheLaunchesOfRandomInstallations) {
    Dice dice(seedFor(100 + GetParam()));
    for (int i = 0; i < 50 && !HasFailure(); ++i) {
        SCOPED_TRACE("installation " + std::to_string(i));
        Installation velmo;
        explainAndLaunch(velmo, dice);
    }
    EXPECT_TRUE(HasFailure() || started_ > launches_ / 4) << "too few of them started a platform";
}

INSTANTIATE_TEST_SUITE_P(Seeds, Explanations, testing::Range(1U, 11U));

class Explaining : public testing::Test {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }
};

TEST_F(Explaining, ChangesNoFileNoTimeAndNoLock) {
    Installation velmo;
    velmo.start();
    for (const Texts& arguments : {Texts{}, Texts{"-resetconfig"}, Texts{"-debug"}}) {
        const Snapshot before = takeSnapshot(velmo.root);
        explain(velmo, arguments);
        EXPECT_EQ(differences(before, takeSnapshot(velmo.root)), "");
    }
}

TEST_F(Explaining, SaysThatALaunchEndsWhoseProgramCannotBeStarted) {
    Installation velmo;
    velmo.write(velmo.base + "/macosx/x86/eclipse", "no program of this system", 0755);
    const Json explanation = explain(velmo, {});
    EXPECT_EQ(explanation["outcome"]["kind"].text, "ends");
    const Snapshot before = takeSnapshot(velmo.root);
    const Launch launch = velmo.launch({});
    EXPECT_EQ(launch.status, 0);
    expectExplained(explanation, launch, logOfLaunch(before, takeSnapshot(velmo.root)),
                    velmo.environment);
}

TEST_F(Explaining, SaysTheSameOfATreeThatIsStaged) {
    Installation velmo;
    velmo.set("rcp.data", velmo.home + "/users");
    velmo.set("vmarg.home", "-Dhome=" + velmo.home);
    expectSameOfStagedTree(velmo, {"-resetconfig"});
    velmo.start();
    expectSameOfStagedTree(velmo, {"-resetconfig"});
}

TEST_F(Explaining, SaysThatARunningPlatformMakesADaemon) {
    Installation velmo;
    StayingLaunch staying = velmo.startStaying();
    staying.waitUntilRecorded();
    const Json explanation = explain(velmo, {});
    EXPECT_EQ(explanation["outcome"]["role"].text, "daemon");
    const Texts elements = elementTexts(explanation);
    const auto daemon = std::find(elements.begin(), elements.end(), "-useDaemon");
    ASSERT_NE(daemon, elements.end());
    EXPECT_EQ(*(daemon + 1), std::to_string(staying.pid()));
    staying.finish();
}

}  // namespace

}  // namespace acceptance
