// macOS: the two kinds of locks see each other, so a question for a record lock tells whether the
// file is locked; libproc(3) tells who has it open.
#include "base/system_calls.h"
#include "base/unique_fd.h"
#include "inspect/status/lock_holders.h"

#include <fcntl.h>
#include <libproc.h>
#include <unistd.h>

#include <array>

namespace rcp::inspect {
namespace {

bool isLocked(const std::string& path) {
    const UniqueFd file(calls::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct flock question {};
    question.l_type = F_RDLCK;
    question.l_whence = SEEK_SET;
    return file && fcntl(file.get(), F_GETLK, &question) == 0 && question.l_type != F_UNLCK;
}

Process processOf(pid_t id) {
    std::array<char, 2 * MAXCOMLEN + 1> name{};
    const int length = proc_name(id, name.data(), name.size());
    return {id, std::string(name.data(), length > 0 ? static_cast<std::size_t>(length) : 0)};
}

}  // namespace

LockHolders lockHolders(const std::string& path) {
    LockHolders result;
    result.isHeld = isLocked(path);
    if (!result.isHeld) {
        return result;
    }
    std::array<pid_t, 256> ids{};
    const int size = proc_listpidspath(PROC_ALL_PIDS, 0, path.c_str(), 0, ids.data(),
                                       static_cast<int>(sizeof ids));
    for (std::size_t i = 0; size > 0 && i < static_cast<std::size_t>(size) / sizeof ids[0]; ++i) {
        if (ids[i] != getpid()) {
            // Waiting launchers have the file open too, and the system does not tell them apart.
            result.holders.push_back(processOf(ids[i]));
        }
    }
    return result;
}

}  // namespace rcp::inspect
