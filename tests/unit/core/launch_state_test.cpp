#include "launcher/core/launch_state.h"

#include "platform/environment.h"
#include "tests/unit/core/launch_pieces.h"
#include "tests/unit/probe.h"

#include <stdio.h>

namespace rcp {
namespace {

class LaunchState : public test::LauncherTest {};

const test::Probe kInitial("initial state", [](const std::vector<std::string>&) {
    const bool isOff = !userFirstLaunch && !invokeDylib && !isMainProcess() && !isWaitMode() &&
                       mainProcessName.empty();
    setWaitMode();
    return isOff && isWaitMode() ? 3 : 4;
});

TEST_F(LaunchState, EveryFlagIsOffAtTheStartAndWaitModeCanBeSet) {
    EXPECT_EQ(test::runProbe("initial state").status, 3);
}

TEST_F(LaunchState, MainProcessIsWhatWasDecidedLast) {
    setMainProcess(true);
    EXPECT_TRUE(isMainProcess());
    setMainProcess(false);
    EXPECT_FALSE(isMainProcess());
}

TEST_F(LaunchState, InProcessPlatformIsLookedForUnderTheProductsName) {
    invokeDylib = true;
    std::wstring name = L"old";
    getMainProcessName(name, PropertyList());
    EXPECT_EQ(name, L"Velmo");
}

TEST_F(LaunchState, ExecutedPlatformIsLookedForUnderItsExecutablesName) {
    std::wstring name = L"old";
    getMainProcessName(name, PropertyList());
    EXPECT_EQ(name, L"eclipse");
}

TEST_F(LaunchState, LogLiesInTheWorkspace) {
    std::wstring location = L"old";
    getLogLocation(location, L"/Users/ann\\ws");
    EXPECT_EQ(location, L"/Users/ann/ws/logs");
}

// --- The debug marker file ----------------------------------------------------------------------

std::string marker;
int naps = 0;

/// Removes the marker file in the third nap.
unsigned napAndRemove(unsigned seconds) {
    EXPECT_EQ(seconds, 1U);
    if (++naps == 3) {
        EXPECT_EQ(remove(marker.c_str()), 0);
    }
    return 0;
}

class DebugFile : public test::LauncherTest {
  protected:
    DebugFile() : sleep_(setSleepFunction(&napAndRemove)) {
        naps = 0;
        marker = folder_.narrow("a/marker");
    }
    ~DebugFile() override { setSleepFunction(sleep_); }

  private:
    SleepFunction sleep_;
};

TEST_F(DebugFile, MissingOneIsNotWaitedFor) {
    EXPECT_FALSE(debugFileExists(folder_.wide("a/marker")));
    waitForDeletionOfDebugFile();
    EXPECT_EQ(naps, 0);
}

TEST_F(DebugFile, ExistingOneIsWaitedForInStepsOfOneSecond) {
    folder_.write("a/marker", "");
    EXPECT_TRUE(debugFileExists(folder_.wide() + L"\\a\\marker"));
    waitForDeletionOfDebugFile();
    EXPECT_EQ(naps, 3);
    waitForDeletionOfDebugFile();
    EXPECT_EQ(naps, 3) << "the answer is remembered";
}

TEST_F(DebugFile, OneThatAppearsBehindTheTestIsNotWaitedFor) {
    EXPECT_FALSE(debugFileExists(folder_.wide("a/marker")));
    folder_.write("a/marker", "");
    waitForDeletionOfDebugFile();
    EXPECT_EQ(naps, 0);
}

// --- The tick count -----------------------------------------------------------------------------

TEST_F(LaunchState, TickCountIsTheTimeOfDayInMicroseconds) {
    const timeval before = getTick();
    const unsigned long tick = std::stoul(getTickString());
    const timeval after = getTick();
    const auto microseconds = [](const timeval& time) {
        return static_cast<unsigned long>(time.tv_sec) * 1'000'000UL +
               static_cast<unsigned long>(time.tv_usec);
    };
    if (before.tv_sec <= after.tv_sec) {  // else somebody set the clock back meanwhile
        EXPECT_GE(tick, microseconds(before));
    }
    EXPECT_EQ(getTickString().find_first_not_of(L"0123456789"), std::wstring::npos);
}

}  // namespace
}  // namespace rcp
