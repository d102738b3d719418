#include "platform/platform.h"
#include "tests/inspect/status_fixture.h"

#include <sys/file.h>

namespace rcp::inspect::test {
namespace {

// A process id that was somebody's and is nobody's now.
long endedProcess() {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    return child;
}

bool names(const Json& processes, long id) {
    return std::any_of(processes.begin(), processes.end(),
                       [id](const Json& process) { return process["process"] == id; });
}

class LockedFile {
  public:
    explicit LockedFile(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        EXPECT_EQ(flock(descriptor_, LOCK_EX), 0);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    LockedFile(LockedFile&&) = delete;
    LockedFile& operator=(LockedFile&&) = delete;
    ~LockedFile() { close(descriptor_); }

  private:
    int descriptor_;
};

TEST_F(StatusTest, AFreshAreaWillBeMadeByAMainLauncher) {
    const Json state = status();
    EXPECT_EQ(state["layout"], 1);
    EXPECT_EQ(state["command"], "status");
    EXPECT_EQ(state["workspace"], folder_.narrow("home/workspace/ann"));
    EXPECT_EQ(state["configuration"], folder_.narrow("home/workspace/ann/.config"));
    EXPECT_EQ(state["isThere"], false);
    EXPECT_EQ(state["lock"]["content"], "missing");
    EXPECT_EQ(state["installId"]["area"], Json());
    EXPECT_EQ(state["nextLaunch"]["role"], "main");
    EXPECT_EQ(state["nextLaunch"]["steps"], Json({"make-area", "start-platform"}));
    EXPECT_EQ(state["nextLaunch"]["record"], Json());
    EXPECT_EQ(state["lastLaunch"], Json());

    EXPECT_EQ(launch(), 0);
    EXPECT_TRUE(folder_.has(area(".config/rcpinstall.properties")));
    EXPECT_TRUE(folder_.has("report"));
}

TEST_F(StatusTest, TheWorkspaceIsTheOneOfTheseArguments) {
    const std::string other = folder_.narrow("other");
    EXPECT_EQ(status({"-data", other})["workspace"], other);
    EXPECT_NE(text({"-data", other}).find(other + " (not yet there)"), std::string::npos);
}

TEST_F(StatusTest, BesideARunningPlatformTheNextLaunchIsADaemon) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    const Json state = status();
    const Json expected = {{"role", "daemon"},
                           {"platform", platform->id()},
                           {"steps", {"pass-arguments-on"}},
                           {"record", Json()},
                           {"obstacle", Json()}};
    EXPECT_EQ(state["nextLaunch"], expected);
    EXPECT_EQ(state["lock"]["process"], platform->id());
    EXPECT_EQ(state["lock"]["isAlive"], true);
    EXPECT_EQ(state["lock"]["isPlatform"], true);
    EXPECT_NE(text().find("process " + std::to_string(platform->id()) + " is running"),
              std::string::npos);

    std::filesystem::remove(folder_.path() / "stay");
    platform->wait();
    EXPECT_EQ(status()["nextLaunch"]["role"], "main");
}

TEST_F(StatusTest, AProvisioningProgramIsWaitedFor) {
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(status()["lock"]["provisioner"], Json());
    {
        const Program provisioning({"/bin/sleep", "1000"}, environment());
        folder_.write(area(".rcp.provisioning"),
                      std::to_string(provisioning.id()) + " " +
                          platform::startOfProcess(provisioning.id()).value_or("") + "\n");
        const Json state = status();
        EXPECT_EQ(state["lock"]["provisioner"], provisioning.id());
        const Json steps = {"wait-for-provisioning", "start-platform"};
        EXPECT_EQ(state["nextLaunch"]["steps"], steps);
        EXPECT_NE(text().find("now, by process " + std::to_string(provisioning.id())),
                  std::string::npos);
    }
    EXPECT_EQ(status()["lock"]["provisioner"], Json());
    EXPECT_EQ(status()["nextLaunch"]["steps"], Json({"start-platform"}));
    EXPECT_TRUE(folder_.has(area(".rcp.provisioning"))) << "looking removes nothing";
}

TEST_F(StatusTest, AnIdOfAProcessThatIsGoneKeepsNobodyOut) {
    const long id = endedProcess();
    folder_.write(area(".rcp.lock"), std::to_string(id) + "          ");
    const Json state = status();
    EXPECT_EQ(state["lock"]["content"], "process");
    EXPECT_EQ(state["lock"]["process"], id);
    EXPECT_EQ(state["lock"]["isAlive"], false);
    EXPECT_EQ(state["lock"]["isPlatform"], false);
    EXPECT_EQ(state["nextLaunch"]["role"], "main");
    EXPECT_NE(text().find("is recorded, but is gone"), std::string::npos);
}

TEST_F(StatusTest, AnIdThatAnotherProgramHasNowIsNotThePlatform) {
    folder_.write(area(".rcp.lock"), std::to_string(getpid()) + "          ");
    const Json state = status();
    EXPECT_EQ(state["lock"]["isAlive"], true);
    EXPECT_EQ(state["lock"]["isPlatform"], false);
    EXPECT_EQ(state["nextLaunch"]["role"], "main");
}

TEST_F(StatusTest, ALockFileWithoutANumberEndsTheNextLaunch) {
    folder_.write(area(".rcp.lock"), "nonsense");
    const Json state = status();
    EXPECT_EQ(state["lock"]["content"], "other");
    EXPECT_EQ(state["nextLaunch"]["role"], "none");
    EXPECT_EQ(state["nextLaunch"]["record"]["messages"][0]["id"], "ZYPRA0092E");
    EXPECT_EQ(launch(), 255);
}

TEST_F(StatusTest, ADirectoryInPlaceOfTheLockFileEndsTheNextLaunch) {
    std::filesystem::create_directories(folder_.path() / area(".rcp.lock"));
    const Json state = status();
    EXPECT_EQ(state["lock"]["content"], "unreadable");
    EXPECT_EQ(state["nextLaunch"]["record"]["messages"][0]["id"], "ZYPRA0054E");
    EXPECT_EQ(launch(), 255);
}

TEST_F(StatusTest, AFreeLockIsHeldByNobody) {
    folder_.write(area(".rcp.lock"), "              ");
    const Json lock = status()["lock"];
    EXPECT_EQ(lock["content"], "nothing");
    EXPECT_EQ(lock["isHeld"], false);
    EXPECT_EQ(lock["holders"], Json::array());
}

TEST_F(StatusTest, WhoHoldsTheLockAndWhoWaitsForItIsNamed) {
    folder_.write(area(".rcp.lock"), "");
    Json state;
    {
        const LockedFile held(folder_.narrow(area(".rcp.lock")));
        const Program waiting(launchWords({}), environment());
        waitUntil([&] {
            state = status();
            return names(state["lock"]["waiting"], waiting.id());
        });
        // The lock was not touched: whoever waits for it still does.
        EXPECT_EQ(waitpid(waiting.id(), nullptr, WNOHANG), 0);
    }
    EXPECT_EQ(state["lock"]["isHeld"], true);
    EXPECT_TRUE(names(state["lock"]["holders"], getpid())) << state.dump(2);
    EXPECT_EQ(state["nextLaunch"]["steps"][0], "wait-for-lock");
}

TEST_F(StatusTest, ALockThatWasHandedOnIsHeldByWhoHasItNow) {
    folder_.write(area(".rcp.lock"), "");
    const std::array<int, 2> ready = makePipe();
    const pid_t taker = fork();
    if (taker == 0) {
        const LockedFile held(folder_.narrow(area(".rcp.lock")));
        const pid_t keeper = fork();
        if (keeper == 0) {
            alarm(60);
            pause();
        }
        _exit(write(ready[1], &keeper, sizeof keeper) == sizeof keeper ? 0 : 1);
    }
    waitpid(taker, nullptr, 0);
    pid_t keeper = 0;
    ASSERT_EQ(read(ready[0], &keeper, sizeof keeper), static_cast<ssize_t>(sizeof keeper));
    const Json lock = status()["lock"];
    kill(keeper, SIGKILL);
    close(ready[0]);
    close(ready[1]);
    EXPECT_TRUE(names(lock["holders"], keeper)) << lock.dump(2);
    EXPECT_FALSE(names(lock["holders"], taker)) << lock.dump(2);
}

}  // namespace
}  // namespace rcp::inspect::test
