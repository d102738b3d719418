#include "launcher/hand_off_tools.h"

#include "platform/signals.h"
#include "tests/unit/child_process.h"
#include "tests/unit/records.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>

#include <fstream>

namespace rcp {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;

const std::vector<Argument> kNothing = {L"/opt/nothing"};

class HandOffTools : public test::LauncherTest {};

TEST_F(HandOffTools, NarrowArgumentsAreTheTextsInOrderAndANullPointer) {
    const std::vector<Argument> wide = {L"/opt/Velmo", L"", L"B\u00FCro", L"two words"};
    NarrowArguments narrow(wide);
    ASSERT_EQ(narrow.count(), 4);
    EXPECT_STREQ(narrow.data()[0], "/opt/Velmo");
    EXPECT_STREQ(narrow.data()[1], "");
    EXPECT_STREQ(narrow.data()[2], "B\u00FCro");
    EXPECT_STREQ(narrow.data()[3], "two words");
    EXPECT_EQ(narrow.data()[4], nullptr);
}

TEST_F(HandOffTools, NoArgumentsAreANullPointer) {
    NarrowArguments narrow({});
    EXPECT_EQ(narrow.count(), 0);
    EXPECT_EQ(narrow.data()[0], nullptr);
}

TEST_F(HandOffTools, ArgumentsAreLoggedOneALineWithoutTracing) {
    const test::Records records(folder_);
    const std::vector<Argument> wide = {L"/opt/Velmo", L"100%s", L"%n"};
    constexpr Message<> kBegin{"begin", "", ""};
    constexpr Message<> kEnd{"end", "", ""};
    logLaunchArguments(kBegin, NarrowArguments(wide), kEnd);
    EXPECT_EQ(records.text().substr(records.text().find("begin")),
              "begin\n/opt/Velmo\n100%s\n%n\nend\n");
    EXPECT_FALSE(debug) << "tracing is as before";
}

TEST_F(HandOffTools, FailedExecIsOneRecordWithPathAndReason) {
    const test::Records records(folder_);
    NarrowArguments command(kNothing);
    becomeProgram(command);
    EXPECT_TRUE(records.has("Error: execv: /opt/nothing could not be started : No such file"))
        << records.text();
}

TEST_F(HandOffTools, RecordOfAFailedExecIsInTheTemporaryLogWhenTheLogIsFull) {
    if (!test::hasPrivateTmp()) {
        GTEST_SKIP() << "the system gives this process no /tmp of its own";
    }
    ChildProcess child([this] {
        ignoreFileSizeSignal();
        enableLogging(folder_.wide());
        reportRecord(noReason(), std::string(1000, 'x'), {});
        const rlimit size = {1000, 1000};
        setrlimit(RLIMIT_FSIZE, &size);
        NarrowArguments command(kNothing);
        becomeProgram(command);
        return 3;
    });
    EXPECT_EQ(child.wait(), 3) << "no signal ends it";
    std::string record;
    std::getline(std::ifstream("/tmp/rcplauncher.log"), record);
    EXPECT_EQ(record,
              "Error: execv: /opt/nothing could not be started : No such file or directory");
}

// Ends with status 3 once the gate lets it pass.
int passGate(Gate& gate) {
    gate.wait();
    return 3;
}

TEST_F(HandOffTools, GateHoldsTheChildUntilTheParentOpensIt) {
    Gate gate;
    ChildProcess child([&] { return passGate(gate); });
    EXPECT_FALSE(child.endsWithin(50ms));
    gate.open();
    EXPECT_EQ(child.wait(), 3);
}

// A parent whose child tells through a pipe when it has passed the gate.
class ParentAndChild {
  public:
    explicit ParentAndChild(const std::function<int()>& parentsEnd)
        : told_(pipe(ends_) == 0), parent_([&] {
              Gate gate;
              if (fork() == 0) {
                  gate.wait();
                  _exit(write(ends_[1], "x", 1) == 1 ? 0 : 1);
              }
              return parentsEnd();
          }) {
        close(ends_[1]);
    }
    ~ParentAndChild() { close(ends_[0]); }
    ParentAndChild(const ParentAndChild&) = delete;
    ParentAndChild& operator=(const ParentAndChild&) = delete;

    bool childPassesWithin(int milliseconds) {
        pollfd passed = {ends_[0], POLLIN, 0};
        return told_ && poll(&passed, 1, milliseconds) == 1 && (passed.revents & POLLIN) != 0;
    }
    ChildProcess& parent() { return parent_; }

  private:
    int ends_[2] = {-1, -1};
    bool told_;
    ChildProcess parent_;
};

TEST_F(HandOffTools, GateOpensWhenTheParentEnds) {
    ParentAndChild processes([] { return 0; });
    EXPECT_TRUE(processes.childPassesWithin(100'000));
}

TEST_F(HandOffTools, GateThatGoesUnopenedStaysClosedWhileItsProcessLives) {
    auto gate = std::make_unique<Gate>();
    ChildProcess child([&] { return passGate(*gate); });
    gate.reset();
    EXPECT_FALSE(child.endsWithin(50ms));
}

TEST_F(HandOffTools, GateOpensWhenTheParentIsKilled) {
    ParentAndChild processes([] {
        pause();
        return 0;
    });
    EXPECT_FALSE(processes.childPassesWithin(50));
    processes.parent().end();
    EXPECT_TRUE(processes.childPassesWithin(100'000));
}

TEST_F(HandOffTools, GateOpensWhenTheParentBecomesAnotherProgram) {
    ParentAndChild processes([] {
        execl("/bin/sleep", "sleep", "1000", nullptr);
        return 127;
    });
    EXPECT_TRUE(processes.childPassesWithin(100'000));
    EXPECT_FALSE(processes.parent().endsWithin(0ms));
}

TEST_F(HandOffTools, GateStaysClosedWhenASignalInterruptsTheWait) {
    struct sigaction former {};
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
    Gate gate;
    ChildProcess child([&] { return passGate(gate); });
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(child.endsWithin(10ms));
        kill(child.pid(), SIGUSR1);
    }
    EXPECT_FALSE(child.endsWithin(50ms));
    gate.open();
    EXPECT_EQ(child.wait(), 3);
    sigaction(SIGUSR1, &former, nullptr);
}

TEST_F(HandOffTools, GateWithoutDescriptorsIsOpen) {
    ChildProcess child([] {
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_NOFILE, &none);
        Gate gate;
        gate.wait();
        gate.open();
        return 5;
    });
    EXPECT_TRUE(child.endsWithin(100s));
    EXPECT_EQ(child.wait(), 5);
}

}  // namespace
}  // namespace rcp
