#include "launcher/command_line/assembly.h"

#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/argument_checks.h"
#include "launcher/command_line/environment_settings.h"
#include "launcher/command_line/main_options.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
#include "launcher/command_line/vm_choice.h"
#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"

#include <errno.h>

namespace rcp {
namespace {

// A file below the base location.
Argument inBaseLocation(const std::wstring& file, const PropertyList& properties) {
    const Property* base = properties.find(keys::kBaseLocation);
    if (base == nullptr) {
        fatal(noReason(), messages.noBaseLocation);
    }
    return {base->value + file, base->origin};
}

// The JVM's part of a command line for the launcher library.
void addJvmSection(CommandLine& line, const LaunchInputs& inputs, JvmFile jvm) {
    addVmargsToCommandLine(line, inputs, jvm);
    addDashDToCommandLine(line, inputs);
    addXargsToCommandLine(line, inputs.properties);
    addClasspathToCommandLine(line, inputs);
}

void assembleProvisioning(CommandLine& line, const LaunchInputs& inputs, LaunchKind kind) {
    addBaseEclipseToCommandLine(line, inputs.properties);
    addMainOptionsToCommandLine(line, inputs);
    addProvisioningApplication(line, inputs.properties, kind);
    const JvmFile jvm = addVmToCommandLine(line, inputs);
    addStartupToCommandLine(line, inputs.properties, inputs.arguments);
    addJvmSection(line, inputs, jvm);
}

void assembleForLauncherLibrary(CommandLine& line, const LaunchInputs& inputs) {
    addBaseEclipseToCommandLine(line, inputs.properties);
    addMainOptionsToCommandLine(line, inputs);
    const JvmFile jvm = addVmToCommandLine(line, inputs);
    addUseDaemonToCommandLine(line, inputs);
    addStartupToCommandLine(line, inputs.properties, inputs.arguments);
    addJvmSection(line, inputs, jvm);
}

void assembleForJava(CommandLine& line, const LaunchInputs& inputs) {
    const JvmFile jvm = addVmToCommandLine(line, inputs);
    addJvmSection(line, inputs, jvm);
    addMainClassToCommandLine(line);
    addMainOptionsToCommandLine(line, inputs);
}

CommandLine assemble(const LaunchInputs& inputs, LaunchKind kind) {
    CommandLine line(inputs.traits.start);
    if (kind != LaunchKind::kPlatform) {
        assembleProvisioning(line, inputs, kind);
    } else if (inputs.traits.isDirectJavaShape()) {
        assembleForJava(line, inputs);
    } else {
        assembleForLauncherLibrary(line, inputs);
    }
    return line;
}

}  // namespace

void expandPlaceholders(LaunchInputs& inputs) {
    const StandardLocations locations{inputs.workspace, inputs.installDir};
    replacePlaceholdersInRcpInstallProp(locations, inputs.userProperties);
    replacePlaceholdersInArgv(locations, inputs.arguments);
    replacePlaceholdersInVmargMap(locations, inputs.properties, inputs.vmargMap);
    validateJvmArguments(inputs.arguments, inputs.vmargMap);
}

Plan getUserCmdString(const LaunchInputs& inputs, LaunchKind kind) {
    return {.kind = kind,
            .line = assemble(inputs, kind),
            .environment = environmentOf(inputs.properties)};
}

void addBaseEclipseToCommandLine(CommandLine& line, const PropertyList& properties) {
    const Argument program = platformProgram(properties);
    if (!isExecutable(program.text)) {
        const int error = errno;
        const Property* name = properties.find(keys::kEclipseName);
        fatal(because(error).from(name == nullptr ? program.origin : name->origin),
              messages.platformNotExecutable, program.text);
    }
    line.setProgram(program, whys::kPlatformProgram);
    const Argument library =
        inBaseLocation(std::wstring(paths::kPrograms) + ECLIPSE_SO_NAME_DEFAULT, properties);
    if (!exists(library.text)) {
        fatal(because(errno).from(library.origin), messages.libraryMissing, library.text);
    }
    line.setLibrary(library.text);
}

Argument platformProgram(const PropertyList& properties) {
    return inBaseLocation(paths::kPrograms + getEclipseExeName(properties), properties);
}

Argument executedProgram(const LaunchInputs& inputs) {
    return inputs.traits.isDirectJavaShape() ? vmProgram(inputs)
                                             : platformProgram(inputs.properties);
}

void addStartupToCommandLine(CommandLine& line, const PropertyList& properties,
                             const Arguments& arguments) {
    line.add(options::kStartup, whys::kStartupJar);
    if (const Argument* jar = optionValue(options::kStartupJar, arguments)) {
        jar->origin.isCommandLine() ? line.add(*jar, whys::kUsersStartupJar) : line.add(*jar);
    } else {
        line.add(inBaseLocation(L"/launcher.jar", properties), whys::kStartupJarBelowBase);
    }
}

void addMainClassToCommandLine(CommandLine& line) {
    line.add(options::kMainClass, whys::kMainClass);
}

void addClasspathToCommandLine(CommandLine& line, const LaunchInputs& inputs) {
    if (inputs.traits.eConfig == InstallConfiguration::kMultiuserServiceInit) {
        line.add(options::kClassPath, whys::kClassPath);
        line.add(inBaseLocation(L"/startup.jar", inputs.properties), whys::kClassPathBelowBase);
    } else if (const Property* classPath = inputs.properties.find(keys::kClassPath)) {
        line.add(options::kClassPath, whys::kClassPath);
        line.add(argumentFrom(*classPath));
    }
}

}  // namespace rcp
