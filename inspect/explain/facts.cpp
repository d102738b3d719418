// What a rehearsed launch has found and decided.
#include "diagnostics/format.h"
#include "inspect/check/launcher_end.h"
#include "inspect/explain/account.h"
#include "inspect/making.h"
#include "inspect/status/lock_file.h"
#include "inspect/status/lock_holders.h"
#include "launcher/instance/provisioning.h"
#include "launcher/instance/running_provisioning.h"
#include "launcher/properties/property_file.h"
#include "launcher/stages.h"
#include "launcher/user_area/install_id.h"
#include "launcher/user_area/user_files.h"
#include "launcher/user_area/workspace.h"
#include "launcher/vocabulary/keys.h"
#include "platform/files.h"
#include "platform/text.h"

#include <unistd.h>

#include <utility>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr Key kIdKey = keys::kInstallId;
constexpr Key kLevelKey = keys::kProvisioningLevel;

// "execv", "in-process", "provisioning", or "ends" for a launch that did not come that far.
std::string kindOfEnd(const Launch& launch) {
    if (!launch.plan) {
        return "ends";
    }
    if (launch.plan->kind != LaunchKind::kPlatform) {
        return "provisioning";
    }
    const bool hasLibrary = !launch.plan->line.library().empty();
    return launch.inputs.traits.invokeDylib && hasLibrary ? "in-process" : "execv";
}

const char* role(const Launch& launch) {
    if (!launch.lock) {
        return "undecided";
    }
    return launch.lock->platform() ? "daemon" : "main";
}

// --- As the launch found it --------------------------------------------------------------------------

json valueOrNull(Key key, const PropertyList& list) {
    const std::wstring* value = findProperty(key, list);
    return value == nullptr ? json() : jsonText(*value);
}

// What a file really says.
PropertyList storedList(const std::wstring& path) {
    PropertyList stored;
    endOf([&] { getPropertiesIfThere(path, stored); });
    return stored;
}

PropertyList usersStoredList(const Account& account) {
    return storedList(userFileOf(account.launch.inputs.configuration));
}

// An id that the launch makes comes from no file.
bool isIdMade(const Launch& launch) {
    const Property* id = launch.inputs.properties.find(kIdKey);
    return id != nullptr && id->origin.isComputed();
}

json describeInstallId(const Account& account) {
    const PropertyList stored = usersStoredList(account);
    const PropertyList& properties = account.launch.inputs.properties;
    const std::wstring* id = findProperty(kIdKey, properties);
    return {{"installation", isIdMade(account.launch) ? json() : valueOrNull(kIdKey, properties)},
            {"area", valueOrNull(kIdKey, stored)},
            {"isOld", id != nullptr && isOldRcpInstallId(*id, stored)}};
}

// Null for a launch that did not come to the user's files. The launch compares the levels as they stand
// there, before placeholders are replaced.
json describeProvisioning(const Account& account) {
    const LaunchInputs& inputs = account.launch.inputs;
    const ReadFile* read = account.sources.file(userFileOf(inputs.configuration));
    if (read == nullptr) {
        return {};
    }
    return {{"isEnabled", isProvisioningEnabled(inputs)},
            {"installationLevel", valueOrNull(kLevelKey, inputs.properties)},
            {"userLevel", valueOrNull(kLevelKey, usersStoredList(account))},
            {"isNew", isNewProvisioningLevel(findProperty(kLevelKey, read->entries),
                                             findProperty(kLevelKey, inputs.properties))}};
}

// A launch that ended before it looked for the platform would have looked for this one.
bool isPlatform(long process, const Launch& launch) {
    bool is = false;
    endOf([&] {
        is = isPlatformProcess(process, launch.marker ? *launch.marker : markerOf(launch.inputs));
    });
    return is;
}

json describeRecordedProcess(const Launch& launch) {
    const LockFile lock = lookAtLockFile(toNarrow(getLockFilePath(launch.inputs.workspace)));
    if (lock.content != LockFile::Content::kProcess) {
        return {};
    }
    return {{"id", lock.process}, {"isPlatform", isPlatform(lock.process, launch)}};
}

json lockHolder(const Launch& launch) {
    const LockHolders lock = lockHolders(toNarrow(getLockFilePath(launch.inputs.workspace)));
    if (!lock.isHeld) {
        return {};
    }
    return lock.holders.empty() ? 0 : lock.holders.front().id;
}

json provisioningProcess(const Launch& launch) {
    const auto process = runningProvisioning(provisioningFileOf(launch.inputs.workspace));
    return process ? json(*process) : json();
}

json describeWaits(const Account& account, const json& facts) {
    json waits = json::array();
    if (const std::wstring* marker = account.witness.awaited(Wait::kDebugMarker)) {
        waits.push_back("until " + toNarrow(*marker) + " is removed");
    }
    if (isRestart(account.launch.arguments)) {
        waits.push_back("up to 21 seconds for the old platform to end");
    }
    if (!facts.value("lockHolder", json()).is_null()) {
        waits.push_back("until the lock of the workspace is free");
    }
    const json process = facts.value("provisioningProcess", json());
    if (!process.is_null()) {
        waits.push_back("until process " + process.dump() +
                        ", which provisions the workspace, has ended");
    }
    return waits;
}

// What becomes of the user's area, and the step that makes it so.
struct AreaWords {
    const char* state;
    const char* step;
};

AreaWords wordsOf(UserArea area) {
    switch (area) {
        case UserArea::kKept:
            return {"kept", ""};
        case UserArea::kInUse:
            return {"in use", "leave-area-alone"};
        case UserArea::kMade:
            return {"new", "make-area"};
        case UserArea::kReset:
            return {"reset", "reset-area"};
        case UserArea::kReused:
            return {"reused", "reuse-area"};
    }
    return {};
}

// Ended by a record, a launch starts nothing.
void addStart(json& steps, const json& outcome, bool isInitial) {
    const std::string kind = outcome["kind"];
    if (kind == "provisioning") {
        steps.push_back("provision");
    } else if (kind != "ends" && kind != "fatal") {
        if (isInitial) {
            steps.push_back("initial-configuration");
        }
        steps.push_back(outcome["role"] == "main" ? "start-platform" : "pass-arguments-on");
    }
}

json describeSteps(const Account& account, const json& outcome, const json& facts) {
    const Launch& launch = account.launch;
    const auto waits = [&](Wait wait) { return account.witness.awaited(wait) != nullptr; };
    const std::pair<bool, const char*> preparations[] = {
        {isIdMade(launch), "make-install-id"},
        {waits(Wait::kOldPlatform), "wait-for-old-platform"},
        {!facts.value("lockHolder", json()).is_null(), "wait-for-lock"},
        {waits(Wait::kProvisioning), "wait-for-provisioning"},
        {waits(Wait::kDebugMarker), "wait-for-debug-marker"},
        {launch.inputs.area != UserArea::kKept, wordsOf(launch.inputs.area).step}};
    json steps = json::array();
    for (const auto& [isDue, step] : preparations) {
        if (isDue) {
            steps.push_back(step);
        }
    }
    if (account.status == 0) {
        addStart(steps, outcome, launch.inputs.isInitial);
    }
    return steps;
}

void describeWorkspace(const Account& account, json& facts) {
    const LaunchInputs& inputs = account.launch.inputs;
    facts["workspace"] = toNarrow(inputs.workspace);
    facts["configuration"] = toNarrow(inputs.configuration);
    facts["logs"] = toNarrow(getLogLocation(inputs.workspace));
    facts["lockFile"] = toNarrow(getLockFilePath(inputs.workspace));
    facts["lockHolder"] = lockHolder(account.launch);
    facts["recordedProcess"] = describeRecordedProcess(account.launch);
    facts["provisioningProcess"] = provisioningProcess(account.launch);
    facts["installId"] = describeInstallId(account);
    facts["provisioning"] = describeProvisioning(account);
    facts["area"] = wordsOf(inputs.area).state;
}

}  // namespace

json describeOutcome(const Launch& launch) {
    const std::string kind = kindOfEnd(launch);
    json outcome{{"kind", kind}, {"role", role(launch)}};
    if (launch.plan) {
        const CommandLine& line = launch.plan->line;
        outcome["program"] =
            jsonText(kind == "in-process" ? line.library() : line.arguments().front().text);
    }
    return outcome;
}

json describeFacts(const Account& account, const json& outcome) {
    const LaunchInputs& inputs = account.launch.inputs;
    json facts{{"firstLaunch", inputs.userFirstLaunch},
               {"user", effectiveUser()},
               {"isRoot", geteuid() == 0}};
    facts["installConfiguration"] = jsonText(installConfigurationName(inputs.traits.eConfig));
    if (!inputs.workspace.empty()) {
        describeWorkspace(account, facts);
    }
    facts["waits"] = describeWaits(account, facts);
    facts["steps"] = describeSteps(account, outcome, facts);
    return facts;
}

}  // namespace rcp::inspect
