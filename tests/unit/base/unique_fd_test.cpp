#include "base/unique_fd.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <utility>

namespace rcp {
namespace {

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) >= 0;
}

int newDescriptor() {
    return open("/", O_RDONLY | O_CLOEXEC);
}

TEST(UniqueFd, ClosesWhenItGoesAndLeavesErrnoAlone) {
    int descriptor = -1;
    {
        const UniqueFd file(newDescriptor());
        descriptor = file.get();
        EXPECT_TRUE(file);
        EXPECT_TRUE(isOpen(descriptor));
        close(descriptor);  // so that closing it once more fails
        errno = ENOENT;
    }
    EXPECT_EQ(errno, ENOENT);
    {
        const UniqueFd file(newDescriptor());
        descriptor = file.get();
    }
    EXPECT_FALSE(isOpen(descriptor));
}

TEST(UniqueFd, IsEmptyWithoutADescriptor) {
    const UniqueFd none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.get(), -1);
    EXPECT_FALSE(UniqueFd(-1));
}

TEST(UniqueFd, GivesItsDescriptorAwayWhole) {
    UniqueFd file(newDescriptor());
    const int descriptor = file.get();
    UniqueFd moved(std::move(file));
    EXPECT_FALSE(file);  // NOLINT(bugprone-use-after-move): what is left is part of the promise
    EXPECT_EQ(moved.get(), descriptor);
    UniqueFd other(newDescriptor());
    const int replaced = other.get();
    other = std::move(moved);
    EXPECT_EQ(other.get(), descriptor);
    EXPECT_FALSE(isOpen(replaced));
    EXPECT_EQ(other.release(), descriptor);
    EXPECT_FALSE(other);
    EXPECT_TRUE(isOpen(descriptor));
    close(descriptor);
}

TEST(UniqueFd, MovedToItselfKeepsItsDescriptor) {
    UniqueFd file(newDescriptor());
    UniqueFd& same = file;
    file = std::move(same);
    EXPECT_TRUE(isOpen(file.get()));
}

TEST(UniqueFd, ResetClosesTheFormerOne) {
    UniqueFd file(newDescriptor());
    const int former = file.get();
    file.reset(newDescriptor());
    EXPECT_FALSE(isOpen(former));
    EXPECT_TRUE(isOpen(file.get()));
    file.reset();
    EXPECT_FALSE(file);
}

}  // namespace
}  // namespace rcp
