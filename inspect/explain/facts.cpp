// What a rehearsed launch has found and decided.
#include "diagnostics/format.h"
#include "inspect/check/launcher_end.h"
#include "inspect/explain/account.h"
#include "inspect/status/lock_file.h"
#include "inspect/status/lock_holders.h"
#include "launcher/core/initial_configuration.h"
#include "launcher/core/install_configuration.h"
#include "launcher/core/install_id.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_inputs.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/platform_lock.h"
#include "launcher/core/process_check.h"
#include "launcher/core/property_file.h"
#include "launcher/core/provisioning.h"
#include "launcher/core/running_provisioning.h"
#include "launcher/core/workspace.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr wchar_t kIdKey[] = L"rcp.install.id";
constexpr wchar_t kLevelKey[] = L"provisioning.manifest.version";
constexpr wchar_t kUserFileName[] = L"/rcpinstall.properties";

std::wstring workspacePath() {
    const std::wstring& lock = getLockFilePath();
    return lock.substr(0, lock.rfind(L'/'));
}

std::wstring configurationPath(const Options& options) {
    return osPath(configurationFor(workspacePath(), toWide(options.installation)));
}

bool hasRecord(const json& records, const std::string& beginning) {
    return std::any_of(records.begin(), records.end(), [&](const json& record) {
        return record.get_ref<const std::string&>().starts_with(beginning);
    });
}

// "execv", "in-process", "provisioning", or "ends" for a launch that did not come that far.
std::string kindOfEnd(const CommandLine& line, const json& records) {
    if (hasRecord(records, "ZYPRA0129I")) {
        return "provisioning";
    }
    if (!hasRecord(records, "ZYPRA0132I")) {
        return "ends";
    }
    return invokeDylib && !line.library().empty() ? "in-process" : "execv";
}

const char* role() {
    if (isMainProcess()) {
        return "main";
    }
    return pid != 0 ? "daemon" : "undecided";
}

// --- As the launch has left it -----------------------------------------------------------------------

// The entries of the files that were read into the launcher's list; the others are per-user install
// files, whose own list has the user's.
LaunchInputs inputsOf(const Account& account) {
    LaunchInputs inputs;
    inputs.arguments = launcherArguments(account.options);
    inputs.workspace = workspacePath();
    inputs.configuration = configurationPath(account.options);
    inputs.installDir = toWide(account.options.installation);
    for (const Sources::File& file : account.sources.files()) {
        const bool isUsers = file.path == inputs.configuration + kUserFileName;
        if (!isUsers && file.path.ends_with(kUserFileName)) {
            continue;  // a master copy, read for its own sake
        }
        for (const Property& entry : file.entries) {
            (isUsers ? inputs.userProperties : inputs.properties).append(entry);
        }
    }
    return inputs;
}

bool wasUserFileRead(const Account& account) {
    const auto& files = account.witness.files();
    const std::wstring path = configurationPath(account.options) + kUserFileName;
    return std::find(files.begin(), files.end(), path) != files.end();
}

// Whether this installation has provisioning: whether a first launch would not come back from
// looking for it.
bool hasProvisioning(LaunchInputs inputs) {
    const bool former = std::exchange(userFirstLaunch, true);
    const bool isEnded = endOf([&] { checkForProvisioning(inputs); }).has_value();
    userFirstLaunch = former;
    return isEnded;
}

// --- As the launch found it --------------------------------------------------------------------------

json textOrNull(const std::wstring* text) {
    return text == nullptr ? json() : jsonText(*text);
}

// What the file at `path` really says.
json storedValue(const std::wstring& path, const wchar_t* key) {
    PropertyList stored;
    if (exists(path)) {
        endOf([&] { getProperties(path, stored); });
    }
    return textOrNull(findProperty(key, stored));
}

// Made by the launch: the real file does not have it yet.
bool isIdMade(const Account& account) {
    const auto entries = account.sources.entriesOf(kIdKey);
    return !entries.empty() && storedValue(*entries.front()->origin.file, kIdKey).is_null();
}

json describeInstallId(const Account& account) {
    json ids{{"installation", nullptr}, {"isOld", false}};
    const std::wstring configuration = configurationPath(account.options);
    const auto entries = account.sources.entriesOf(kIdKey);
    if (!entries.empty() && !isIdMade(account)) {
        ids["installation"] = jsonText(entries.front()->value);
    }
    if (!entries.empty()) {
        endOf([&] { ids["isOld"] = isOldRcpInstallId(entries.front()->value, configuration); });
    }
    ids["area"] = storedValue(configuration + kUserFileName, kIdKey);
    return ids;
}

json describeProvisioning(const Account& account, json provisioning) {
    if (!provisioning.is_null()) {
        provisioning["userLevel"] =
            storedValue(configurationPath(account.options) + kUserFileName, kLevelKey);
    }
    return provisioning;
}

// Whether anything of the user's area was made. A new provisioning level makes a first launch too.
bool isAreaMade(const json& changes, const std::string& configuration) {
    return std::any_of(changes.begin(), changes.end(), [&](const json& change) {
        const std::string path = change["path"];
        return change["change"] == "made" &&
               (change["kind"] == "directory" || path.starts_with(configuration + "/"));
    });
}

bool isProvisioned(const json& facts) {
    const json& provisioning = facts["provisioning"];
    return !provisioning.is_null() && provisioning["isEnabled"] == true &&
           provisioning["isNew"] == true;
}

// What becomes of the user's area.
std::string areaState(const json& facts, const json& told) {
    const std::string configuration = facts["configuration"];
    for (const json& change : told["changes"]) {
        if (change["change"] == "moved" && change["path"] == configuration) {
            return facts["installId"]["isOld"] == true ? "reused" : "reset";
        }
    }
    if (userFirstLaunch && (!isProvisioned(facts) || isAreaMade(told["changes"], configuration))) {
        return "new";
    }
    const bool isInUse =
        hasRecord(told["records"], "Error: startup: " + configuration + " is in use");
    return isInUse ? "in use" : "kept";
}

json describeRecordedProcess() {
    const LockFile lock = lookAtLockFile(toNarrow(getLockFilePath()));
    if (lock.content != LockFile::Content::kProcess) {
        return {};
    }
    return {{"id", lock.process}, {"isPlatform", isPlatformProcess(lock.process, mainProcessName)}};
}

json lockHolder() {
    const LockHolders lock = lockHolders(toNarrow(getLockFilePath()));
    if (!lock.isHeld) {
        return {};
    }
    return lock.holders.empty() ? 0 : lock.holders.front().id;
}

json provisioningProcess() {
    const long process = runningProvisioning(getProvisioningFilePath());
    return process == 0 ? json() : json(process);
}

json describeWaits(const Account& account, const json& facts) {
    json waits = json::array();
    if (account.hasWaitedForMarker) {
        waits.push_back("until " + debugMarker(account.options) + " is removed");
    }
    if (isRestart(launcherArguments(account.options))) {
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

void addAreaStep(json& steps, const std::string& area) {
    constexpr std::pair<const char*, const char*> kSteps[] = {{"reused", "reuse-area"},
                                                              {"reset", "reset-area"},
                                                              {"in use", "leave-area-alone"},
                                                              {"new", "make-area"}};
    for (const auto& [state, step] : kSteps) {
        if (area == state) {
            steps.push_back(step);
        }
    }
}

// Ended by a record, a launch starts nothing.
void addStart(json& steps, const json& outcome, bool isInitial) {
    const std::string kind = outcome["kind"];
    if (kind == "provisioning") {
        steps.push_back("provision");
    } else if (kind != "ends") {
        if (isInitial) {
            steps.push_back("initial-configuration");
        }
        steps.push_back(outcome["role"] == "main" ? "start-platform" : "pass-arguments-on");
    }
}

json describeSteps(const Account& account, const json& decisions, const json& told,
                   const json& facts) {
    json steps = json::array();
    if (isIdMade(account)) {
        steps.push_back("make-install-id");
    }
    if (hasRecord(told["records"], "ZYPRA0013E")) {
        steps.push_back("wait-for-old-platform");
    }
    if (!facts.value("lockHolder", json()).is_null()) {
        steps.push_back("wait-for-lock");
    }
    if (hasRecord(told["records"], "ZYPRA0307I")) {
        steps.push_back("wait-for-provisioning");
    }
    if (account.hasWaitedForMarker) {
        steps.push_back("wait-for-debug-marker");
    }
    addAreaStep(steps, facts.value("area", ""));
    if (account.status == 0) {
        addStart(steps, told["outcome"], decisions["isInitial"] == true);
    }
    return steps;
}

void describeWorkspace(const Account& account, const json& decisions, const json& told,
                       json& facts) {
    std::wstring logs;
    getLogLocation(logs, workspacePath());
    facts["workspace"] = toNarrow(workspacePath());
    facts["configuration"] = toNarrow(configurationPath(account.options));
    facts["logs"] = toNarrow(logs);
    facts["lockFile"] = toNarrow(getLockFilePath());
    facts["lockHolder"] = lockHolder();
    facts["recordedProcess"] = describeRecordedProcess();
    facts["provisioningProcess"] = provisioningProcess();
    facts["installId"] = describeInstallId(account);
    facts["provisioning"] = describeProvisioning(account, decisions["provisioning"]);
    facts["area"] = areaState(facts, told);
}

}  // namespace

std::string debugMarker(const Options& options) {
    return options.installation + "/rcp/rcplauncher.debug";
}

json describeOutcome(const CommandLine& line, const json& records) {
    const std::string kind = kindOfEnd(line, records);
    json outcome{{"kind", kind}, {"role", role()}};
    if (!line.arguments().empty()) {
        outcome["program"] =
            jsonText(kind == "in-process" ? line.library() : line.arguments().front());
    }
    return outcome;
}

json askLauncher(const Account& account) {
    if (getLockFilePath().empty() || !wasUserFileRead(account)) {
        return {{"isInitial", false}, {"provisioning", nullptr}};
    }
    const LaunchInputs inputs = inputsOf(account);
    const std::wstring* level = findProperty(kLevelKey, inputs.properties);
    const std::wstring* userLevel = findProperty(kLevelKey, inputs.userProperties);
    bool isInitial = false;
    endOf([&] { isInitial = isInitialRequired(inputs.properties, inputs.userProperties); });
    const json provisioning{{"isEnabled", hasProvisioning(inputs)},
                            {"installationLevel", textOrNull(level)},
                            {"isNew", isNewProvisioningLevel(userLevel, level)}};
    return {{"isInitial", isInitial}, {"provisioning", provisioning}};
}

json describeFacts(const Account& account, const json& decisions, const json& told) {
    json facts{{"firstLaunch", userFirstLaunch}};
    facts["installConfiguration"] = jsonText(installConfigurationName());
    if (!getLockFilePath().empty()) {
        describeWorkspace(account, decisions, told, facts);
    }
    facts["waits"] = describeWaits(account, facts);
    facts["steps"] = describeSteps(account, decisions, told, facts);
    return facts;
}

}  // namespace rcp::inspect
