#include "launcher/instance/provisioning.h"

#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/instance/shared_classes.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "platform/files.h"
#include "platform/removal.h"
#include "platform/text.h"

namespace rcp {
namespace {

constexpr Key kLevel = keys::kProvisioningLevel;

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
    return hasOption(options::kLauncherWait, arguments) &&
           hasOption(options::kProvManifest, arguments);
}

void defeateSharedClassesInProvisioning(VmArgumentMap& vmargMap) {
    const auto found = vmargMap.find(keys::kSharedClassesOption);
    if (found == vmargMap.end()) {
        trace(messages.sharedClassesNotDetected);
        return;
    }
    Argument none = options::kNoSharedClasses;
    none.why = &whys::kNoSharedClasses;
    found->second = std::move(none);
    trace(messages.sharedClassesSwitchedOff);
}

bool isProvisioningEnabled(const LaunchInputs& inputs) {
    using enum InstallConfiguration;
    const std::wstring* enabled = findProperty(keys::kProvisioning, inputs.properties);
    const InstallConfiguration configuration = inputs.traits.eConfig;
    return enabled != nullptr && *enabled == L"true" &&
           (configuration == kUser || configuration == kMultiuser || configuration == kLockdown);
}

bool isAtNewProvisioningLevel(const LaunchInputs& inputs) {
    return isNewProvisioningLevel(findProperty(kLevel, inputs.userProperties),
                                  findProperty(kLevel, inputs.properties));
}

std::optional<LaunchKind> checkForProvisioning(LaunchInputs& inputs) {
    if (!isProvisioningEnabled(inputs)) {
        return std::nullopt;
    }
    if (isAtNewProvisioningLevel(inputs)) {
        inputs.userFirstLaunch = true;
    }
    const bool startedByInstaller = isISMPProvisioning(inputs.arguments);
    if (!inputs.userFirstLaunch && !startedByInstaller) {
        return std::nullopt;
    }
    defeateSharedClassesInProvisioning(inputs.vmargMap);
    trace(messages.provisioningDetected);
    return startedByInstaller ? LaunchKind::kInstallerProvisioning : LaunchKind::kUserProvisioning;
}

void emptySharedClassesOnNewLevel(const LaunchInputs& inputs) {
    const std::wstring* property = findProperty(keys::kSharedClassesPath, inputs.userProperties);
    if (property == nullptr || !isAtNewProvisioningLevel(inputs)) {
        return;
    }
    const std::string directory = withoutTrailingSlashes(toNarrow(osPath(*property)));
    if (directory.empty() || !isWorthALook(directory)) {
        return;
    }
    const SharedClassesFacts facts = sharedClassesFacts(directory, inputs);
    if (const std::optional<std::wstring> reason = reasonNotToEmpty(facts)) {
        report(noReason(), messages.sharedClassesKept, toWide(directory) + L" " + *reason);
        return;
    }
    const Removed removed = removeDirectoryContents(toWide(facts.resolved));
    if (!removed.isComplete) {
        fatal(noReason(), messages.sharedClassesNotEmptied, removed.failures);
    }
}

}  // namespace rcp
