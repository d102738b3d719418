#include "launcher/inputs/debug_file.h"

#include "tests/unit/fixture.h"

#include <stdio.h>

namespace rcp {
namespace {

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
    DebugFile() : clock_(test::sleepingLike(&napAndRemove)) {
        naps = 0;
        marker = folder_.narrow("rcp/rcplauncher.debug");
    }

  private:
    InstalledCalls clock_;
};

TEST_F(DebugFile, MissingOneIsNotWaitedFor) {
    EXPECT_EQ(debugFile(folder_.wide()), std::nullopt);
    waitForDeletionOfDebugFile(std::nullopt);
    EXPECT_EQ(naps, 0);
}

TEST_F(DebugFile, ExistingOneIsWaitedForInStepsOfOneSecond) {
    folder_.write("rcp/rcplauncher.debug", "");
    const auto found = debugFile(folder_.wide());
    EXPECT_EQ(found, folder_.wide("rcp/rcplauncher.debug"));
    waitForDeletionOfDebugFile(found);
    EXPECT_EQ(naps, 3);
}

TEST_F(DebugFile, OneThatGoesBeforeTheWaitStillCostsASecond) {
    waitForDeletionOfDebugFile(folder_.wide("rcp/rcplauncher.debug"));
    EXPECT_EQ(naps, 1);
}

}  // namespace
}  // namespace rcp
