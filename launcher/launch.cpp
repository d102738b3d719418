#include "launcher/launch.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/argument_checks.h"
#include "launcher/command_line/assembly.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/command_line/environment_settings.h"
#include "launcher/command_line/initial_configuration.h"
#include "launcher/command_line/vm_choice.h"
#include "launcher/inputs/debug_file.h"
#include "launcher/inputs/launch_inputs.h"
#include "launcher/inputs/option_values.h"
#include "launcher/instance/provisioning.h"
#include "launcher/properties/placeholders.h"
#include "launcher/properties/property_file.h"
#include "launcher/stages.h"
#include "launcher/user_area/install_id.h"
#include "launcher/user_area/platform_xml.h"
#include "launcher/user_area/reset.h"
#include "launcher/user_area/startup_arguments.h"
#include "launcher/user_area/unfinished_files.h"
#include "launcher/user_area/user_files.h"
#include "launcher/user_area/workspace.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "platform/bundle_metadata.h"
#include "platform/files.h"
#include "platform/install_location.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <optional>
#include <string>
#include <utility>

namespace rcp {
namespace {

// Makes a directory of the user's area unless it is there. `message` carries the step's number.
void ensure(LaunchInputs& inputs, const std::wstring& directory, Message<Text> message) {
    if (isDirectory(directory)) {
        return;
    }
    inputs.completeArea();
    ensureDirectory(directory, message, inputs.workspaceOrigin);
}

// The installation's properties and what of the arguments decides how they are read.
std::wstring applyInstallation(const Arguments& arguments, Installation installation, Start start,
                               LaunchInputs& inputs) {
    if (debug) {
        // Read before it was known that this launch is traced, and the trace shows what is read.
        installation = readInstallation();
    }
    inputs.installDir = std::move(installation.directory);
    inputs.properties = std::move(installation.properties);
    extendArguments(arguments, inputs);
    setDebug(isDebug(inputs.arguments));
    inputs.traits = traitsOf(inputs.properties, start);
    getInstallID(inputs.traits.eConfig, propertyFileOf(inputs.installDir), inputs.properties);
    return settleBaseLocation(inputs);
}

void reportMissingValue(const Arguments& arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (lacksValue(arguments, i)) {
            report(noReason(), messages.optionWithoutValue, arguments[i].text);
        }
    }
}

void checkArguments(const Arguments& arguments) {
    validateIfUrlHandlerLaunch(arguments);
    validateThatDoubleQuotesNotUsed(arguments);
    validateNoJavaLibraryPath(arguments);
}

void openLog(LaunchInputs& inputs) {
    const std::wstring folder = getLogLocation(inputs.workspace);
    ensure(inputs, folder, messages.logFolderNotMade);
    if (!enableLogging(folder)) {
        endLaunch(255);
    }
    deleteTempLog();
}

std::wstring bundleListOf(const LaunchInputs& inputs, const std::wstring& base) {
    std::wstring path = base + paths::kBundleList;
    replaceUserPlaceholders(path, inputs.properties);
    return path;
}

// The main launcher tidies up after a killed one; whoever holds the lock tells of its own names.
void settleUnfinishedFiles(Launch& launch, const std::wstring& base) {
    const LaunchInputs& inputs = launch.inputs;
    launch.note = std::make_unique<UnfinishedNote>(toNarrow(unfinishedNoteOf(inputs.workspace)));
    if (inputs.isMainProcess() && launch.note->isLeft()) {
        const bool areUsersGone = removeUnfinishedFiles(inputs.workspace, inputs.configuration);
        // May be another workspace's at work, unlike the user's own files.
        if (removeUnfinished(bundleListOf(inputs, base)) && areUsersGone) {
            launch.note->settle();
        }
    }
}

// Reuse after another installation, or the reset the user asked for. Only the main launcher moves
// the configuration area: under a daemon a platform is running in it. Whether the user's file was read
// for that and stays as it is.
bool renewUserArea(LaunchInputs& inputs, const std::wstring& base) {
    const bool isAsked = isResetConfig(inputs.arguments);
    if (inputs.userFirstLaunch) {
        if (isAsked) {
            report(noReason(), messages.resetNotCarriedOut, inputs.workspace);
        }
        return false;
    }
    const bool isThere =
        getPropertiesIfThere(userFileOf(inputs.configuration), inputs.userProperties);
    // There is one: getInstallID has made sure.
    const std::wstring* installId = findProperty(keys::kInstallId, inputs.properties);
    const bool isOld = isOldRcpInstallId(*installId, inputs.userProperties);
    if (!isOld && !isAsked) {
        return isThere;
    }
    if (!inputs.isMainProcess()) {
        inputs.area = UserArea::kInUse;
        report(noReason(), messages.areaInUse, inputs.configuration);
        return isThere;
    }
    inputs.area = isOld ? UserArea::kReused : UserArea::kReset;
    isOld ? createReusableWorkspace(inputs.workspace, inputs.configuration)
          : resetWorkspace(inputs, base);
    return false;
}

// The folders in which the user's own extensions are installed, and the installation's link file,
// which always wins.
void prepareExtensions(LaunchInputs& inputs) {
    const std::wstring applications = inputs.workspace + paths::kExtensions;
    ensure(inputs, osPath(applications + L"/features"), messages.extensionFeaturesNotMade);
    ensure(inputs, osPath(applications + L"/plugins"), messages.extensionPluginsNotMade);
    const std::wstring shared = osPath(inputs.installDir + paths::kSharedExtension);
    if (const UniqueFd opened = openExisting(shared)) {
        copyFile(opened, shared, osPath(applications + paths::kExtensionLink));
    }
}

// For a later restart. `arguments` are the launcher's own, before "-config" is replaced by what it
// stands for: the restarted launcher replaces it itself. The record's text where that is known.
std::optional<std::string> recordArguments(const Arguments& arguments, const LaunchInputs& inputs) {
    if (!inputs.isMainProcess() || isRestart(arguments)) {
        return std::nullopt;
    }
    return writeStartupArgs(arguments, inputs.configuration,
                            getRestartExe(arguments, inputs.properties, inputs.installDir),
                            inputs.properties, inputs.installDir);
}

// The recorded arguments as properties; false without a record.
bool readRecord(LaunchInputs& inputs, const std::optional<std::string>& recorded) {
    const std::wstring path = osPath(inputs.configuration + L"/" + paths::kArguments);
    if (!recorded) {
        return getPropertiesIfThere(path, inputs.properties);
    }
    addProperties({.bytes = *recorded}, path, inputs.properties);
    return true;
}

// `isRead`: the user's file was read before, and stays. A traced launch shows every reading.
// `recorded`: what recordArguments knows.
void readUserFiles(LaunchInputs& inputs, const std::wstring& base, bool isRead,
                   const std::optional<std::string>& recorded) {
    const bool isConfigMade = createConfigIni(inputs, base);
    const bool isUserFileMade = !isRead && createRCPInstallProps(inputs, base);
    if (isConfigMade || isUserFileMade) {
        inputs.completeArea();
    }
    if (!isRead || debug) {
        inputs.userProperties = PropertyList();
        getProperties(userFileOf(inputs.configuration), inputs.userProperties);
    }
    applyUserProperties(inputs);
    if (readRecord(inputs, recorded)) {
        insertPropToVmargMap(inputs.vmargMap, inputs.properties);
    }
}

void updateBundle(const LaunchInputs& inputs, const std::wstring& base) {
    const std::wstring path = bundleListOf(inputs, base);
    if (const Argument* identifier = getBundleIdentifier(inputs.arguments)) {
        updateInfoPlist(path, identifier->text);
    }
}

// A plain Java command line has no word for a daemon.
void reportSecondPlatform(const LaunchInputs& inputs) {
    if (inputs.runningPlatform && inputs.traits.isDirectJavaShape()) {
        report(noReason(), messages.secondPlatform, std::to_wstring(*inputs.runningPlatform));
    }
}

// Until the first configuration is complete the launch runs with it instead of its own arguments.
void switchToInitialConfiguration(LaunchInputs& inputs) {
    inputs.isInitial = isInitialRequired(inputs);
    if (inputs.isInitial) {
        inputs.debugFile = debugFile(inputs.installDir);
        inputs.arguments =
            addConfigExtentionsToArg(initialArguments(inputs.arguments), inputs.properties,
                                     inputs.vmargMap, inputs.debugFile);
    }
}

// Decides who this launcher is in its workspace. False for a launch that has to begin anew.
bool takeLock(Launch& launch) {
    LaunchInputs& inputs = launch.inputs;
    launch.marker = markerOf(inputs);
    launch.lock =
        PlatformLock::take(inputs.workspace, *launch.marker, oldPlatform(inputs.arguments));
    if (launch.lock) {
        inputs.runningPlatform = launch.lock->platform();
    }
    return launch.lock.has_value();
}

Plan planFor(LaunchInputs& inputs, LaunchKind kind) {
    expandPlaceholders(inputs);
    emptySharedClassesOnNewLevel(inputs);
    Plan plan = getUserCmdString(inputs, kind);
    applyEnvironment(plan.environment);
    return plan;
}

}  // namespace

Installation readInstallation() {
    Installation installation;
    installation.directory = getInstallDir();
    getProperties(propertyFileOf(installation.directory), installation.properties);
    return installation;
}

std::optional<Plan> startup(Launch& launch, Installation installation, Start start) {
    const Arguments& arguments = launch.arguments;
    LaunchInputs& inputs = launch.inputs;
    reportMissingValue(arguments);
    const std::wstring base = applyInstallation(arguments, std::move(installation), start, inputs);
    settleWorkspace(inputs);
    ensure(inputs, inputs.workspace, messages.workspaceNotMade);
    checkArguments(inputs.arguments);

    if (!takeLock(launch)) {
        return std::nullopt;
    }
    openLog(inputs);
    waitForDeletionOfDebugFile(inputs.debugFile);
    validateInstallerState(inputs);

    ensure(inputs, inputs.configuration, messages.configurationNotMade);
    settleUnfinishedFiles(launch, base);
    const bool isUserFileRead = renewUserArea(inputs, base);
    prepareExtensions(inputs);
    const std::optional<std::string> recorded = recordArguments(arguments, inputs);
    readUserFiles(inputs, base, isUserFileRead, recorded);
    const JvmPropertyLocation jvmProperties =
        getJvmPropertyLocation(inputs.properties, inputs.arguments, inputs.installDir);
    loadJvmProperties(inputs, jvmProperties);
    if (createPlatformXML(inputs, base,
                          jvmProperties.isDefault ? Features::kBare : Features::kFilledIn)) {
        inputs.completeArea();
    }
    updateBundle(inputs, base);

    if (inputs.isMainProcess()) {
        if (const std::optional<LaunchKind> provisioning = checkForProvisioning(inputs)) {
            return planFor(inputs, *provisioning);
        }
    }
    reportSecondPlatform(inputs);
    switchToInitialConfiguration(inputs);
    return planFor(inputs, LaunchKind::kPlatform);
}

}  // namespace rcp
