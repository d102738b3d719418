#include "launcher/vocabulary/property_keys.h"

#include "launcher/vocabulary/paths.h"

#include <algorithm>
#include <iterator>

namespace rcp {
namespace {

using enum KeySection;
using enum KeyTail;
using enum Expansion;

// Which files a key counts in follows from when it is asked for: before the start-up sequence has
// read anything else, or once everything is read.
constexpr unsigned kFirstFile = kLauncherFile;
constexpr unsigned kAtTheEnd = kLauncherFile | kArgsFile | kJvmFile;
constexpr unsigned kEverywhere = kAtTheEnd | kUserFile;

constexpr PropertyKey kKeys[] = {
    {keys::kInstallId, kInstallation, kNothing, kFirstFile | kUserFile, kNone, true,
     "which installation this is",
     "required; which installation this is. \"userpb\" makes one when it is missing"},
    {keys::kBaseLocation, kInstallation, kNothing, kFirstFile, kRcpHome, true,
     "the folder of the platform's program, jars and master files",
     "required; the folder with the platform's program, jars and master files. `${rcp.home}` is "
     "replaced. Must contain \"rcp.base\" when that program is a script: the process check looks "
     "for it"},
    {keys::kInstallConfiguration, kInstallation, kNothing, kFirstFile, kNone, false,
     "the kind of installation",
     "\"%s\" (default), \"multiuser\", \"lockdown\", \"serial.multiuser\", \"userpb\", or "
     "\"service\" (plain Java command line, user area in the installation)",
     defaults::kInstallConfiguration},
    {keys::kInvokeEclipseDylib, kInstallation, kNothing, kFirstFile, kNone, false,
     "the choice of the hand-off",
     "\"1\": hand off through the launcher library in this process; anything else: `execv`; "
     "without it only macOS 10.15 hands off in-process. An executable that is not named "
     "\"rcplauncher\" always does"},
    {keys::kEclipseName, kInstallation, kNothing, kAtTheEnd, kNone, false,
     "the file name of the platform's program", "file name of the platform's program, \"%s\"",
     defaults::kEclipseName},
    {keys::kData, kInstallation, kNothing, kFirstFile, kAll, false,
     "the workspace when -data is not given",
     "the workspace, when `-data` is not given. Default: HOME`/OVR/RCP/`id`/`user. Example: "
     "`rcp.data=${env.HOME}/workspace`"},
    {keys::kApplication, kInstallation, kNothing, kAtTheEnd, kNone, false,
     "-application when it is not given", "the platform application"},
    {keys::kProduct, kInstallation, kNothing, kEverywhere, kNone, false,
     "-product when it is not given", "the product; the user's `rcpinstall.properties` wins"},
    {keys::kPersonality, kInstallation, kNothing, kAtTheEnd, kNone, false,
     "-personality when it is not given", "the personality"},
    {keys::kPluginCustomization, kInstallation, kNothing, kAtTheEnd, kNone, true,
     "-plugincustomization when it is not given",
     "file with plug-in preferences; required unless the option is given"},
    {keys::kClassPath, kInstallation, kNothing, kAtTheEnd, kNone, false,
     "the class path behind -cp", "class path behind `-cp`"},
    {keys::kUpdatePolicyManaged, kInstallation, kNothing, kAtTheEnd, kNone, false,
     "whether a platform.xml is made for the user",
     "\"false\": no per-user `platform.xml` is made"},
    {keys::kLocale, kInstallation, kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties",
     "copied into the user's `rcpinstall.properties`"},
    {keys::kBidi, kInstallation, kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties",
     "copied into the user's `rcpinstall.properties`"},
    {keys::kExtension, kInstallation, kExtension, kFirstFile, kStandard, false,
     "what -config NAME stands for",
     "NAME.n: the n-th argument of configuration extension NAME; NAME.restartExe.macosx: the "
     "program to restart with. Example: `config.kiosk.1=-nosplash`"},
    {keys::kInitial, kInstallation, kNumber, kAtTheEnd, kStandard, false,
     "the arguments of the initial configuration",
     "n: the arguments of the initial configuration. One is `-initialCompleteFlag`, the next names "
     "the property of the user's file that is \"true\" once it is complete"},
    {keys::kJvmLocation, kJvm, kNothing, kFirstFile, kStandard, false,
     "where the installation's JVM is", "where the installation's JVM is; \"%s\"",
     defaults::kJvmLocation},
    {keys::kJvmLibPath, kJvm, kNothing, kFirstFile, kStandard, false,
     "what -vm names below the JVM's location", "what `-vm` names below it; \"%s\"",
     defaults::kJvmLibPath},
    {keys::kJvmExtPath, kJvm, kNothing, kFirstFile, kStandard, false,
     "the JVM's folder behind -Djava.ext.dirs", "its extension folder; \"%s\"",
     defaults::kJvmExtPath},
    {keys::kVm, kJvm, kNothing, kAtTheEnd, kRcpHome, false, "the JVM when -vm is not given",
     "the JVM when `-vm` is not given"},
    {keys::kVmarg, kJvm, kAnything, kEverywhere, kAll, false, "a JVM argument",
     "NAME: a JVM argument. An empty value keeps later ones of that name out. Example: "
     "`vmarg.Xmx=-Xmx512m`"},
    {keys::kSystemProperty, kJvm, kAnything, kAtTheEnd, kNone, false,
     "a system property of the JVM", "NAME: a system property. Example: `-Dmy.key=value`"},
    {keys::kJvmOption, kJvm, kAnything, kAtTheEnd, kNone, false, "a JVM option",
     "OPTION: a JVM option with what stands behind its name. Example: `-Xmx512m`"},
    {keys::kBootClassPathPrepend, kJvm, kNothing, kAtTheEnd, kNone, false,
     "-Xbootclasspath/p:", "`-Xbootclasspath/p:` and the value"},
    {keys::kBootClassPathAppend, kJvm, kNothing, kAtTheEnd, kNone, false,
     "-Xbootclasspath/a:", "`-Xbootclasspath/a:` and the value"},
    {keys::kConsoleFix, kJvm, kAnything, kAtTheEnd, kWorkspace, false,
     "a JVM argument of launches without -console",
     "a JVM argument for launches without `-console`; `${workspace.location}` is replaced"},
    {keys::kJavaHome, kJvm, kNothing, kAtTheEnd, kNone, false, "the Java home",
     "the Java home; corrected when the JVM's path shows another"},
    {keys::kJvmLibraryPath, kJvm, kNothing, kAtTheEnd, kNone, false, "the JVM's library path",
     "library path of the JVM; elements become relative to the Java home"},
    {keys::kJvmRoot, kJvm, kNothing, kNoFile, kNone, false,
     "computed: the folder of jvm.properties",
     "the folder in which `jvm.properties` was looked for"},
    {keys::kFeatureId, kJvm, kNothing, kAtTheEnd, kNone, false, "${jvm.feature.id} in platform.xml",
     "for `${jvm.feature.id}` in `platform.xml`"},
    {keys::kFeatureVersion, kJvm, kNothing, kAtTheEnd, kNone, false,
     "${jvm.feature.version} in platform.xml", "for `${jvm.feature.version}` in `platform.xml`"},
    {keys::kParentFeatureId, kJvm, kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.id} in platform.xml",
     "for `${jvm.parent.feature.id}` in `platform.xml`"},
    {keys::kParentFeatureVersion, kJvm, kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.version} in platform.xml",
     "for `${jvm.parent.feature.version}` in `platform.xml`"},
    {keys::kSplashPath, kJvm, kNothing, kUserFile, kNone, false, "-Dosgi.splashPath",
     "passed on as a system property"},
    {keys::kSharedClassesPath, kJvm, kNothing, kUserFile, kNone, false,
     "the directory emptied at a new provisioning level",
     "directory of shared classes, emptied at a new provisioning level"},
    {keys::kResetDir, kJvm, kAnything, kUserFile, kNone, false,
     "a directory that -resetconfig removes",
     "NAME: a directory below `.metadata/.plugins` that `-resetconfig` removes"},
    {keys::kWorkspaceLocation, kJvm, kNothing, kNoFile, kNone, false, "computed: the workspace",
     "the workspace"},
    {keys::kEnvSet, kEnvironment, kDotName, kAtTheEnd, kNone, false, "a variable that is set",
     ".NAME: sets variable NAME. Example: `env.set.LANG=C.UTF-8`"},
    {keys::kEnvUnset, kEnvironment, kDotName, kAtTheEnd, kNone, false, "a variable that is removed",
     ".NAME: removes variable NAME, before any is set"},
    {keys::kJavaHighZipFds, kEnvironment, kNothing, kAtTheEnd, kNone, false,
     "variable JAVA_HIGH_ZIPFDS", "value of `JAVA_HIGH_ZIPFDS`, \"%s\"", defaults::kJavaHighZipFds},
    {keys::kLibraryPathPrepend, kEnvironment, kNothing, kAtTheEnd, kNone, false,
     "first part of DYLD_LIBRARY_PATH", "first part of `DYLD_LIBRARY_PATH`"},
    {keys::kInternalLibraryPath, kEnvironment, kNothing, kAtTheEnd, kNone, false,
     "middle part of DYLD_LIBRARY_PATH", "its middle part; `args.properties` holds it"},
    {keys::kLibraryPathAppend, kEnvironment, kNothing, kAtTheEnd, kNone, false,
     "last part of DYLD_LIBRARY_PATH", "its last part"},
    {keys::kLibraryPreload, kEnvironment, kNothing, kAtTheEnd, kNone, false,
     "the library for LD_PRELOAD",
     "library for `LD_PRELOAD`; one whose path has a blank is linked under `/tmp`"},
    {keys::kProvisioning, kProvisioning, kNothing, kAtTheEnd, kNone, false,
     "whether provisioning is enabled", "\"true\": provisioning is enabled"},
    {keys::kProvisioningLevel, kProvisioning, kNothing, kEverywhere, kNone, false,
     "the provisioning level", "the level; provisioning is due when the user's differs"},
    {keys::kProvisioningApplication, kProvisioning, kNothing, kAtTheEnd, kNone, false,
     "the application that provisions", "the application that provisions"},
    {keys::kSharedClassesOption, kProvisioning, kNothing, kEverywhere, kAll, false,
     "the shared classes option, replaced while provisioning",
     "the shared classes option; `-Xshareclasses=none` while provisioning"},
};

bool isNumber(std::wstring_view text) {
    return !text.empty() && text.front() != L'0' &&
           text.find_first_not_of(L"0123456789") == std::wstring_view::npos;
}

bool isExtensionKey(std::wstring_view tail) {
    if (tail.ends_with(keys::kRestartExecutable)) {
        return true;
    }
    const std::size_t dot = tail.rfind(L'.');
    return dot != std::wstring_view::npos && isNumber(tail.substr(dot + 1));
}

bool matches(const PropertyKey& entry, std::wstring_view key) {
    if (!key.starts_with(entry.key)) {
        return false;
    }
    const std::wstring_view tail = key.substr(entry.key.size());
    switch (entry.tail) {
        case kNothing:
            return tail.empty();
        case kAnything:
            return true;
        case kDotName:
            return tail.size() > 1 && tail.front() == L'.';
        case kNumber:
            return isNumber(tail);
        case kExtension:
            return isExtensionKey(tail);
    }
    return false;
}

template <typename Condition>
const PropertyKey* longestMatch(std::wstring_view key, Condition condition) {
    const PropertyKey* found = nullptr;
    for (const PropertyKey& entry : kKeys) {
        if (condition(entry) && matches(entry, key) &&
            (found == nullptr || entry.key.size() > found->key.size())) {
            found = &entry;
        }
    }
    return found;
}

}  // namespace

std::span<const PropertyKey> propertyKeys() {
    return kKeys;
}

const PropertyKey* findPropertyKey(std::wstring_view key, KeyFile file) {
    return longestMatch(key,
                        [file](const PropertyKey& entry) { return (entry.files & file) != 0; });
}

const PropertyKey* findPropertyKey(std::wstring_view key) {
    return longestMatch(key, [](const PropertyKey&) { return true; });
}

KeyFile keyFileOf(std::wstring_view path) {
    struct Name {
        std::wstring_view name;
        KeyFile file;
    };
    constexpr Name kNames[] = {
        {paths::kSettingsName, kLauncherFile},
        {paths::kJvmProperties, kJvmFile},
        {paths::kUserProperties, kUserFile},
        {paths::kArguments, kArgsFile},
    };
    const std::wstring_view name = path.substr(path.rfind(L'/') + 1);
    const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                     [name](const Name& known) { return known.name == name; });
    return found == std::end(kNames) ? kNoFile : found->file;
}

}  // namespace rcp
