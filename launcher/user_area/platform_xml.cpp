#include "launcher/user_area/platform_xml.h"

#include "diagnostics/svc_debug.h"
#include "launcher/properties/placeholders.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>

namespace rcp {
namespace {

// A feature's placeholders. A line is the feature's when it holds the id; the version is filled in
// only there. The messages share a text, the number tells which feature.
struct Feature {
    const wchar_t* idPlaceholder;
    const wchar_t* versionPlaceholder;
    Key idProperty;
    Key versionProperty;
    Message<> missing;
};

constexpr Feature kFeatures[] = {
    {placeholders::kFeatureId, placeholders::kFeatureVersion, keys::kFeatureId,
     keys::kFeatureVersion, messages.jvmFeatureMissing},
    {placeholders::kParentFeatureId, placeholders::kParentFeatureVersion, keys::kParentFeatureId,
     keys::kParentFeatureVersion, messages.jvmParentFeatureMissing},
};

void fillIn(const Feature& feature, std::wstring& line, const PropertyList& properties) {
    const std::wstring* id = findProperty(feature.idProperty, properties);
    const std::wstring* version = findProperty(feature.versionProperty, properties);
    if (id == nullptr || version == nullptr) {
        report(noReason(), feature.missing);
        return;
    }
    replaceEvery(line, feature.idPlaceholder, *id);
    replaceEvery(line, feature.versionPlaceholder, *version);
}

bool writePlatformXml(const std::wstring& master, const std::wstring& target,
                      const PropertyList& properties, Features features) {
    const std::optional<FileText> from = readText(master);
    if (!from) {
        report(because(errno), messages.platformXmlNotOpened, master);
        return false;
    }
    WholeFile file(target);
    if (!file.open()) {
        report(because(errno), messages.platformXmlNotCreated, target);
        return false;
    }
    std::wstring line;
    TextLines lines{from->bytes};
    while (readFile(lines, kCopiedLineFormat, line)) {
        if (line.empty()) {
            reportUnreadableLine(master, lines.line);
            continue;
        }
        const std::wstring filled = platformXmlLine(line, properties, features);
        const std::string bytes = toNarrow(filled);
        if (bytes.empty() && !filled.empty()) {
            report(because("a value filled in is no text of this locale")
                       .at(master + L", line " + std::to_wstring(lines.line)),
                   messages.platformXmlNotCopied);
        } else if (!file.write(bytes + "\n")) {
            report(because(errno), messages.platformXmlNotCopied);
        }
    }
    if (from->error != 0 || !file.commit()) {
        report(because(from->error != 0 ? from->error : errno), messages.platformXmlNotCopied);
    }
    return true;
}

}  // namespace

std::wstring platformXmlLine(std::wstring line, const PropertyList& properties, Features features) {
    for (const Feature& feature : kFeatures) {
        if (line.find(feature.idPlaceholder) == std::wstring::npos) {
            continue;
        }
        if (features == Features::kBare) {
            line = L"<feature>";
        } else {
            fillIn(feature, line, properties);
        }
    }
    return line;
}

bool createPlatformXML(const LaunchInputs& inputs, const std::wstring& base, Features features) {
    const PropertyList& properties = inputs.properties;
    const InstallConfiguration configuration = inputs.traits.eConfig;
    if (configuration == InstallConfiguration::kUserpb) {
        return false;
    }
    const std::wstring update = osPath(inputs.configuration + L"/org.eclipse.update");
    const bool isMissing = !isDirectory(update);
    if (isMissing) {
        ensureDirectory(update, messages.updateFolderNotMade);
    }
    const std::wstring target = update + L"/" + paths::kPlatformXml;
    const std::wstring* managed = findProperty(keys::kUpdatePolicyManaged, properties);
    if (!exists(target) && (managed == nullptr || *managed != L"false")) {
        return writePlatformXml(getCoreFileLocation(configuration, base, paths::kPlatformXml),
                                target, properties, features) ||
               isMissing;
    }
    return isMissing;
}

}  // namespace rcp
