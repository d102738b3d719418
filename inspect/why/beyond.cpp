#include "inspect/why/beyond.h"

#include "inspect/handoff/hand_off.h"
#include "inspect/handoff/platform_settings.h"
#include "inspect/handoff/platform_values.h"
#include "inspect/why/chains.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>

namespace rcp::inspect {
namespace {

using nlohmann::json;

std::string placeText(const Origin& origin) {
    return origin.file ? toNarrow(*origin.file) +
                             (origin.line == 0 ? "" : ":" + std::to_string(origin.line))
           : origin.isCommandLine() ? "argument " + std::to_string(origin.line)
                                    : "the launcher";
}

// Those that speak of `about`.
void addFaultSteps(json& chain, const Examined& examined, const std::string& about) {
    for (const Fault& fault : examined.faults) {
        if (fault.message.find(about) != std::string::npos) {
            addStep(chain, fault.code, fault.message);
        }
    }
}

// What the platform does about a setting that is set nowhere.
struct Usual {
    const char* key;
    const char* then;
    const char* examined = "";  // whose path it comes to
};
constexpr Usual kUsual[] = {
    {"eclipse.application", "it starts what -application names, else the product's application"},
    {"eclipse.ignoreApp", "it starts an application"},
    {"eclipse.product", "its product is what -product names, if that is given"},
    {"org.eclipse.equinox.simpleconfigurator.configUrl",
     "the list of bundles is org.eclipse.equinox.simpleconfigurator/bundles.info of the "
     "configuration, else of the one that it inherits from"},
    {"osgi.bundles", "it starts no bundle, and so no application"},
    {"osgi.bundles.defaultStartLevel", "bundles without a start level have 4"},
    {"osgi.configuration.area", "it is what -configuration names"},
    {"osgi.configuration.cascaded", "the configuration inherits from the shared one"},
    {"osgi.framework",
     "it takes from the folder plugins of its install area what has a version behind "
     "org.eclipse.osgi_",
     "framework"},
    {"osgi.frameworkClassPath", "the framework's classes are in its jar"},
    {"osgi.install.area",
     "it is the folder of the jar that is started, or what holds that one's folder plugins",
     "install area"},
    {"osgi.instance.area", "it is what -data names"},
    {"osgi.sharedConfiguration.area", "it is the folder configuration of the install area"},
    {"osgi.startLevel", "the framework goes to start level 6"},
};

// Nothing of a key that is not known to be the platform's.
void addUnset(json& chains, const PlatformSettings& settings, const std::vector<Examined>& handOff,
              const std::string& key) {
    const auto usual = std::find_if(std::begin(kUsual), std::end(kUsual),
                                    [&](const auto& one) { return key == one.key; });
    if (usual == std::end(kUsual)) {
        return;
    }
    const auto isIn = [&](const SettingsFile& file) { return file.entries.contains(key); };
    const auto isEmptyIn = [&](const SettingsFile& file) {
        return isIn(file) && trimmed(file.entries.at(key).value).empty();
    };
    const bool isEmpty = std::any_of(settings.files().begin(), settings.files().end(), isEmptyIn);
    json chain = chainOf(key + (isEmpty ? " is empty" : " is not set"));
    for (const SettingsFile& file : settings.files()) {
        const std::size_t line = isIn(file) ? file.entries.at(key).line : 0;
        const bool isLate = isIn(file) && !isEmptyIn(file);
        addStep(chain, isIn(file) ? isLate ? "too late" : "at" : "not in",
                placeText(file.at(line)));
    }
    addStep(chain, "read by", "the platform, as a property of its own");
    addStep(chain, "so", usual->then);
    for (const Examined& examined : handOff) {
        if (examined.what == usual->examined) {
            addStep(chain, "here", examined.path.empty() ? "there is none" : examined.path);
        }
    }
    chains.push_back(chain);
}

// A system property or an entry of the platform's configuration; and what lost against it.
void addSetting(json& chains, const PlatformSettings& settings,
                const std::vector<Examined>& handOff, const std::string& key) {
    const PlatformSettings::Value value = settings.valueOf(key);
    if (findPropertyKey(toWide(key)) != nullptr) {
        return;  // a key of the launcher's is told as that
    }
    if (value.text.empty()) {
        addUnset(chains, settings, handOff, key);
        return;
    }
    json chain = chainOf(key + "=" + value.text);
    addStep(chain, "at", placeText(value.origin));
    addStep(chain, "read by", "the platform, as a property of its own");
    for (const SettingsFile& file : settings.files()) {
        const auto entry = file.entries.find(key);
        const bool isIt = file.path == value.origin.file;
        if (entry != file.entries.end() && !isIt) {
            addStep(chain, "not",
                    entry->second.value + " (" + placeText(file.at(entry->second.line)) + ")");
        }
    }
    chains.push_back(chain);
}

// The variable that the program java reads, of a launch that loads its library.
void addUnreadVariable(json& chains, const std::string& name) {
    if (const char* value = getenv(name.c_str()); value != nullptr) {
        json chain = chainOf(name + "=" + value);
        addStep(chain, "not read", "the program java reads it, and the launch loads a library");
        chains.push_back(chain);
    }
}

void addJvmVariable(json& chains, const std::vector<Examined>& handOff, const std::string& name) {
    const char* value = getenv(name.c_str());
    for (const Examined& examined : handOff) {
        if (examined.what == "variable" && examined.path == name && value != nullptr) {
            json chain = chainOf(name + "=" + value);
            addStep(chain, "from", "the environment of the launch");
            addStep(chain, "read by", name == kJavasVariable ? "the program java" : "the JVM");
            addFaultSteps(chain, examined, name);
            chains.push_back(chain);
        }
    }
}

// Settings put paths together, with a slash too many and dots.
bool isPath(const std::string& examined, const std::string& path) {
    const auto normal = [](const std::filesystem::path& one) { return one.lexically_normal(); };
    return normal(examined) == normal(path);
}

void addExamined(json& chains, const Examined& examined, const std::string& path) {
    for (const Examined::Named& named : examined.named) {
        if (isPath(named.path, path)) {
            json chain = chainOf(path);
            addStep(chain, "named at", placeText(named.origin));
            addStep(chain, "read by", "the platform, of its " + examined.what);
            addFaultSteps(chain, examined, '"' + named.path + '"');
            chains.push_back(chain);
        }
    }
    if (examined.named.empty() && isPath(examined.path, path)) {
        json chain = chainOf(path);
        addStep(chain, "read by", "the platform, as its " + examined.what);
        addFaultSteps(chain, examined, {});
        chains.push_back(chain);
    }
}

// The one of the two that the platform does not read.
void addUnread(json& chains, const PlatformSettings& settings, const std::string& path) {
    const bool isCopied =
        !settings.files().empty() && *settings.files().front().path == settings.usersCopy();
    if (isCopied && path == toNarrow(settings.master())) {
        json chain = chainOf(path);
        addStep(chain, "copied", "by a launch when the user has none");
        addStep(chain, "not read", "the platform reads " + toNarrow(settings.usersCopy()));
        chains.push_back(chain);
    }
}

}  // namespace

json beyondChains(const Options& options) {
    const Examination examination = examine(options);
    const std::optional<Plan> plan = planOf(examination);
    json chains = json::array();
    if (!plan) {
        return chains;
    }
    const PlatformSettings settings(examination, *plan);
    const std::vector<Examined> handOff = examineHandOff(examination);
    if (!options.subject.starts_with('/')) {
        addSetting(chains, settings, handOff, options.subject);
        addJvmVariable(chains, handOff, options.subject);
        if (options.subject == kJavasVariable && !startsJava(examination, *plan)) {
            addUnreadVariable(chains, options.subject);
        }
        return chains;
    }
    for (const Examined& examined : handOff) {
        addExamined(chains, examined, options.subject);
    }
    addUnread(chains, settings, options.subject);
    return chains;
}

}  // namespace rcp::inspect
