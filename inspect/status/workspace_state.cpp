#include "inspect/status/workspace_state.h"

#include "inspect/explain/rehearse_launch.h"
#include "inspect/handoff/describe_hand_off.h"
#include "inspect/quiet_read.h"
#include "launcher/instance/running_provisioning.h"
#include "platform/text.h"

#include <errno.h>
#include <signal.h>

#include <limits>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr std::chrono::seconds kLongestTrust{30};  // in what the signs do not tell
constexpr char kNewId[] = "<new id>";              // stands for what the launch would make

bool isAlive(long process) {
    if (process <= 0 || process > std::numeric_limits<pid_t>::max()) {
        return false;
    }
    return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}

std::string text(const json& object, const char* member) {
    const auto found = object.find(member);
    return found == object.end() || found->is_null() ? std::string() : found->get<std::string>();
}

std::optional<std::string> textIfAny(const json& object, const char* member) {
    const json& value = object.at(member);
    return value.is_null() ? std::nullopt : std::optional(value.get<std::string>());
}

LockState lookAtLock(const std::string& path) {
    LockState state;
    state.path = path;
    if (!path.empty()) {
        state.file = lookAtLockFile(path);
        state.isAlive = isAlive(state.file.process);
        state.lock = lockHolders(path);
        const std::string workspace = path.substr(0, path.rfind('/'));
        state.provisioner = runningProvisioning(provisioningFileOf(toWide(workspace)));
    }
    return state;
}

InstallIds installIds(const json& ids) {
    return {textIfAny(ids, "installation").value_or(kNewId), textIfAny(ids, "area"),
            ids.at("isOld").get<bool>()};
}

std::optional<ProvisioningState> provisioningState(const json& state) {
    if (state.is_null()) {
        return std::nullopt;
    }
    return ProvisioningState{state.at("isEnabled").get<bool>(),
                             textIfAny(state, "installationLevel"), textIfAny(state, "userLevel"),
                             state.at("isNew").get<bool>()};
}

NextLaunch nextLaunch(const json& launch) {
    const json& outcome = launch.at("outcome");
    const json& facts = launch.at("facts");
    NextLaunch next;
    next.steps = facts.at("steps").get<std::vector<std::string>>();
    next.record = text(outcome, "record");
    if (outcome.at("kind") == "fatal" || outcome.at("kind") == "ends") {
        return next;
    }
    next.obstacle = text(outcome, "obstacle");
    next.role = outcome.at("role") == "main" ? NextLaunch::Role::kMain : NextLaunch::Role::kDaemon;
    if (next.role == NextLaunch::Role::kDaemon) {
        next.platform = facts.at("recordedProcess").value("id", 0L);
    }
    return next;
}

// What the rehearsal tells of the workspace it was in.
void addWorkspace(const json& facts, WorkspaceState& state) {
    state.workspace = text(facts, "workspace");
    state.configuration = text(facts, "configuration");
    state.isThere = isFolder(state.workspace);
    state.ids = installIds(facts.at("installId"));
    state.provisioning = provisioningState(facts.at("provisioning"));
    const json& recorded = facts.at("recordedProcess");
    state.lock.isPlatform = !recorded.is_null() && recorded.at("id") == state.lock.file.process &&
                            recorded.at("isPlatform").get<bool>();
}

}  // namespace

WorkspaceWatch::Signs WorkspaceWatch::lookAround() const {
    Signs signs;
    for (const std::string& path : paths_) {
        signs.files.push_back(signOf(path));
    }
    if (!launch_.is_null()) {
        signs.lock = lookAtLock(text(launch_.at("facts"), "lockFile"));
    }
    return signs;
}

void WorkspaceWatch::rehearse() {
    rehearsed_ = std::chrono::steady_clock::now();
    launch_ = rehearseLaunch(options_);
    tellObstacle(launch_, examine(options_));
}

WorkspaceState WorkspaceWatch::look() {
    Signs signs = lookAround();
    if (signs != signs_ || std::chrono::steady_clock::now() - rehearsed_ > kLongestTrust) {
        rehearse();
        std::vector<std::string> paths = pathsOf(launch_);
        // What changes while the launch is being rehearsed is seen at the next look. Of files that
        // were not looked at before nobody knows.
        signs_ = paths == paths_ ? std::optional(signs) : std::nullopt;
        paths_ = std::move(paths);
        signs = lookAround();
    }
    const json& facts = launch_.at("facts");
    WorkspaceState state;
    state.launcher = options_.launcher;
    state.installation = options_.installation;
    state.lock = std::move(signs.lock);
    if (facts.contains("workspace")) {
        addWorkspace(facts, state);
    }
    state.next = nextLaunch(launch_);
    state.last = lastLaunch(text(facts, "logs"), options_);
    state.now = time(nullptr);
    if (!state.workspace.empty() && state.last) {
        state.platformErrors = platformLog(state.configuration, state.workspace, state.last->time);
    }
    return state;
}

}  // namespace rcp::inspect
