#include "inspect/property_keys.h"

#include <algorithm>
#include <iterator>

namespace rcp::inspect {
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
    {L"rcp.install.id", kNothing, kFirstFile | kUserFile, kNone, true,
     "which installation this is"},
    {L"rcp.base.location", kNothing, kFirstFile, kRcpHome, true,
     "the folder of the platform's program, jars and master files"},
    {L"install.configuration", kNothing, kFirstFile, kNone, false, "the kind of installation"},
    {L"invoke.eclipse.dylib", kNothing, kFirstFile, kNone, false, "the choice of the hand-off"},
    {L"eclipse.name", kNothing, kAtTheEnd, kNone, false, "the file name of the platform's program"},
    {L"rcp.data", kNothing, kFirstFile, kAll, false, "the workspace when -data is not given"},
    {L"application", kNothing, kAtTheEnd, kNone, false, "-application when it is not given"},
    {L"product", kNothing, kEverywhere, kNone, false, "-product when it is not given"},
    {L"personality", kNothing, kAtTheEnd, kNone, false, "-personality when it is not given"},
    {L"plugincustomization", kNothing, kAtTheEnd, kNone, true,
     "-plugincustomization when it is not given"},
    {L"cp", kNothing, kAtTheEnd, kNone, false, "the class path behind -cp"},
    {L"update.policy.managed", kNothing, kAtTheEnd, kNone, false,
     "whether a platform.xml is made for the user"},
    {L"com.ovr.rcp.core.locale", kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties"},
    {L"com.ovr.rcp.core.bidi", kNothing, kFirstFile, kNone, false,
     "copied into the user's rcpinstall.properties"},
    {L"config.", kExtension, kFirstFile, kStandard, false, "what -config NAME stands for"},
    {L"config.initial.", kNumber, kAtTheEnd, kStandard, false,
     "the arguments of the initial configuration"},
    // The JVM
    {L"jvm.location", kNothing, kFirstFile, kStandard, false, "where the installation's JVM is"},
    {L"jvm.libpath", kNothing, kFirstFile, kStandard, false,
     "what -vm names below the JVM's location"},
    {L"jvm.extpath", kNothing, kFirstFile, kStandard, false,
     "the JVM's folder behind -Djava.ext.dirs"},
    {L"vm", kNothing, kAtTheEnd, kRcpHome, false, "the JVM when -vm is not given"},
    {L"vmarg.", kAnything, kEverywhere, kAll, false, "a JVM argument"},
    {L"-D", kAnything, kAtTheEnd, kNone, false, "a system property of the JVM"},
    {L"-X", kAnything, kAtTheEnd, kNone, false, "a JVM option"},
    {L"Xbootclasspath.prepend", kNothing, kAtTheEnd, kNone, false, "-Xbootclasspath/p:"},
    {L"Xbootclasspath.append", kNothing, kAtTheEnd, kNone, false, "-Xbootclasspath/a:"},
    {L"vmfix.noconsole", kAnything, kAtTheEnd, kWorkspace, false,
     "a JVM argument of launches without -console"},
    {L"java.home", kNothing, kAtTheEnd, kNone, false, "the Java home"},
    {L"jvm.library.path", kNothing, kAtTheEnd, kNone, false, "the JVM's library path"},
    {L"jvm.root", kNothing, kNoFile, kNone, false, "computed: the folder of jvm.properties"},
    {L"jvm.feature.id", kNothing, kAtTheEnd, kNone, false, "${jvm.feature.id} in platform.xml"},
    {L"jvm.feature.version", kNothing, kAtTheEnd, kNone, false,
     "${jvm.feature.version} in platform.xml"},
    {L"jvm.parent.feature.id", kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.id} in platform.xml"},
    {L"jvm.parent.feature.version", kNothing, kAtTheEnd, kNone, false,
     "${jvm.parent.feature.version} in platform.xml"},
    {L"osgi.splashPath", kNothing, kUserFile, kNone, false, "-Dosgi.splashPath"},
    {L"jvm.shareclasses.fullpath", kNothing, kUserFile, kNone, false,
     "the directory emptied at a new provisioning level"},
    {L"resetDir.", kAnything, kUserFile, kNone, false, "a directory that -resetconfig removes"},
    {L"velmo.workspace.loc", kNothing, kNoFile, kNone, false, "computed: the workspace"},
    // The environment
    {L"env.set", kDotName, kAtTheEnd, kNone, false, "a variable that is set"},
    {L"env.unset", kDotName, kAtTheEnd, kNone, false, "a variable that is removed"},
    {L"env.JAVA_HIGH_ZIPFDS", kNothing, kAtTheEnd, kNone, false, "variable JAVA_HIGH_ZIPFDS"},
    {L"library.path.prepend", kNothing, kAtTheEnd, kNone, false, "first part of DYLD_LIBRARY_PATH"},
    {L"com.ovr.rcp.core.internal.librarypath", kNothing, kAtTheEnd, kNone, false,
     "middle part of DYLD_LIBRARY_PATH"},
    {L"library.path.append", kNothing, kAtTheEnd, kNone, false, "last part of DYLD_LIBRARY_PATH"},
    {L"library.preload", kNothing, kAtTheEnd, kNone, false, "the library for LD_PRELOAD"},
    // Provisioning
    {L"provisioning", kNothing, kAtTheEnd, kNone, false, "whether provisioning is enabled"},
    {L"provisioning.manifest.version", kNothing, kEverywhere, kNone, false,
     "the provisioning level"},
    {L"provisioning.application", kNothing, kAtTheEnd, kNone, false,
     "the application that provisions"},
    {L"vmarg.Dshare", kNothing, kEverywhere, kAll, false,
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

}  // namespace rcp::inspect
