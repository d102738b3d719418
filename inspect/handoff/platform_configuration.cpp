// The platform's own configuration, config.ini: the framework, the bundles and the areas that it names.
#include "inspect/archive/jar.h"
#include "inspect/handoff/hand_off.h"
#include "inspect/handoff/platform_settings.h"
#include "inspect/handoff/platform_values.h"
#include "inspect/quiet_read.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr char kFrameworkName[] = "org.eclipse.osgi";
constexpr char kConfigurator[] = "org.eclipse.equinox.simpleconfigurator";
// Which the platform's launcher starts.
constexpr char kStarter[] = "org/eclipse/core/runtime/adaptor/EclipseStarter.class";
// Up to which the framework starts bundles unless told otherwise.
constexpr int kUsualStartLevel = 6;
// At which it starts a bundle of which no other is told.
constexpr int kUsualBundleLevel = 4;

class Configuration {
  public:
    Configuration(const Examination& examination, const Plan& plan)
        : examination_(examination), settings_(examination, plan) {}

    std::vector<Examined> examine() {
        if (settings_.files().empty()) {
            judgeCopy();  // of a master is told with the installation's files
        } else if (areFilesSound()) {
            examineLevels();
            if (examineInstallArea()) {
                examineFramework();
                examineBundles();
            }
        }
        return std::move(all_);
    }

  private:
    void addFault(const char* code, const Origin& origin, const std::string& message) {
        all_.back().faults.push_back(faultAt(examination_, code, origin, message));
    }

    using Value = PlatformSettings::Value;

    [[nodiscard]] Value valueOf(const std::string& key) const { return settings_.valueOf(key); }

    // What stands in the copy's place a launch leaves alone.
    void judgeCopy() {
        const std::wstring& copy = settings_.usersCopy();
        if (exists(copy) && !examination_.isAreaRenewed()) {
            all_.push_back({.what = "configuration", .path = toNarrow(copy)});
            addFault("RI812", {std::make_shared<const std::wstring>(copy), 0},
                     inQuotes(copy) + " is no file");
        }
    }

    // Of a file that the platform refuses nothing else is told.
    bool areFilesSound() {
        bool areSound = true;
        for (const SettingsFile& file : settings_.files()) {
            const std::string path = toNarrow(*file.path);
            all_.push_back({.what = "configuration", .path = path});
            if (file.malformed) {
                addFault("RI811", file.at(*file.malformed),
                         "\"\\u\" without four hexadecimal digits");
            }
            if (file.isCut) {
                addFault("RI813", file.at(0), inQuotes(path) + " is not looked at to its end");
            }
            areSound = areSound && !file.malformed;
        }
        return areSound;
    }

    // False when there is nothing below which anything could be looked for.
    bool examineInstallArea() {
        const Value given = settings_.installArea();
        installArea_ = given.text;
        all_.push_back({.what = "install area", .path = installArea_});
        if (isUnknown(installArea_) || isFolder(installArea_)) {
            return !isUnknown(installArea_);
        }
        addFault("RI807", given.origin, "osgi.install.area: \"" + installArea_ + "\" is no folder");
        return false;
    }

    void examineLevels() {
        for (const char* key : {"osgi.startLevel", "osgi.bundles.defaultStartLevel"}) {
            const Value value = valueOf(key);
            if (!value.text.empty() && !startLevel(value.text)) {
                addFault("RI806", value.origin, std::string(key) + " is \"" + value.text + "\"");
            }
        }
        for (const char* key : {"osgi.sharedConfiguration.area", "osgi.syspath"}) {
            const Value value = valueOf(key);
            const std::string folder = withoutScheme(value.text);
            if (!isUnknown(folder) && files::path(folder).is_absolute() && !isFolder(folder)) {
                addFault("RI807", value.origin,
                         std::string(key) + ": \"" + folder + "\" is no folder");
            }
        }
        lastLevel_ = startLevel(valueOf("osgi.startLevel").text).value_or(kUsualStartLevel);
        usualLevel_ =
            startLevel(valueOf("osgi.bundles.defaultStartLevel").text).value_or(kUsualBundleLevel);
    }

    void examineFramework() {
        const Value given = valueOf("osgi.framework");
        framework_ = !given.text.empty()
                         ? joined(installArea_, withoutScheme(given.text))
                         : folders_.findFramework(installArea_ + "/plugins/" + kFrameworkName);
        all_.push_back({.what = "framework", .path = framework_});
        if (!isUnknown(given.text) && !given.text.starts_with("file:") &&
            files::path(given.text).is_relative()) {
            addFault("RI805", given.origin,
                     "osgi.framework: \"" + given.text +
                         "\" lacks \"file:\" and is looked for where the launcher is started");
        } else if (framework_.empty()) {
            addFault("RI805", given.origin,
                     std::string(kFrameworkName) + " is not in \"" + installArea_ + "/plugins\"");
        } else if (!isUnknown(given.text + "x")) {
            judgeFramework(given.origin);
        }
    }

    void judgeFramework(const Origin& origin) {
        const std::string front = "osgi.framework: ";
        if (!isFolder(framework_)) {
            judgeBundle(origin, front, framework_);
            if (all_.back().faults.empty() && !settings_.hasOwnClassPath() &&
                !readJar(framework_).entries.contains(kStarter)) {
                addFault("RI804", origin,
                         front + "\"" + framework_ + "\" has no \"" + kStarter + "\"");
            }
        } else if (!settings_.hasOwnClassPath() && !isThere(framework_ + "/eclipse.properties")) {
            addFault("RI803", origin, front + "\"" + framework_ + "\" is a folder");
        }
    }

    static std::optional<std::string> folderFault(const std::string& path) {
        return isThere(path + "/META-INF/MANIFEST.MF")
                   ? std::nullopt
                   : std::optional<std::string>("is a folder without manifest");
    }

    void judgeBundle(const Origin& origin, const std::string& front, const std::string& path) {
        all_.back().named.push_back({path, origin});
        if (!isThere(path)) {
            addFault("RI805", origin, front + "\"" + path + "\" is missing");
            return;
        }
        const auto [judged, isNew] = jarFaults_.try_emplace(path);
        if (isNew) {
            judged->second = isFolder(path) ? folderFault(path) : readJar(path).fault;
        }
        if (judged->second) {
            addFault("RI803", origin, front + "\"" + path + "\" " + *judged->second);
        }
    }

    // "NAME@4:start"; without a number it is started at the usual level.
    void judgeLevels(const std::string& bundle, const std::string& levels, const Origin& origin) {
        std::vector<std::string> parts = splitAt(':', levels);
        if (std::all_of(parts.begin(), parts.end(),
                        [](const auto& part) { return part == "start"; })) {
            parts.push_back(std::to_string(usualLevel_));
        }
        for (const std::string& part : parts) {
            const std::optional<int> level = startLevel(part);
            const bool isBeyond = level.value_or(0) > lastLevel_;
            if (isBeyond || (!level && !part.empty() && part != "start")) {
                std::string message = "\"" + bundle;
                message.append("\" has the start level \"").append(part).append("\"");
                addFault("RI806", origin,
                         isBeyond
                             ? message + ", the framework goes to " + std::to_string(lastLevel_)
                             : message);
            }
        }
    }

    void judgeListed(const std::string& listed, const Origin& origin) {
        const std::size_t at = listed.rfind('@');
        std::string name = listed.substr(0, at);
        if (at != std::string::npos && at > 0) {
            judgeLevels(name, listed.substr(at + 1), origin);
        }
        hasConfigurator_ = hasConfigurator_ || name.find(kConfigurator) != std::string::npos;
        const bool isReference = take("reference:", name);
        const bool isFile = take("file:", name);
        if (isUnknown(name) || (!isFile && name.find(':') != std::string::npos)) {
            return;
        }
        const std::string path =
            joined(files::path(framework_).parent_path(), withoutScheme("file:" + name));
        const std::string found = isFile && !isReference ? path : folders_.find(path);
        if (found == path + ".jar" && isFolder(found)) {
            addFault("RI803", origin, "\"" + found + "\" is a folder");
            return;
        }
        judgeBundle(origin, "", found.empty() ? path : found);
    }

    void examineBundles() {
        const Value given = valueOf("osgi.bundles");
        const std::vector<std::string> bundles = splitAt(',', given.text);
        all_.push_back({.what = "bundles", .path = std::to_string(bundles.size())});
        for (const std::string& bundle : bundles) {
            if (!bundle.empty()) {
                judgeListed(bundle, given.origin);
            }
        }
        const bool isAnyNamed = std::any_of(bundles.begin(), bundles.end(),
                                            [](const auto& bundle) { return !bundle.empty(); });
        if (!isAnyNamed && valueOf("eclipse.ignoreApp").text != "true") {
            addFault("RI812", given.origin, "osgi.bundles names none");
        }
        if (hasConfigurator_) {
            examineList();
        }
    }

    // The user's own list, or the installation's that the user's configuration inherits from.
    [[nodiscard]] std::string listOfBundles() const {
        const std::string url = valueOf(std::string(kConfigurator) + ".configUrl").text;
        const std::string name =
            url.empty() ? std::string(kConfigurator) + "/bundles.info" : withoutScheme(url);
        const std::string own = toNarrow(examination_.inputs.configuration) + "/" + name;
        return files::path(name).is_absolute() ? name
               : isThere(own) && !examination_.isAreaRenewed()
                   ? own
                   : settings_.inheritedConfiguration() + "/" + name;
    }

    void examineList() {
        const std::string path = listOfBundles();
        all_.push_back({.what = "list of bundles", .path = path});
        if (isUnknown(path)) {
            return;
        }
        const auto file = std::make_shared<const std::wstring>(toWide(path));
        if (!isThere(path)) {
            addFault("RI805", settings_.files().front().at(0), "\"" + path + "\" is missing");
            return;
        }
        const std::string text = readQuietly(path, kLongestSettings + 1);
        if (text.size() > kLongestSettings) {
            addFault("RI813", {file, 0}, inQuotes(path) + " is not looked at to its end");
        }
        std::istringstream lines(text);
        std::size_t number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            const std::vector<std::string> fields = splitAt(',', line);
            if (line.starts_with('#') || fields.size() < 4) {
                continue;
            }
            judgeLevels(fields[0], fields[3], {file, number});
            if (!isUnknown(fields[2])) {
                judgeBundle({file, number}, "", joined(installArea_, withoutScheme(fields[2])));
            }
        }
    }

    const Examination& examination_;
    PlatformSettings settings_;
    std::string installArea_;
    std::string framework_;
    int lastLevel_ = kUsualStartLevel;
    int usualLevel_ = kUsualBundleLevel;
    bool hasConfigurator_ = false;
    Folders folders_;
    std::map<std::string, std::optional<std::string>> jarFaults_;
    std::vector<Examined> all_;
};

}  // namespace

std::vector<Examined> examineConfiguration(const Examination& examination, const Plan& plan) {
    return Configuration(examination, plan).examine();
}

}  // namespace rcp::inspect
