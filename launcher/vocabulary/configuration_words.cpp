#include "launcher/vocabulary/configuration_words.h"

#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/variables.h"

namespace rcp {
namespace {

constexpr OptionWords kOptionWords[] = {
    {options::kData, "DIR",
     "the workspace; `${rcp.home}` and user placeholders are replaced, a relative path is made "
     "absolute. Example: `-data ${env.HOME}/ws`",
     "as the launcher's own `-data`", Writer::kUser},
    {options::kConfiguration, "DIR", "not heard: the launcher decides the configuration area",
     "no"},
    {options::kConfig, "NAME",
     "stands for the arguments in the properties `config.NAME.1`, `config.NAME.2`, ...",
     "what it stands for", Writer::kUser},
    {options::kApplication, "ID", "the application; without it property `application`", "yes",
     Writer::kUser},
    {options::kProduct, "ID",
     "the product; without it property `product` of the user's file, then of the launcher's", "yes",
     Writer::kUser},
    {options::kPersonality, "ID", "the personality; without it property `personality`", "yes",
     Writer::kUser},
    {options::kPluginCustomization, "FILE",
     "plug-in preferences; without it property `plugincustomization`", "yes", Writer::kUser},
    {options::kLocale, "LOCALE",
     "the platform's; the launcher removes a repetition in an extension", "yes"},
    {options::kDirection, "DIRECTION", "the same", "yes"},
    {options::kVm, "PATH",
     "the JVM; without it the installation's own, which the launcher appends as `-vm` with "
     "`jvm.location` and `jvm.libpath`; on a restart property `vm`",
     "as the launcher's own `-vm`", Writer::kUser},
    {options::kVmargs, "ARG...",
     "everything behind it goes to the JVM, except a further `-vm` and its value", "yes",
     Writer::kUser},
    {options::kStartupJar, "FILE", "the startup jar instead of the base location's `launcher.jar`",
     "yes"},
    {options::kDebug, "", "tracing: the log is written in full, under a name of its own",
     "yes; not on a restart", Writer::kUser},
    {options::kConsole, "", "the platform's console; no console fix argument is added",
     "yes; not on a restart", Writer::kUser},
    {options::kPb4l, "", "the platform's; one of the options that the debug marker file adds",
     "yes"},
    {options::kDebugFile, "FILE", "added by the debug marker file, with its path", "yes"},
    {options::kNoExit, "", "the platform's; survives the switch to the initial configuration",
     "yes"},
    {options::kResetConfig, "",
     "a fresh configuration area; the former one stays beside it with \"bak\" behind its name",
     "no", Writer::kUser},
    {options::kRestart, "",
     "the platform restarts the launcher: no `-vm` pair is appended, nothing is traced, the old "
     "platform is waited for",
     "no"},
    {options::kOldPid, "ID", "with `-restart`: the old platform's process id", "no"},
    {options::kLauncherWait, "", "with `-provManifest`: an installer's launch", "yes"},
    {options::kProvManifest, "FILE", "the installer's manifest; refused while a platform runs",
     "yes"},
    {options::kMaxArgCount, "N",
     "the launch is refused unless N is the number of arguments, the program and the appended "
     "`-vm` pair included",
     "yes", Writer::kUser},
    {options::kBundleIdentifier, "ID", "written into the bundle's `Info.plist`", "yes"},
    {options::kVersion, "",
     "the version, only as the single argument of a launcher that appends nothing", ""},
    {options::kInitMuService, "", "reserved for the service initialisation", "yes"},
    {options::kCommandOnly, "", "reserved", "yes"},
    {options::kExtensionDirectories, "",
     "\"=DIRS\" gets \":\", `jvm.location` and `jvm.extpath` behind it", "yes"},
};

constexpr WrittenOptionWords kWrittenOptions[] = {
    {options::kSuppressErrors, "unless tracing"},
    {options::kNoSplash, "the plain Java command line"},
    {options::kData, "the workspace"},
    {options::kConfiguration, "the configuration area"},
    {options::kVm, "the JVM"},
    {options::kUseDaemon, "the process id of the platform that runs already"},
    {options::kUserProvLaunch, "a provisioning launch that the user started"},
    {options::kStartup, "the startup jar"},
    {options::kVmargs, "in front of the JVM's arguments"},
    {options::kRcpHome, "the installation"},
    {options::kRcpData, "the workspace"},
    {options::kSplashPath, "property `osgi.splashPath`"},
    {options::kInstallId, "property `rcp.install.id`"},
    {options::kInstallConfig, "property `install.configuration`"},
    {options::kInstallArea, "`rcp/eclipse` of the installation"},
    {options::kNoSharedClasses, "provisioning: instead of `vmarg.Dshare`"},
    {options::kBootClassPathPrepend, "property `Xbootclasspath.prepend`"},
    {options::kBootClassPathAppend, "property `Xbootclasspath.append`"},
    {options::kClassPath, "the class path"},
    {options::kFileEncoding, "always, the last but one"},
    {options::kStartOnFirstThread, "always, the last"},
};

constexpr PlaceholderWords kPlaceholders[] = {
    {placeholders::kRcpHome, "the installation directory"},
    {placeholders::kWorkspaceLocation, "the workspace"},
    {placeholders::kRcpData, "the workspace"},
    {L"${env.", "VAR} or VAR,default}: an environment variable"},
    {L"${prop.", "KEY}: the first value of KEY"},
};

constexpr VariableWords kVariables[] = {
    {variables::kHome, "the user's home directory", ""},
    {variables::kUser, "the user's name", ""},
    {variables::kLocale, "the character set; UTF-8 instead of \"C\"", ""},
    {variables::kCharacterType, "the character set, without LC_ALL", ""},
    {variables::kLanguage, "the character set, without the other two", ""},
    {variables::kPath, "where `ps` is found", ""},
    {variables::kTemporaryFolder, "beside `/tmp` a directory that is never emptied", ""},
    {variables::kLibraryPath, "recorded in `args.properties`", "from the library path properties"},
    {variables::kPreload, "", "from `library.preload`"},
    {variables::kJavaHighZipFds, "", "always"},
};

}  // namespace

std::span<const OptionWords> optionWords() {
    return kOptionWords;
}

std::span<const WrittenOptionWords> writtenOptionWords() {
    return kWrittenOptions;
}

std::span<const PlaceholderWords> placeholderWords() {
    return kPlaceholders;
}

std::span<const VariableWords> variableWords() {
    return kVariables;
}

}  // namespace rcp
