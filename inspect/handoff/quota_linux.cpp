#include "base/unique_fd.h"
#include "inspect/handoff/room.h"

#include <fcntl.h>
#include <sys/quota.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace rcp::inspect {

std::optional<Quota> quotaAt(const std::string& folder) {
#ifdef SYS_quotactl_fd
    constexpr std::uintmax_t kBlock = 1024;  // in which limits are told
    const UniqueFd place(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct dqblk told {};
    if (!place ||
        syscall(SYS_quotactl_fd, place.get(), QCMD(Q_GETQUOTA, USRQUOTA), geteuid(), &told) != 0) {
        return std::nullopt;
    }
    const auto limit = [](std::uintmax_t number, std::uintmax_t unit) {
        return number == 0 ? kNoLimit : number * unit;
    };
    return Quota{{limit(told.dqb_bhardlimit, kBlock), limit(told.dqb_ihardlimit, 1)},
                 {told.dqb_curspace, told.dqb_curinodes}};
#else
    (void)folder;
    return std::nullopt;
#endif
}

}  // namespace rcp::inspect
