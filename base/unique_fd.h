// An owned descriptor.
#pragma once

#include <errno.h>
#include <unistd.h>

#include <utility>

namespace rcp {

/// Closes its descriptor when it goes, and leaves errno alone then: what failed before says more than
/// close(2) could.
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int descriptor) : descriptor_(descriptor) {}
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    UniqueFd(UniqueFd&& other) noexcept : descriptor_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~UniqueFd() { reset(); }

    /// -1 when there is none.
    [[nodiscard]] int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    /// The descriptor is the caller's from now on.
    [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }
    void reset(int descriptor = -1) {
        const int former = std::exchange(descriptor_, descriptor);
        if (former >= 0) {
            const int before = errno;
            (void)close(former);
            errno = before;
        }
    }

  private:
    int descriptor_ = -1;
};

}  // namespace rcp
