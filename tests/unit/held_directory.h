// What not even root can remove.
#pragma once

#include "tests/unit/fixture.h"

#include <filesystem>

namespace rcp::test {

/// A directory that nobody, not even root, can remove while this lives: something is mounted on it.
/// Only where hasPrivateTmp().
class HeldDirectory {
  public:
    /// Makes the directory.
    explicit HeldDirectory(const std::filesystem::path& path);
    HeldDirectory(const HeldDirectory&) = delete;
    HeldDirectory& operator=(const HeldDirectory&) = delete;
    HeldDirectory(HeldDirectory&&) = delete;
    HeldDirectory& operator=(HeldDirectory&&) = delete;
    ~HeldDirectory();

  private:
    [[maybe_unused]] int mounted_ = -1;
};

}  // namespace rcp::test

/// Leaves a test that needs a HeldDirectory where there can be none.
#define NEED_HELD_DIRECTORY()                                 \
    if (!::rcp::test::hasPrivateTmp()) {                      \
        GTEST_SKIP() << "needs a mount namespace of its own"; \
    }                                                         \
    static_assert(true)
