#include "launcher/core/provisioning.h"

#include "base/system_calls.h"
#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/core/command_line.h"
#include "launcher/core/hand_off_tools.h"
#include "launcher/core/install_configuration.h"
#include "launcher/core/launch_arguments.h"
#include "launcher/core/launch_state.h"
#include "launcher/core/platform_lock.h"
#include "launcher/core/running_provisioning.h"
#include "launcher/core/shared_classes.h"
#include "platform/files.h"
#include "platform/removal.h"
#include "platform/text.h"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>

namespace rcp {
namespace {

constexpr wchar_t kLevel[] = L"provisioning.manifest.version";
constexpr wchar_t kSharedClassesKey[] = L"vmarg.Dshare";

bool isNewLevel(const LaunchInputs& inputs) {
    return isNewProvisioningLevel(findProperty(kLevel, inputs.userProperties),
                                  findProperty(kLevel, inputs.properties));
}

bool isEnabled(const LaunchInputs& inputs) {
    const std::wstring* enabled = findProperty(L"provisioning", inputs.properties);
    if (enabled == nullptr || *enabled != L"true") {
        return false;
    }
    return eConfig == InstallConfiguration::kUser || eConfig == InstallConfiguration::kMultiuser ||
           eConfig == InstallConfiguration::kLockdown;
}

// An absolute path at which there is no directory, or not yet, is the JVM's affair.
bool isWorthALook(const std::string& directory) {
    const std::wstring path = toWide(directory);
    return !directory.starts_with('/') || isDirectory(path) || isLink(path);
}

}  // namespace

bool isNewProvisioningLevel(const std::wstring* userLevel, const std::wstring* platformLevel) {
    if (userLevel == nullptr) {
        return true;
    }
    return platformLevel != nullptr && *userLevel != *platformLevel;
}

bool isISMPProvisioning(const Arguments& arguments) {
    return hasOption(L"-rcpLauncherWait", arguments) && hasOption(L"-provManifest", arguments);
}

void defeateSharedClassesInProvisioning(VmArgumentMap& vmargMap) {
    if (vmargMap.erase(kSharedClassesKey) == 0) {
        SvcDebugOutA(
            "ZYPRA0121I: \"vmarg.Dshare\" shared classes property was not detected. No special "
            "action needed while provisioning");
        return;
    }
    vmargMap[kSharedClassesKey] = L"-Xshareclasses=none";
    SvcDebugOutA(
        "ZYPRA0120I: \"vmarg.Dshare\" shared classes property found. Setting -Xsharedclasses=none "
        "while provisioning");
}

void checkForProvisioning(LaunchInputs& inputs) {
    if (!isEnabled(inputs)) {
        return;
    }
    if (isNewLevel(inputs)) {
        userFirstLaunch = true;
    }
    const bool startedByInstaller = isISMPProvisioning(inputs.arguments);
    if (!userFirstLaunch && !startedByInstaller) {
        return;
    }
    defeateSharedClassesInProvisioning(inputs.vmargMap);
    SvcDebugOutA(
        "ZYPRA0076I: Detected platform initial launch or user initial launch. Executing platform "
        "provisioning.");
    doProvisioning(getUserCmdString(inputs, startedByInstaller ? LaunchKind::kInstallerProvisioning
                                                               : LaunchKind::kUserProvisioning));
    unlockLockFile();
    endLaunch(0);
}

void doProvisioning(const CommandLine& line) {
    if (observer != nullptr) {
        observer->handedOff(line);
    }
    NarrowArguments command(line.arguments());
    logLaunchArguments("ZYPRA0129I: ===== Begin Provisioning Parameters =====", command,
                       "ZYPRA0130I: ===== End Provisioning Parameters =====");
    recordProvisioning(getProvisioningFilePath());
    Gate gate;
    const pid_t child = calls::fork();
    if (child == 0) {
        // Holds the lock until the parent has recorded the id: only then may the next launcher
        // look.
        waitpid(getpid(), nullptr, 0);
        gate.wait();
        return;
    }
    populateLockFile(child);
    gate.open();
    becomeProgram(command);
    if (child > 0) {
        // It runs this launcher's executable: as long as it is there, its recorded id is a platform's.
        waitpid(child, nullptr, 0);
    }
}

void addProvisioningApplication(CommandLine& line, const PropertyList& properties,
                                bool startedByUser) {
    const Property* application = properties.find(L"provisioning.application");
    if (application == nullptr) {
        fatal(noReason(),
              "Error: checkForProvisioning: provisioning is due, but the provisioning.application "
              "property is missing.");
    }
    line.add(L"-application", argumentFrom(*application));
    if (startedByUser) {
        line.add(L"-userProvLaunch");
    }
}

void emptySharedClassesOnNewLevel(const LaunchInputs& inputs) {
    const std::wstring* property =
        findProperty(L"jvm.shareclasses.fullpath", inputs.userProperties);
    if (property == nullptr || !isNewLevel(inputs)) {
        return;
    }
    const std::string directory = withoutTrailingSlashes(toNarrow(osPath(*property)));
    if (directory.empty() || !isWorthALook(directory)) {
        return;
    }
    const SharedClassesFacts facts = sharedClassesFacts(directory, inputs);
    if (const std::optional<std::wstring> reason = reasonNotToEmpty(facts)) {
        report(noReason(), "Error: jvm.shareclasses.fullpath is not emptied: %ls.",
               toWide(directory) + L" " + *reason);
        return;
    }
    std::wstring problems;
    if (!removeDirectoryContents(toWide(facts.resolved), problems)) {
        fatal(noReason(),
              "\nZYPRA0086I begin: Information collected while removing shared classes directory\n"
              "%ls\nZYPRA0087I end: Unable to remove all files in the shared classes directory.",
              problems);
    }
}

}  // namespace rcp
