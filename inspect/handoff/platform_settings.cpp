#include "inspect/handoff/platform_settings.h"

#include "inspect/handoff/hand_off.h"
#include "inspect/handoff/platform_values.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/options.h"
#include "platform/files.h"
#include "platform/text.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace rcp::inspect {
namespace {

constexpr char kInstallAreaKey[] = "osgi.install.area";
// The main class's own, which wins over the property.
constexpr OptionName kInstallOption{L"-install"};

}  // namespace

PlatformSettings::PlatformSettings(const Examination& examination, const Plan& plan)
    : examination_(examination),
      plan_(plan),
      usersCopy_(osPath(examination.inputs.configuration + L"/config.ini")),
      master_(
          getCoreFileLocation(examination.inputs.traits.eConfig, examination.base, L"config.ini")) {
    read(exists(usersCopy_) && !examination.isAreaRenewed() ? usersCopy_ : master_);
    const std::string inherited = inheritedConfiguration();
    if (!files_.empty() && !isUnknown(inherited) &&
        valueOf("osgi.configuration.cascaded").text != "false") {
        read(toWide(inherited + "/config.ini"));
    }
}

std::string PlatformSettings::inheritedConfiguration() const {
    const std::string given = withoutScheme(valueOf("osgi.sharedConfiguration.area").text);
    const std::string area = installArea().text;
    return !given.empty() ? given : isUnknown(area) ? area : area + "/configuration";
}

// Of a file that cannot be read the rehearsal tells.
void PlatformSettings::read(const std::wstring& path) {
    const std::string name = toNarrow(path);
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(placeOf(name), unknown) || !isAllowedAt(name, R_OK) ||
        (!files_.empty() && *files_.front().path == path)) {
        return;
    }
    const std::string text = readQuietly(name, kLongestSettings + 1);
    files_.push_back({.path = std::make_shared<const std::wstring>(path),
                      .entries = readPlatformProperties(text),
                      .malformed = malformedLine(text),
                      .isCut = text.size() > kLongestSettings});
}

// Asked for before the configuration is read, unless that is the only one.
bool PlatformSettings::isHeardOfFiles(const std::string& key) const {
    constexpr char kCascaded[] = "osgi.configuration.cascaded";
    return key != kInstallAreaKey ||
           (!files_.empty() && files_.front().entries.contains(kCascaded) &&
            trimmed(files_.front().entries.at(kCascaded).value) == "false");
}

// A system property wins over the files; the JVM takes the last of its name.
PlatformSettings::Value PlatformSettings::valueOf(const std::string& key) const {
    const std::wstring option = toWide("-D" + key + "=");
    const Arguments& all = plan_.line.arguments();
    const auto given = std::find_if(all.rbegin(), all.rend(), [&](const Argument& argument) {
        return argument.text.starts_with(option);
    });
    if (given != all.rend()) {
        return {toNarrow(given->text.substr(option.size())), given->origin};
    }
    for (const SettingsFile& file : files_) {
        const auto entry = file.entries.find(key);
        if (entry != file.entries.end() && isHeardOfFiles(key)) {
            return {trimmed(entry->second.value), file.at(entry->second.line)};
        }
    }
    return {{}, files_.empty() ? Origin() : files_.front().at(0)};
}

// The main class takes the folder of its own jar, or what holds that one's folder "plugins".
PlatformSettings::Value PlatformSettings::installArea() const {
    const Argument asked = valueBehind(kInstallOption, plan_);
    Value given =
        asked.text.empty() ? valueOf(kInstallAreaKey) : Value{toNarrow(asked.text), asked.origin};
    if (!given.text.empty()) {
        given.text = withoutScheme(given.text);
        return given;
    }
    const bool isJava = examination_.inputs.traits.isDirectJavaShape();
    const std::string jars =
        toNarrow(valueBehind(isJava ? options::kClassPath : options::kStartup, plan_).text);
    if (jars.empty()) {
        return given;
    }
    const std::filesystem::path folder =
        std::filesystem::path(jars.substr(0, jars.find(':'))).parent_path();
    given.text = folder.filename() == "plugins" ? folder.parent_path() : folder;
    return given;
}

bool PlatformSettings::hasOwnClassPath() const {
    const Arguments& all = plan_.line.arguments();
    return !valueOf("osgi.frameworkClassPath").text.empty() || !valueOf("osgi.dev").text.empty() ||
           std::find(all.begin(), all.end(), L"-dev") != all.end();
}

}  // namespace rcp::inspect
