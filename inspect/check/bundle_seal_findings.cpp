// The signatures of an application bundle, and what a launch does to them.
#include "base/system_calls.h"
#include "inspect/check/bundle_subjects.h"
#include "inspect/quiet_read.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/inputs/option_values.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "platform/text.h"

#include <errno.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace rcp::inspect {
namespace {

// What a JVM needs in a process with the hardened runtime: it makes code, loads libraries that others
// have signed, and finds some of them by variables.
constexpr const char* kEntitlements[] = {
    "com.apple.security.cs.allow-jit",
    "com.apple.security.cs.allow-unsigned-executable-memory",
    "com.apple.security.cs.disable-library-validation",
    "com.apple.security.cs.allow-dyld-environment-variables",
};

void findInSignatures(const Bundle& bundle, Findings& findings) {
    for (const CodeFile& file : bundle.code) {
        for (const CodeImage& image : file.images) {
            if (image.kind != CodeKind::kOther && !image.signature) {
                findings.add("RI708", bundle.pathOf(file.path), 0,
                             "the code for " + image.processor + " is not signed");
            }
        }
    }
    if (bundle.seal.empty()) {
        // One that nobody may open is there as well, or may be.
        struct stat status {};
        const bool isMissing = calls::lstat(bundle.pathOf(kSealFile).c_str(), &status) != 0 &&
                               (errno == ENOENT || errno == ENOTDIR);
        findings.add("RI708", bundle.pathOf(kSealFile), 0,
                     isMissing ? "the bundle is not sealed" : "the seal cannot be read");
    }
}

// Whether the system would hold that back from a process with the code.
bool lacks(const CodeImage& image, const char* entitlement) {
    if (!image.signature || !image.signature->isHardened) {
        return false;
    }
    const auto list = platform::parsePropertyList(image.signature->entitlements);
    return !list || !list->isTrue(entitlement);
}

void findInEntitlements(const Bundle& bundle, Findings& findings) {
    const CodeFile* const launcher = bundle.codeFile(bundle.launcher);
    if (launcher == nullptr) {
        return;
    }
    for (const char* name : kEntitlements) {
        if (std::any_of(launcher->images.begin(), launcher->images.end(),
                        [&](const CodeImage& image) { return lacks(image, name); })) {
            findings.add("RI711", bundle.pathOf(bundle.launcher), 0,
                         std::string(name) + " is missing");
        }
    }
}

// Without links as far as the path exists: a launch may make the rest.
std::string withoutLinks(const std::string& path) {
    std::filesystem::path known = path;
    std::filesystem::path rest;
    while (known.has_relative_path() && !isThere(known)) {
        rest = known.filename() / rest;
        known = known.parent_path();
    }
    const std::string place = (resolvedPath(known).value_or(known) / rest).lexically_normal();
    return place.ends_with('/') ? place.substr(0, place.size() - 1) : place;
}

// The name behind Contents/ of a file in the bundle; empty when it lies elsewhere. The bundle is
// named as the user did, and most of what lies in it by the launcher's folder, which has no links.
std::string nameIn(const Bundle& bundle, const std::wstring& path) {
    const std::string plain = withoutLinks(toNarrow(path));
    const std::string folder = withoutLinks(bundle.contents) + "/";
    return plain.starts_with(folder) ? plain.substr(folder.size()) : std::string();
}

// The launcher writes the identifier that it is given into the platform's copy of Info.plist.
void findInIdentifier(const Bundle& bundle, const Examination& examination, Findings& findings) {
    if (examination.base.empty()) {
        return;
    }
    const std::wstring path = examination.base + L"/macosx/x86/Info.plist";
    const std::string name = nameIn(bundle, path);
    const BundleKeys keys = readBundleKeys(toNarrow(path));
    const Argument* const given = getBundleIdentifier(examination.inputs.arguments);
    const std::string wanted = given == nullptr ? bundle.keys.identifier : toNarrow(given->text);
    if (!wanted.empty() && keys.isRead && bundle.seals(name) &&
        !platform::equalIgnoringCase(keys.identifier, wanted)) {
        findings.add("RI709", examination.nameOf(path), 0,
                     "a launch with -bundleIdentifier " + wanted + " writes it, in place of \"" +
                         keys.identifier + "\"");
    }
}

void findInInstallId(const Bundle& bundle, const Examination& examination, Findings& findings) {
    const std::wstring path = examination.inputs.installDir + paths::kSettings;
    const PropertyFile* const file = examination.file(kLauncherFile);
    // Any other installation without one ends its launches.
    const bool isAppended = examination.inputs.traits.eConfig == InstallConfiguration::kUserpb;
    if (isAppended && file != nullptr && file->entries.find(keys::kInstallId) == nullptr &&
        bundle.seals(nameIn(bundle, path))) {
        findings.add("RI709", examination.nameOf(path), 0,
                     "the first launch appends rcp.install.id");
    }
}

void findInWorkspace(const Bundle& bundle, const Examination& examination, Findings& findings) {
    const std::string name = nameIn(bundle, examination.inputs.workspace);
    if (!bundle.seal.empty() && !name.empty()) {
        findings.add("RI709", examination.launcherFile(), 0,
                     "the workspace lies in the bundle, at Contents/" + name);
    }
}

}  // namespace

void findInBundleSeal(const Bundle& bundle, const Examination& examination, Findings& findings) {
    findInSignatures(bundle, findings);
    findInEntitlements(bundle, findings);
    findInIdentifier(bundle, examination, findings);
    findInInstallId(bundle, examination, findings);
    findInWorkspace(bundle, examination, findings);
}

}  // namespace rcp::inspect
