// A launcher waits for the end of another's provisioning. The clock is the test's own.
#include "launcher/instance/running_provisioning.h"

#include "base/system_calls.h"
#include "platform/platform.h"
#include "tests/unit/instance/lock_fixture.h"

#include <functional>

namespace rcp {
namespace {

class RunningProvisioning : public test::LockTest {
  protected:
    RunningProvisioning() : clock_(test::sleepingLike(&tick)) {
        seconds = 0;
        whileAsleep = nullptr;
    }
    ~RunningProvisioning() override { whileAsleep = nullptr; }

    [[nodiscard]] std::wstring file() const { return folder_.wide(kName); }
    void write(long process, const std::string& start) const {
        folder_.write(kName, std::to_string(process) + " " + start + "\n");
    }
    // A process that provisions until it is ended.
    void start() {
        provisioning_ = std::make_unique<test::ChildProcess>([this] {
            recordProvisioning(file());
            return pause();
        });
        while (!folder_.has(kName)) {
            usleep(1000);
        }
    }
    [[nodiscard]] pid_t id() const { return provisioning_->pid(); }
    void end() { provisioning_->end(); }

    static constexpr char kName[] = ".rcp.provisioning";
    static inline int seconds = 0;
    // Called with the number of the second that passes.
    static inline std::function<void(int)> whileAsleep;

  private:
    static unsigned tick(unsigned duration) {
        EXPECT_EQ(duration, 1U);
        whileAsleep(++seconds);
        return 0;
    }
    InstalledCalls clock_;
    std::unique_ptr<test::ChildProcess> provisioning_;
};

int countOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

TEST_F(RunningProvisioning, IsTheRecordedProcessUntilItEnds) {
    EXPECT_EQ(runningProvisioning(file()), std::nullopt) << "there is no file";
    start();
    EXPECT_EQ(folder_.read(kName),
              std::to_string(id()) + " " + platform::startOfProcess(id()).value_or("") + "\n");
    EXPECT_EQ(runningProvisioning(file()), id());
    kill(id(), SIGKILL);
    while (platform::startOfProcess(id())) {
        usleep(1000);
    }
    EXPECT_EQ(runningProvisioning(file()), std::nullopt) << "nobody has waited for it yet";
    end();
    EXPECT_EQ(runningProvisioning(file()), std::nullopt);
    EXPECT_FALSE(folder_.has(".rcp.provisioning.tmp"));
}

TEST_F(RunningProvisioning, IdThatAnotherProcessHasNowIsNobodys) {
    write(platformId(), platform::startOfProcess(getpid()).value_or("") + "1");
    EXPECT_EQ(runningProvisioning(file()), std::nullopt);
    write(platformId(), platform::startOfProcess(platformId()).value_or(""));
    EXPECT_EQ(runningProvisioning(file()), platformId());
}

TEST_F(RunningProvisioning, ProgramThatBecomesALauncherDoesNotWaitForItself) {
    recordProvisioning(file());
    EXPECT_EQ(runningProvisioning(file()), std::nullopt);
    EXPECT_TRUE(take());
}

TEST_F(RunningProvisioning, FileWithAnythingElseIsNobodys) {
    const std::string id = std::to_string(platformId());
    for (const std::string& content :
         {std::string(), std::string("nonsense\n"), id, id + "\n", id + " \n", "-" + id + " 1\n",
          std::string("99999999999999999999 1\n"), std::string("0 1\n"), std::string(300, '\0')}) {
        folder_.write(kName, content);
        EXPECT_EQ(runningProvisioning(file()), std::nullopt) << content;
    }
    std::filesystem::remove(folder_.path() / kName);
    ASSERT_EQ(mkfifo(folder_.narrow(kName).c_str(), 0600), 0);
    EXPECT_EQ(runningProvisioning(file()), std::nullopt) << "without a wait";
}

int unlinksMade = 0;

TEST_F(RunningProvisioning, FileIsRemovedOnlyWhereThereIsOne) {
    SystemCalls counting = systemCalls;
    counting.unlink = [](const char* path) {
        ++unlinksMade;
        return kSystemsOwnCalls.unlink(path);
    };
    const InstalledCalls installed(counting);
    unlinksMade = 0;
    EXPECT_FALSE(settleProvisioning(file()));
    EXPECT_EQ(unlinksMade, 0);
    folder_.write(kName, "1 ended\n");
    EXPECT_FALSE(settleProvisioning(file()));
    EXPECT_EQ(unlinksMade, 1);
    EXPECT_FALSE(folder_.has(kName));
    start();
    EXPECT_TRUE(settleProvisioning(file()));
    EXPECT_TRUE(folder_.has(kName));
}

TEST_F(RunningProvisioning, FileThatCannotBeWrittenOrRemovedIsReported) {
    const test::Records records(folder_);
    std::filesystem::create_directories(folder_.path() / kName / "in the way");
    recordProvisioning(file());
    EXPECT_TRUE(take());
    EXPECT_TRUE(records.has("Error: provisioning: " + folder_.narrow(kName) +
                            " cannot be written; another launch may provision too : "));
    EXPECT_TRUE(
        records.has("Error: provisioning: " + folder_.narrow(kName) + " cannot be removed : "));
}

TEST_F(RunningProvisioning, LauncherGivesTheLockBackAndBeginsAnewWhenItHasEnded) {
    const test::Records records(folder_);
    start();
    whileAsleep = [this](int second) {
        EXPECT_FALSE(isLocked());
        EXPECT_TRUE(folder_.has(kName));
        if (second == 5) {
            end();
        }
    };
    EXPECT_FALSE(take());
    EXPECT_EQ(seconds, 5);
    EXPECT_FALSE(isMain()) << "nothing is decided";
    EXPECT_EQ(countOf(records.text(), "ZYPRA0307I: process " + std::to_string(id()) +
                                          " provisions this workspace; waiting for its end\n"),
              1);
    EXPECT_FALSE(records.has("Error: "));
    EXPECT_FALSE(records.has("ZYPRA0304I"));
    EXPECT_TRUE(take());
    EXPECT_TRUE(isMain());
    EXPECT_FALSE(folder_.has(kName)) << "it was stale";
}

TEST_F(RunningProvisioning, WaitOfMoreThanAMinuteIsOneError) {
    const std::string still = "Error: provisioning: process ";
    for (const int minute : {60, 200}) {
        const test::Records records(folder_);
        seconds = 0;
        start();
        whileAsleep = [&](int second) {
            if (second == minute) {
                end();
            }
        };
        EXPECT_FALSE(take());
        EXPECT_EQ(seconds, minute);
        EXPECT_EQ(countOf(records.text(), still), minute == 60 ? 0 : 1) << records.text();
        EXPECT_EQ(countOf(records.text(), "ZYPRA0307I"), 1);
        std::filesystem::remove(folder_.path() / kName);
    }
}

TEST_F(RunningProvisioning, AnotherOneThatBeginsMeanwhileIsWaitedForToo) {
    start();
    whileAsleep = [&](int second) {
        if (second == 3) {
            end();
            write(platformId(), platform::startOfProcess(platformId()).value_or(""));
        } else if (second == 6) {
            std::filesystem::remove(folder_.path() / kName);
        }
    };
    EXPECT_FALSE(take());
    EXPECT_EQ(seconds, 6);
}

TEST_F(RunningProvisioning, PlatformIsNotEvenLookedForWhileItIsAtWork) {
    const test::Records records(folder_);
    writeLock("letters");
    start();
    whileAsleep = [&](int) { end(); };
    EXPECT_FALSE(take());
    EXPECT_FALSE(records.has("ZYPRA0090E"));
}

}  // namespace
}  // namespace rcp
