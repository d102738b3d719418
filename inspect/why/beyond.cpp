#include "inspect/why/beyond.h"

#include "inspect/handoff/hand_off.h"
#include "inspect/handoff/platform_settings.h"
#include "inspect/why/chains.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <stdlib.h>

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

// A system property or an entry of the platform's configuration; and what lost against it.
void addSetting(json& chains, const PlatformSettings& settings, const std::string& key) {
    const PlatformSettings::Value value = settings.valueOf(key);
    if (value.text.empty() || findPropertyKey(toWide(key)) != nullptr) {
        return;  // a key of the launcher's is told as that
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

void addJvmVariable(json& chains, const std::vector<Examined>& handOff, const std::string& name) {
    const char* value = getenv(name.c_str());
    for (const Examined& examined : handOff) {
        if (examined.what == "variable" && examined.path == name && value != nullptr) {
            json chain = chainOf(name + "=" + value);
            addStep(chain, "from", "the environment of the launch");
            addStep(chain, "read by", "the JVM");
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
        addSetting(chains, settings, options.subject);
        addJvmVariable(chains, handOff, options.subject);
        return chains;
    }
    for (const Examined& examined : handOff) {
        addExamined(chains, examined, options.subject);
    }
    addUnread(chains, settings, options.subject);
    return chains;
}

}  // namespace rcp::inspect
