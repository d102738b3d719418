// Interleavings of the start-up protocol that its model (tests/protocol/startup.pml) has gone through,
// carried out by real launchers. Each is held in front of every call by which launchers affect one
// another and let go when the model says so; it must then come to the step at which the model has it
// next, and become what it becomes there.
#include "checks.h"
#include "step_listener.h"
#include "tests/acceptance/paths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace acceptance {

namespace {

constexpr int kMostWaits = 25;  // of one second, which a restart makes at most

struct Interleaving {
    std::string name;
    Texts steps;
};

std::vector<Interleaving> interleavings() {
    std::vector<Interleaving> result;
    std::ifstream file(rcp::test::seen(ACCEPTANCE_INTERLEAVINGS));
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("interleaving ")) {
            result.push_back({line.substr(13), {}});
        } else if (!line.empty()) {
            result.back().steps.push_back(line);
        }
    }
    return result;
}

// Where the program stands when a step of the model is next.
std::string stopOf(const std::string& step) {
    if (step.starts_with("isLedTo")) {
        return "isLedTo";
    }
    if (step == "fork fails") {
        return "fork";
    }
    if (step == "waitForProvisioning") {
        return "sleeps";
    }
    if (step.starts_with("become")) {
        return "becomes";
    }
    const bool isDecision = step.starts_with("isMainProcessRunning") ||
                            step == "runningProvisioning" ||
                            step.starts_with("giveOldPlatformUp") || step == "invalidateLockFile";
    return isDecision ? "decides" : step;
}

class Replay {
  public:
    Replay(const Interleaving& interleaving, bool inProcess) : steps_(interleaving.steps) {
        velmo_.set("invoke.eclipse.dylib", inProcess ? "1" : "0");
        velmo_.set("provisioning", "true").set("provisioning.application", "com.ovr.provision");
        velmo_.set("provisioning.manifest.version", "1");
        velmo_.addInstallLine("provisioning.manifest.version=1");
        ended_ =
            velmo_.launch().pid;  // not the first launch any more: only an installer provisions
        if (velmo_.launch().platform->has("com.ovr.provision")) {
            ADD_FAILURE() << "provisioning is due for everybody";
        }
        velmo_.write(velmo_.workspace + "/.rcp.lock", std::to_string(ended_) + "          ", 0600);
        velmo_.environment["LD_PRELOAD"] = rcp::test::seen(ACCEPTANCE_STANDIN_STEPS);
        velmo_.environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0";
        velmo_.environment["RCP_STANDIN_STEPS"] = listener_.name();
    }

    void run() {
        for (std::size_t i = 0; i < steps_.size() && !testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE("step " + std::to_string(i + 1) + ": " + steps_[i]);
            carryOut(steps_[i]);
        }
    }

  private:
    void carryOut(const std::string& line) {
        if (line == "removeWorkspace") {
            std::filesystem::remove(velmo_.workspace + "/.rcp.lock");
            std::filesystem::remove(velmo_.workspace + "/.rcp.provisioning");
            return;
        }
        const std::string launcher = line.substr(0, 1);
        const std::string step = line.substr(2);
        if (step.starts_with("child: ")) {
            childStep(launcher, step.substr(7));
        } else if (step.starts_with("starts")) {
            start(launcher, step.ends_with("restart"));
        } else if (step.starts_with("believes to be ")) {
            beliefs_[launcher] = step.substr(15);
        } else if (step == "is killed" || step == "ends") {
            kill(launcher);
        } else if (step.starts_with("become")) {
            becomeUp(launcher);
        } else if (step != "createAndOpenLockFile") {  // which belongs to the step before
            launcherStep(launcher, step);
        }
    }

    void start(const std::string& launcher, bool isRestart) {
        Texts arguments;
        if (isRestart) {
            const std::string id = readFile(velmo_.workspace + "/.rcp.lock");
            arguments = {"-restart", "-rcp_old_pid", id.substr(0, id.find(' '))};
        }
        if (std::find(steps_.begin(), steps_.end(), launcher + " recordProvisioning") !=
            steps_.end()) {
            arguments.insert(arguments.end(), {"-rcpLauncherWait", "-provManifest", "m"});
        }
        velmo_.environment["RCP_STANDIN_LAUNCHER"] = launcher;
        launches_.emplace(launcher, velmo_.startStaying(arguments));
        goOn(launcher, "starts");
    }

    // Lets a process go on from where it must stand by now, and waits until it stands again.
    void goOn(const std::string& process, const std::string& stop, char answer = 'g') {
        ASSERT_EQ(listener_.stopOf(process), stop);
        listener_.release(process, answer);
        listener_.await(process);
    }

    void launcherStep(const std::string& launcher, const std::string& step) {
        if (step.starts_with("isMainProcessRunning") && listener_.stopOf(launcher) == "sleeps") {
            waitForOldPlatform(launcher, step);
            return;
        }
        goOn(launcher, stopOf(step), step == "fork fails" ? 'f' : 'g');
        if (step == "fork fails") {
            goOn(launcher, "unlockLockFile");
        } else if (step == "fork") {
            const std::string child = launcher + " child";
            listener_.await(child);
            ASSERT_EQ(listener_.stopOf(child), "begins");
            listener_.release(child, 'g');
        }
    }

    // The model's third round is the program's last one.
    void waitForOldPlatform(const std::string& launcher, const std::string& step) {
        goOn(launcher, "sleeps");
        const bool isLast = step == "isMainProcessRunning" && ++rounds_[launcher] == 3;
        for (int i = 0; isLast && i < kMostWaits && listener_.stopOf(launcher) == "sleeps"; ++i) {
            goOn(launcher, "sleeps");
        }
        const bool goesOnWaiting = step == "isMainProcessRunning" && !isLast;
        EXPECT_EQ(listener_.stopOf(launcher), goesOnWaiting ? "sleeps" : "lockExclusively");
    }

    void childStep(const std::string& launcher, const std::string& step) {
        const std::string child = launcher + " child";
        if (step == "is killed") {
            listener_.kill(child);
        } else if (step == "endLaunch") {
            ASSERT_EQ(listener_.stopOf(child), step);
            listener_.release(child, 'g');
            listener_.awaitEnd(child);
        } else {
            listener_.await(child);  // it may stand at the gate until now
            goOn(child, step);
            if (step == "populateLockFile") {
                ASSERT_EQ(listener_.stopOf(child), "has recorded");
                listener_.release(child, 'g');
            }
        }
    }

    void becomeUp(const std::string& launcher) {
        const bool provisions = std::find(steps_.begin(), steps_.end(),
                                          launcher + " recordProvisioning") != steps_.end();
        if (!provisions) {
            EXPECT_NE(listener_.stopOf(launcher + " child"), "unlockLockFile")
                << "the gate is shut";
        }
        ASSERT_EQ(listener_.stopOf(launcher), "becomes");
        listener_.release(launcher, 'g');
        const Report platform = launches_.at(launcher).platform();
        EXPECT_EQ(platform.has("com.ovr.provision"), provisions);
        const std::string& belief = beliefs_[launcher];
        EXPECT_EQ(platform.has("-useDaemon"), belief != "main") << belief;
        if (belief != "main") {
            const pid_t main = launches_.at(belief.substr(belief.size() - 1)).pid();
            EXPECT_EQ(platform.after("-useDaemon"), std::to_string(main)) << belief;
        }
    }

    void kill(const std::string& launcher) {
        listener_.kill(launcher);
        EXPECT_FALSE(launches_.at(launcher).running());
    }

    const Texts& steps_;
    Installation velmo_;
    pid_t ended_ = 0;
    std::map<std::string, StayingLaunch> launches_;
    std::map<std::string, std::string> beliefs_;
    std::map<std::string, int> rounds_;
    StepListener listener_;  // goes first: whoever still stands goes on
};

class Protocol : public testing::TestWithParam<std::size_t> {};

TEST_P(Protocol, LaunchersDoWhatTheModelDoes) {
    NEEDS_PRIVATE_TMP();
    const std::vector<Interleaving> all = interleavings();
    Replay(all[GetParam()], GetParam() % 2 == 1).run();
}

INSTANTIATE_TEST_SUITE_P(Interleaving, Protocol,
                         testing::Range(std::size_t{0}, interleavings().size()),
                         [](const auto& info) {
                             return "Seed" + interleavings()[info.param].name;
                         });

TEST(ProtocolInterleavings, AreAtLeastTwenty) {
    EXPECT_GE(interleavings().size(), 20U);
}

}  // namespace

}  // namespace acceptance
