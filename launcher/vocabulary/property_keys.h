// Every property key that the launcher looks at: in which files it counts, what it is used for and
// what docs/configuration.md says of it.
#pragma once

#include "launcher/vocabulary/keys.h"

#include <span>
#include <string>
#include <string_view>

namespace rcp {

/// The property files of a launch. A key counts in a file when the launcher asks for it after it
/// has read that file.
enum KeyFile : unsigned {
    kNoFile = 0,
    kLauncherFile = 1,  // rcp/rcplauncher.properties
    kJvmFile = 2,       // jvm.properties
    kUserFile = 4,      // rcpinstall.properties
    kArgsFile = 8,      // args.properties
};

/// What may stand behind a table entry's key.
enum class KeyTail {
    kNothing,    // the key is the whole key
    kAnything,   // every key that begins with it
    kDotName,    // "." and a name
    kNumber,     // a number from 1 without leading zeros
    kExtension,  // NAME.number, or NAME.restartExe.macosx
};

/// Which placeholders the launcher replaces in the value; in rcpinstall.properties it replaces all.
enum class Expansion {
    kNone,
    kRcpHome,
    kWorkspace,  // the first ${workspace.location}
    kStandard,
    kAll,
};

/// The parts of docs/configuration.md.
enum class KeySection { kInstallation, kJvm, kEnvironment, kProvisioning };

struct PropertyKey {
    Key key;
    KeySection section;
    KeyTail tail;
    unsigned files;  // of KeyFile; none for what the launcher computes
    Expansion expansion;
    bool isRequired;                     // a launch without it fails
    const char* usage;                   // "the workspace when -data is not given"
    const char* meaning;                 // for docs/configuration.md; "%s" stands for `otherwise`
    const wchar_t* otherwise = nullptr;  // what the launcher takes when the key is missing
};

/// In the order of docs/configuration.md.
std::span<const PropertyKey> propertyKeys();

/// What looks at `key` in `file`; null when nothing does. The most exact entry is returned.
const PropertyKey* findPropertyKey(std::wstring_view key, KeyFile file);
/// The same in any file, computed ones included.
const PropertyKey* findPropertyKey(std::wstring_view key);

/// Which property file a path names, by its file name.
KeyFile keyFileOf(std::wstring_view path);

}  // namespace rcp
