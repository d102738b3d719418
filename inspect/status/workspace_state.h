// One workspace as it is now, and what the next launch in it would do.
#pragma once

#include "inspect/options.h"
#include "inspect/status/file_signs.h"
#include "inspect/status/last_launch.h"
#include "inspect/status/lock_file.h"
#include "inspect/status/lock_holders.h"
#include "inspect/status/platform_log.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rcp::inspect {

/// What the lock file holds, about whom, who holds its lock, and for whom launches wait besides.
struct LockState {
    std::string path;
    LockFile file;
    bool isAlive = false;     // somebody has the recorded id
    bool isPlatform = false;  // and it is what launchers take for the running platform
    LockHolders lock;
    std::optional<long> provisioner;  // the process that provisions the workspace now

    bool operator==(const LockState&) const = default;
};

struct InstallIds {
    std::string installation;
    std::optional<std::string> area;  // of the installation that made the user's area
    bool isOld = false;               // another's: the area will be renewed
};

struct ProvisioningState {
    bool isEnabled = false;
    std::optional<std::string> installationLevel;
    std::optional<std::string> userLevel;
    bool isNew = false;
};

struct NextLaunch {
    enum class Role { kMain, kDaemon, kNone };
    Role role = Role::kNone;
    long platform = 0;               // kDaemon: the running one's process id
    std::vector<std::string> steps;  // as docs/inspect-layout.md names them, in order
    std::string record;              // kNone: what would end it
    std::string obstacle;  // the finding that keeps the platform from starting; empty without one
};

struct WorkspaceState {
    std::string launcher;
    std::string installation;
    std::string workspace;  // empty when the launch would end before it is known
    std::string configuration;
    bool isThere = false;
    LockState lock;
    InstallIds ids;
    std::optional<ProvisioningState> provisioning;  // none for a launch that would end before
    NextLaunch next;
    std::optional<LastLaunch> last;
    std::optional<time_t> now;  // what ages are counted from; none: they are not told
    std::optional<PlatformLog> platformErrors;  // since then
};

/// One workspace, looked at once or again and again. Nothing is changed but a temporary folder that
/// is gone afterwards, and the only program that is started is the process listing.
class WorkspaceWatch {
  public:
    explicit WorkspaceWatch(Options options) : options_(std::move(options)) {}
    /// As it is now. The next launch is rehearsed only when something that decides it has changed
    /// since the last look, or after half a minute.
    WorkspaceState look();

  private:
    struct Signs {
        std::vector<FileSign> files;
        LockState lock;

        bool operator==(const Signs&) const = default;
    };
    [[nodiscard]] Signs lookAround() const;
    void rehearse();

    Options options_;
    nlohmann::json launch_;           // as last rehearsed
    std::vector<std::string> paths_;  // what it depended on
    std::optional<Signs> signs_;      // of that; none when it is to be rehearsed again
    std::chrono::steady_clock::time_point rehearsed_;
};

}  // namespace rcp::inspect
