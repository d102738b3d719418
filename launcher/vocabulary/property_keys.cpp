#include "launcher/vocabulary/property_keys.h"

#include <algorithm>
#include <iterator>

namespace rcp {
namespace {

using enum KeyTail;
using enum Expansion;

// Which files a key counts in follows from when it is asked for: before the start-up sequence has
// read anything else, or once everything is read.
constexpr unsigned kFirstFile = kLauncherFile;
constexpr unsigned kAtTheEnd = kLauncherFile | kArgsFile | kJvmFile;
constexpr unsigned kEverywhere = kAtTheEnd | kUserFile;

constexpr PropertyKey kKeys[] = {
    // The installation
    {keys::kInstallId, kNothing, kFirstFile | kUserFile, kNone, true, "which installation this is"},
    {keys::kBaseLocation, kNothing, kFirstFile, kRcpHome, true,
     "the folder of the platform's program, jars and master files"},
    {keys::kInstallConfiguration, kNothing, kFirstFile, kNone, false, "the kind of installation"},
    {keys::kInvokeEclipseDylib, kNothing, kFirstFile, kNone, false, "the choice of the hand-off"},
    {keys::kEclipseName, kNothing, kAtTheEnd, kNone, false,
     "the file name of the platform's program"},
    {keys::kData, kNothing, kFirstFile, kAll, false, "the workspace when -data is not given"},
    {keys::kApplication, kNothing, kAtTheEnd, kNone, false, "-application when it is not given"},
    {keys::kProduct, kNothing, kEverywhere, kNone, false, "-product when it is not given"},
    {keys::kPersonality, kNothing, kAtTheEnd, kNone, false, "-personality when it is not given"},
    {keys::kPluginCustomization, kNothing, kAtTheEnd, kNone, true,
     "-plugincustomization when it is not given"},
    {keys::kClassPath, kNothing, kAtTheEnd, kNone, false, "the class path behind -cp"},
    {keys::kUpdatePolicyManaged, kNothing, kAtTheEnd, kNone, false,
     "whether a platform.xml is made for the user"},
    {keys::kLocale, kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties"},
    {keys::kBidi, kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties"},
    {keys::kExtension, kExtension, kFirstFile, kStandard, false, "what -config NAME stands for"},
    {keys::kInitial, kNumber, kAtTheEnd, kStandard, false,
     "the arguments of the initial configuration"},
    // The JVM
    {keys::kJvmLocation, kNothing, kFirstFile, kStandard, false, "where the installation's JVM is"},
    {keys::kJvmLibPath, kNothing, kFirstFile, kStandard, false,
     "what -vm names below the JVM's location"},
    {keys::kJvmExtPath, kNothing, kFirstFile, kStandard, false,
     "the JVM's folder behind -Djava.ext.dirs"},
    {keys::kVm, kNothing, kAtTheEnd, kRcpHome, false, "the JVM when -vm is not given"},
    {keys::kVmarg, kAnything, kEverywhere, kAll, false, "a JVM argument"},
    {keys::kSystemProperty, kAnything, kAtTheEnd, kNone, false, "a system property of the JVM"},
    {keys::kJvmOption, kAnything, kAtTheEnd, kNone, false, "a JVM option"},
    {keys::kBootClassPathPrepend, kNothing, kAtTheEnd, kNone, false, "-Xbootclasspath/p:"},
    {keys::kBootClassPathAppend, kNothing, kAtTheEnd, kNone, false, "-Xbootclasspath/a:"},
    {keys::kConsoleFix, kAnything, kAtTheEnd, kWorkspace, false,
     "a JVM argument of launches without -console"},
    {keys::kJavaHome, kNothing, kAtTheEnd, kNone, false, "the Java home"},
    {keys::kJvmLibraryPath, kNothing, kAtTheEnd, kNone, false, "the JVM's library path"},
    {keys::kJvmRoot, kNothing, kNoFile, kNone, false, "computed: the folder of jvm.properties"},
    {keys::kFeatureId, kNothing, kAtTheEnd, kNone, false, "${jvm.feature.id} in platform.xml"},
    {keys::kFeatureVersion, kNothing, kAtTheEnd, kNone, false,
     "${jvm.feature.version} in platform.xml"},
    {keys::kParentFeatureId, kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.id} in platform.xml"},
    {keys::kParentFeatureVersion, kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.version} in platform.xml"},
    {keys::kSplashPath, kNothing, kUserFile, kNone, false, "-Dosgi.splashPath"},
    {keys::kSharedClassesPath, kNothing, kUserFile, kNone, false,
     "the directory emptied at a new provisioning level"},
    {keys::kResetDir, kAnything, kUserFile, kNone, false, "a directory that -resetconfig removes"},
    {keys::kWorkspaceLocation, kNothing, kNoFile, kNone, false, "computed: the workspace"},
    // The environment
    {keys::kEnvSet, kDotName, kAtTheEnd, kNone, false, "a variable that is set"},
    {keys::kEnvUnset, kDotName, kAtTheEnd, kNone, false, "a variable that is removed"},
    {keys::kJavaHighZipFds, kNothing, kAtTheEnd, kNone, false, "variable JAVA_HIGH_ZIPFDS"},
    {keys::kLibraryPathPrepend, kNothing, kAtTheEnd, kNone, false,
     "first part of DYLD_LIBRARY_PATH"},
    {keys::kInternalLibraryPath, kNothing, kAtTheEnd, kNone, false,
     "middle part of DYLD_LIBRARY_PATH"},
    {keys::kLibraryPathAppend, kNothing, kAtTheEnd, kNone, false, "last part of DYLD_LIBRARY_PATH"},
    {keys::kLibraryPreload, kNothing, kAtTheEnd, kNone, false, "the library for LD_PRELOAD"},
    // Provisioning
    {keys::kProvisioning, kNothing, kAtTheEnd, kNone, false, "whether provisioning is enabled"},
    {keys::kProvisioningLevel, kNothing, kEverywhere, kNone, false, "the provisioning level"},
    {keys::kProvisioningApplication, kNothing, kAtTheEnd, kNone, false,
     "the application that provisions"},
    {keys::kSharedClassesOption, kNothing, kEverywhere, kAll, false,
     "the shared classes option, replaced while provisioning"},
};

bool isNumber(std::wstring_view text) {
    return !text.empty() && text.front() != L'0' &&
           text.find_first_not_of(L"0123456789") == std::wstring_view::npos;
}

bool isExtensionKey(std::wstring_view tail) {
    if (tail.ends_with(L".restartExe.macosx")) {
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

const PropertyKey& propertyKey(Key key) {
    return *std::find_if(std::begin(kKeys), std::end(kKeys),
                         [key](const PropertyKey& entry) { return entry.key == key; });
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
        {L"rcplauncher.properties", kLauncherFile},
        {L"jvm.properties", kJvmFile},
        {L"rcpinstall.properties", kUserFile},
        {L"args.properties", kArgsFile},
    };
    const std::wstring_view name = path.substr(path.rfind(L'/') + 1);
    const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                     [name](const Name& known) { return known.name == name; });
    return found == std::end(kNames) ? kNoFile : found->file;
}

}  // namespace rcp
