#include "launcher/stages.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/assembly.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/inputs/debug_file.h"
#include "launcher/properties/placeholders.h"
#include "launcher/user_area/workspace.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/text.h"

namespace rcp {

std::wstring propertyFileOf(const std::wstring& installDir) {
    return installDir + paths::kSettings;
}

void extendArguments(const Arguments& arguments, LaunchInputs& inputs) {
    inputs.debugFile = debugFile(inputs.installDir);
    inputs.arguments =
        addConfigExtentionsToArg(arguments, inputs.properties, inputs.vmargMap, inputs.debugFile);
    insertPropToVmargMap(inputs.vmargMap, inputs.properties);
}

std::wstring settleBaseLocation(LaunchInputs& inputs) {
    const std::wstring* property = findProperty(keys::kBaseLocation, inputs.properties);
    if (property == nullptr) {
        const std::wstring file = propertyFileOf(inputs.installDir);
        fatal(noReason().from(wholeFile(file)), messages.baseLocationMissing, file);
    }
    std::wstring base = *property;
    replaceEvery(base, placeholders::kRcpHome, inputs.installDir);
    replaceValue(keys::kBaseLocation, base, inputs.properties);
    return base;
}

void settleWorkspace(LaunchInputs& inputs) {
    const Argument workspace = getWorkspaceLocation(inputs);
    inputs.workspace = osPath(workspace.text);
    inputs.workspaceOrigin = workspace.origin;
    inputs.configuration = osPath(getConfigurationLocation(inputs));
}

ProcessMarker markerOf(const LaunchInputs& inputs) {
    return {.mainProcessName = getMainProcessName(inputs.traits, inputs.properties),
            .platformExecutable = executedProgram(inputs).text,
            .invokeDylib = inputs.traits.invokeDylib};
}

void applyUserProperties(LaunchInputs& inputs) {
    std::wstring workspace = inputs.workspace;
    convertBS2S(workspace);
    trace(messages.workspaceLocation, workspace);
    pushBackProperty(inputs.properties, keys::kWorkspaceLocation, workspace);
    pushBackProperty(inputs.userProperties, keys::kWorkspaceLocation, workspace);
    insertPropToVmargMap(inputs.vmargMap, inputs.userProperties);
}

}  // namespace rcp
