// Process entry: what main does around the start-up sequence and the hand-off.
#pragma once

#include "launcher/command_line/plan.h"
#include "launcher/inputs/arguments.h"
#include "launcher/launch.h"
#include "launcher/properties/property_list.h"

namespace rcp {

/// What "-version" records: the version of what installations rely on. It is no release's, stays while they can,
/// and is the bundle's CFBundleVersion.
inline constexpr wchar_t kVersion[] = L"20211117.0921";

/// The whole launch, from the process's arguments to the hand-off. Returns the exit status of main.
int runLauncher(int argc, char** argv);

/// The launch itself, without what runLauncher puts around it for the process's sake. However it ends,
/// `launch` tells how far it came.
void run(Launch& launch, int argc, char** argv);

/// Sets the character-type locale from the environment, UTF-8 where it asks for "C". Failure ends
/// the launch.
void setCharacterLocale();

/// Behind every "-Djava.ext.dirs..." argument: ":", the JVM location and the extension folder. When
/// several match, all become the text made for the last one.
void rewriteExtensionDirectories(Arguments& arguments, const PropertyList& properties);
/// Appends "-vm" and the JVM of the properties, as if the user had given them.
void appendVm(Arguments& arguments, const PropertyList& properties);

/// The JVM options that stand last in every line of a platform.
void addForEveryPlatform(Plan& plan);

/// With "-version" as the only argument: a record with the version, and the process ends. A launch
/// has appended the "-vm" pair by then and never matches.
void doVersionCheck(const Arguments& arguments);

/// Always true: the JVM is part of the installation.
bool isJREPluginInstalled();
/// The Java home of the default installation, cut at its first line feed.
std::string GetJavaHome();
/// Starts the default installation's Java once and ends the process with status 1.
[[noreturn]] void quitWithNoJavaWarning();

}  // namespace rcp
