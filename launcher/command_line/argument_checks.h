// Checks that refuse a launch. Each returns only when it passes; otherwise the process ends with a
// record. All see the launcher's arguments as the start-up sequence extended them.
#pragma once

#include "launcher/inputs/launch_inputs.h"

namespace rcp {

/// "-maxargcnt N" must name the exact number of arguments, the program path and the "-vm" pair
/// included and one less on a restart: a URL handler must not be able to smuggle in further ones.
void validateIfUrlHandlerLaunch(const Arguments& arguments);
/// No argument holds a double quote.
void validateThatDoubleQuotesNotUsed(const Arguments& arguments);
/// No argument holds "jvm.library.path", "java.library.path" or "java.home" anywhere.
void validateNoJavaLibraryPath(const Arguments& arguments);
/// The last two for what the user chose for the JVM, as it is handed over: a placeholder could have
/// brought in what no argument may hold.
void validateJvmArguments(const Arguments& arguments, const VmArgumentMap& vmargMap);
/// "-provManifest" only in the main launcher: nothing is installed under a running platform.
void validateInstallerState(const LaunchInputs& inputs);

}  // namespace rcp
