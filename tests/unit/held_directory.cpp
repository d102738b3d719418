#include "tests/unit/held_directory.h"

#ifdef __linux__
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>
#endif

#include <string>

namespace rcp::test {

#ifdef __linux__
HeldDirectory::HeldDirectory(const std::filesystem::path& path) {
    std::filesystem::create_directories(path);
    EXPECT_EQ(mount("none", path.c_str(), "tmpfs", 0, nullptr), 0);
    mounted_ = open(path.c_str(), O_PATH | O_CLOEXEC);
}

// By its descriptor: the path may be another one by now.
HeldDirectory::~HeldDirectory() {
    umount2(("/proc/self/fd/" + std::to_string(mounted_)).c_str(), MNT_DETACH);
    close(mounted_);
}
#else
HeldDirectory::HeldDirectory(const std::filesystem::path&) {}
HeldDirectory::~HeldDirectory() = default;
#endif

}  // namespace rcp::test
