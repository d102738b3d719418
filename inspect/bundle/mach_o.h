// What a Mach-O file says about itself, read without trust in it: every position is checked against the
// file's end, on any system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct SystemVersion {
    unsigned major = 0;
    unsigned minor = 0;
    bool operator==(const SystemVersion&) const = default;
    bool operator<(const SystemVersion& other) const {
        return major != other.major ? major < other.major : minor < other.minor;
    }
};

/// "10.13"; none when the text is no version. What stands behind the second number does not count.
std::optional<SystemVersion> versionOf(std::string_view text);
std::string textOf(SystemVersion version);

enum class CodeKind { kProgram, kLibrary, kPlugin, kOther };

struct LinkedLibrary {
    std::string name;
    bool mayBeMissing = false;
};

struct CodeSignature {
    std::string identifier;
    bool isAdHoc = false;
    bool isHardened = false;   // signed for the hardened runtime
    std::string entitlements;  // a property list as XML
};

/// The code for one processor.
struct CodeImage {
    std::string processor;  // "x86_64", "arm64"; others by number
    CodeKind kind = CodeKind::kOther;
    std::optional<SystemVersion> oldestSystem;
    std::string ownName;  // what a library is linked by
    std::vector<LinkedLibrary> libraries;
    std::vector<std::string> searchPaths;
    std::optional<CodeSignature> signature;
};

/// Whether a file that begins so is Mach-O, universal or not. 16 bytes tell.
bool looksLikeMachO(std::string_view start);

/// The images of a file; none when anything in it leads out of it.
std::optional<std::vector<CodeImage>> readMachO(std::string_view file);

}  // namespace rcp::inspect
