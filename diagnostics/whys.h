// Why an element of the command line is there, and why something else is not: said where it is put in, dropped
// or beaten, and told by whoever explains a launch.
#pragma once

#include "diagnostics/argument.h"

namespace rcp::whys {

// --- From outside. "%s" is the name of the argument or property ---
inline constexpr Why kUsersArgument{"the user's argument, passed on as it is"};
inline constexpr Why kUsersJvmArgument{"the user's JVM argument"};
inline constexpr Why kJvmArgument{"JVM argument %s; in the order of the names"};
inline constexpr Why kExtension{"the configuration extension puts it in: %s"};

// --- The program ---
inline constexpr Why kPlatformProgram{
    "what is started: below the base location the program that eclipse.name names, or \"eclipse\""};
inline constexpr Why kJvmProgram{"what is started: the JVM itself"};

// --- Options of the platform ---
inline constexpr Why kNoSplash{"a plain Java command line shows no splash screen"};
inline constexpr Why kNoErrorWindows{"the platform's program shows no error windows unless traced"};
inline constexpr Why kWorkspace{"the workspace, always the launcher's own"};
inline constexpr Why kConfiguration{"the configuration area, always the launcher's own"};
inline constexpr Why kApplication{"the application, because the arguments name none"};
inline constexpr Why kPreferences{"the plug-in preferences, because the arguments name none"};
inline constexpr Why kProduct{"the product, because the arguments name none"};
inline constexpr Why kPersonality{"the personality, because the arguments name none"};
inline constexpr Why kProvisioning{"the provisioning that is due"};
inline constexpr Why kUsersProvisioning{"this provisioning was started by the user's launch"};
inline constexpr Why kJvm{"the JVM"};
inline constexpr Why kUsersJvm{"the JVM that the user names with -vm"};
inline constexpr Why kDaemon{"a platform runs already: its process id"};
inline constexpr Why kStartupJar{"the start-up jar"};
inline constexpr Why kStartupJarBelowBase{"the start-up jar, below the base location"};
inline constexpr Why kUsersStartupJar{"the start-up jar that the user names with -perfJar"};

// --- The JVM's part ---
inline constexpr Why kJvmPart{"what follows is the JVM's"};
inline constexpr Why kClassPath{"the class path"};
inline constexpr Why kClassPathBelowBase{"the class path, below the base location"};
inline constexpr Why kMainClass{"the main class of a plain Java command line"};
inline constexpr Why kTellsHome{"tells the platform the installation directory"};
inline constexpr Why kTellsWorkspace{"tells the platform the workspace"};
inline constexpr Why kTellsSplash{"tells the platform its splash screen"};
inline constexpr Why kTellsInstallId{"tells the platform which installation this is"};
inline constexpr Why kTellsKind{"tells the platform the kind of installation"};
inline constexpr Why kTellsInstallArea{"tells the platform where its plug-ins are"};
inline constexpr Why kNoSharedClasses{"no shared classes while provisioning"};
inline constexpr Why kTextsAreUtf8{"the platform's texts are UTF-8, whatever the locale says"};
inline constexpr Why kFirstThread{"the JVM's first thread is the one that the window system wants"};
inline constexpr Why kDebugMarker{"while this file exists every launch is a debugging one"};

// --- Not passed on ---
inline constexpr Why kOwnWorkspace{"becomes the launcher's own -data"};
inline constexpr Why kOwnConfiguration{"the configuration area is always the launcher's own"};
inline constexpr Why kOwnJvmPart{"becomes the launcher's own -vmargs"};
inline constexpr Why kOwnJvm{"becomes the launcher's own -vm"};
inline constexpr Why kOldPlatform{"names the process whose end the launcher waits for"};
inline constexpr Why kOldPlatformsId{"the process whose end the launcher waits for"};
inline constexpr Why kRestart{"tells the launcher that its platform is started anew"};
inline constexpr Why kReset{"asks the launcher for a new configuration area"};
inline constexpr Why kNoConsole{"a restarted platform gets no debug console"};
inline constexpr Why kLacksValue{"has no value"};
inline constexpr Why kExtensionOption{"stands for the arguments of a configuration extension"};
inline constexpr Why kExtensionName{"names the configuration extension"};
inline constexpr Why kInitial{"the initial configuration is started instead"};
inline constexpr Why kRepeats{"repeats an option; the first one counts"};
inline constexpr Why kRepeatsOption{"repeats an option"};

// --- Beaten ---
inline constexpr Why kCommandLineWins{"the command line wins"};
inline constexpr Why kExtensionWins{"the configuration extension wins"};
inline constexpr Why kUsersFileWins{"the user's file wins"};
inline constexpr Why kInstallationsJvmWins{"the JVM of the installation wins"};
inline constexpr Why kReadFirstWins{"the entry read first wins"};
inline constexpr Why kReadLastWins{"the entry read last wins"};

/// Why an argument or property keeps others out.
inline const Why& whyItWins(const Argument& winner) {
    return winner.origin.isCommandLine() ? kCommandLineWins
           : winner.why == &kExtension   ? kExtensionWins
                                         : kReadFirstWins;
}

}  // namespace rcp::whys
