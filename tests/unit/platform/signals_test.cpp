// The signal for a file that grows beyond its limit: ignored by the launcher, not by the platform.
#include "platform/signals.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace rcp {
namespace {

using Handler = void (*)(int);

/// How the signal is handled; asking changes nothing.
Handler handler() {
    struct sigaction action {};
    EXPECT_EQ(sigaction(SIGXFSZ, nullptr, &action), 0);
    return action.sa_handler;
}

class FileSizeSignal : public testing::Test {
  protected:
    void TearDown() override { (void)signal(SIGXFSZ, before_); }

  private:
    const Handler before_ = handler();
};

TEST_F(FileSizeSignal, IsIgnoredUntilItIsGivenBackAsItWas) {
    for (const Handler former : {SIG_DFL, SIG_IGN}) {
        (void)signal(SIGXFSZ, former);
        ignoreFileSizeSignal();
        EXPECT_EQ(handler(), SIG_IGN);
        restoreFileSizeSignal();
        EXPECT_EQ(handler(), former);
    }
}

}  // namespace
}  // namespace rcp
