// The least that a launch can be which leaves what a recorded one leaves: it makes that launch's system
// calls, with the same files in the same order, and computes nothing. What a launch takes beyond this is
// what the launcher itself costs. bench/recorded_calls.py writes RECORDED_CALLS, the functions `launcher`
// and `child` with one statement a call.
#include <fcntl.h>
#include <linux/futex.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

namespace {

[[maybe_unused]] std::array<char, std::size_t{1} << 16> buffer;
[[maybe_unused]] struct stat status;
[[maybe_unused]] std::array<int, 2> ends;
[[maybe_unused]] std::array<pollfd, 3> streams;
[[maybe_unused]] int word = 0;

#include RECORDED_CALLS

}  // namespace

// The arguments are the command line that the recorded launch handed over.
int main(int /*argc*/, char** argv) {
    launcher(argv + 1);
    return 127;
}
