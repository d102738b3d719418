#include "inspect/messages.h"
#include "inspect/status/report.h"

#include <time.h>

#include <array>

namespace rcp::inspect {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kLayout = 1;

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json orNull(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json();
}

const char* nameOf(LockFile::Content content) {
    switch (content) {
        case LockFile::Content::kMissing:
            return "missing";
        case LockFile::Content::kNothing:
            return "nothing";
        case LockFile::Content::kProcess:
            return "process";
        case LockFile::Content::kUnreadable:
            return "unreadable";
        default:
            return "other";
    }
}

const char* nameOf(NextLaunch::Role role) {
    switch (role) {
        case NextLaunch::Role::kMain:
            return "main";
        case NextLaunch::Role::kDaemon:
            return "daemon";
        default:
            return "none";
    }
}

const char* nameOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::kHandedOff:
            return "handed-off";
        case Outcome::kProvisioned:
            return "provisioned";
        case Outcome::kFailed:
            return "failed";
        default:
            return "unfinished";
    }
}

Json processes(const std::vector<Process>& all) {
    Json list = Json::array();
    for (const Process& process : all) {
        list.push_back({{"process", process.id}, {"name", orNull(process.name)}});
    }
    return list;
}

Json recordJson(const std::string& record) {
    if (record.empty()) {
        return {};
    }
    Json known = Json::array();
    for (const MessageRecord* message : findMessages(record)) {
        known.push_back({{"id", orNull(message->id)},
                         {"text", message->text},
                         {"step", orNull(message->step)},
                         {"remedy", message->remedy}});
    }
    return {{"text", record}, {"messages", std::move(known)}};
}

std::string utcTime(const timespec& time) {
    tm parts{};
    gmtime_r(&time.tv_sec, &parts);
    std::array<char, 32> text{};
    const std::size_t length = strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const std::string thousandths = std::to_string(1000 + time.tv_nsec / 1'000'000);
    return std::string(text.data(), length) + "." + thousandths.substr(1) + "Z";
}

Json lockJson(const LockState& state) {
    const bool hasProcess = state.file.content == LockFile::Content::kProcess;
    return {{"file", orNull(state.path)},
            {"content", nameOf(state.file.content)},
            {"process", hasProcess ? Json(state.file.process) : Json()},
            {"isAlive", state.isAlive},
            {"isPlatform", state.isPlatform},
            {"isHeld", state.lock.isHeld},
            {"holders", processes(state.lock.holders)},
            {"waiting", processes(state.lock.waiting)},
            {"provisioner", state.provisioner ? Json(*state.provisioner) : Json()}};
}

Json provisioningJson(const std::optional<ProvisioningState>& state) {
    if (!state) {
        return {};
    }
    return {{"isEnabled", state->isEnabled},
            {"installation", orNull(state->installationLevel)},
            {"user", orNull(state->userLevel)},
            {"isNew", state->isNew}};
}

Json nextJson(const NextLaunch& next) {
    return {{"role", nameOf(next.role)},
            {"platform", next.platform == 0 ? Json() : Json(next.platform)},
            {"steps", next.steps},
            {"record", recordJson(next.record)},
            {"obstacle", next.obstacle.empty() ? Json() : Json(next.obstacle)}};
}

Json lastJson(const WorkspaceState& state) {
    const std::optional<LastLaunch>& last = state.last;
    if (!last) {
        return {};
    }
    const std::optional<time_t> age = ageOf(*last, state.now);
    return {{"time", utcTime(last->time)},
            {"age", age ? Json(*age) : Json()},
            {"log", last->log},
            {"isShared", last->isTemporary},
            {"isOwn", last->isOwn ? Json(true) : Json()},
            {"unclear", orNull(last->unclear)},
            {"role", orNull(last->role)},
            {"outcome", nameOf(last->outcome)},
            {"record", recordJson(last->record)}};
}

Json platformErrorsJson(const std::optional<PlatformLog>& log) {
    if (!log) {
        return {};
    }
    Json errors = Json::array();
    for (const PlatformError& error : log->errors) {
        errors.push_back({{"bundle", error.bundle},
                          {"message", error.message},
                          {"exception", orNull(error.exception)},
                          {"missing", error.missing}});
    }
    return {{"time", utcTime(log->time)},
            {"log", log->path},
            {"count", log->count},
            {"errors", std::move(errors)}};
}

}  // namespace

nlohmann::ordered_json toJson(const WorkspaceState& state) {
    return {{"layout", kLayout},
            {"command", "status"},
            {"launcher", state.launcher},
            {"installation", state.installation},
            {"workspace", orNull(state.workspace)},
            {"configuration", orNull(state.configuration)},
            {"isThere", state.isThere},
            {"lock", lockJson(state.lock)},
            {"installId",
             {{"installation", orNull(state.ids.installation)},
              {"area", orNull(state.ids.area)},
              {"isOld", state.ids.isOld}}},
            {"provisioning", provisioningJson(state.provisioning)},
            {"nextLaunch", nextJson(state.next)},
            {"lastLaunch", lastJson(state)},
            {"platformErrors", platformErrorsJson(state.platformErrors)}};
}

}  // namespace rcp::inspect
