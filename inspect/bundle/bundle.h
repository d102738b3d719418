// An application bundle around a launcher: X.app/Contents/MacOS/rcplauncher.
#pragma once

#include "inspect/bundle/mach_o.h"

#include <optional>
#include <string>
#include <vector>

namespace rcp::inspect {

inline constexpr const char* kSealFile = "_CodeSignature/CodeResources";  // behind Contents/

/// The values of a property list that tell something; empty where it has none.
struct BundleKeys {
    bool isRead = false;
    std::string executable;  // CFBundleExecutable
    std::string identifier;  // CFBundleIdentifier
    std::string type;        // CFBundlePackageType
    std::string oldestSystem;
    std::string firstProcessor;  // of LSArchitecturePriority
};

struct CodeFile {
    std::string path;  // behind Contents/
    bool isExecutable = false;
    std::vector<CodeImage> images;  // none: the file is damaged
};

struct Bundle {
    std::string contents;  // the path of its folder Contents
    std::string launcher;  // the executable, behind Contents/
    BundleKeys keys;
    std::vector<CodeFile> code;
    std::vector<std::string> strangers;  // files in MacOS that are no code, behind Contents/
    std::string seal;                    // as XML; empty when it is missing or cannot be read

    [[nodiscard]] std::string pathOf(const std::string& name) const {
        return contents + "/" + name;
    }
    [[nodiscard]] bool has(const std::string& name) const;
    /// The name behind Contents/ of an absolute path, be the bundle here or where the path has it
    /// ("/Applications/X.app/Contents/..."); none when it leads out of the bundle.
    [[nodiscard]] std::optional<std::string> nameOf(const std::string& path) const;
    /// Whether something is there that belongs to the bundle: no link leads out of it on the way.
    [[nodiscard]] bool owns(const std::string& name) const;
    [[nodiscard]] const CodeFile* codeFile(const std::string& name) const;
    /// Whether the seal covers the file of that name.
    [[nodiscard]] bool seals(const std::string& name) const;
};

/// The folder Contents of the bundle that a launcher lies in; empty when it lies in none.
std::string contentsAround(const std::string& launcher);
/// The launcher of the bundle at `path`; empty when there is no bundle.
std::string launcherOfBundle(const std::string& path);
/// The keys of an Info.plist. Nothing is recorded of one that cannot be read.
BundleKeys readBundleKeys(const std::string& path);
/// Reads what lies in the bundle; links are not followed.
Bundle readBundle(const std::string& contents, const std::string& launcher);

}  // namespace rcp::inspect
