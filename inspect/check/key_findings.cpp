// Keys that are missing, that nobody reads, or that lose.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "inspect/check/near_keys.h"
#include "inspect/redaction/secret_names.h"
#include "launcher/command_line/main_options.h"
#include "launcher/inputs/arguments.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/instance/provisioning.h"
#include "launcher/properties/placeholders.h"
#include "launcher/properties/property_text.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/variables.h"

#include <algorithm>
#include <map>

namespace rcp::inspect {
namespace {

// --- Missing ---

void requireKey(const Examination& examination, Key key, Findings& findings) {
    if (findProperty(key, examination.inputs.properties) == nullptr) {
        findings.add("RI201", examination.launcherFile(), 0, inQuotes(key) + " is missing");
    }
}

void findMissing(const Examination& examination, Findings& findings) {
    const LaunchInputs& inputs = examination.inputs;
    for (const PropertyKey& key : propertyKeys()) {
        // The configuration that makes an id by itself, and an option that stands for a key.
        const bool isExcused = (key.key == keys::kInstallId &&
                                inputs.traits.eConfig == InstallConfiguration::kUserpb) ||
                               hasOption(L"-" + std::wstring(key.key), inputs.arguments);
        if (key.isRequired && !isExcused) {
            requireKey(examination, key.key, findings);
        }
    }
    if (isProvisioningEnabled(inputs) && provisioningApplication(inputs.properties) == nullptr) {
        findings.add("RI201", examination.launcherFile(), 0,
                     "\"provisioning.application\" is missing, but provisioning is enabled");
    }
}

// --- Never looked at ---

// The properties by which initial configurations may tell that they are complete.
void addCompletionProperties(const Examination& examination, std::set<std::wstring>& looked) {
    for (const Property& entry : examination.inputs.properties.entries()) {
        if (entry.key.starts_with(keys::kInitial)) {
            looked.insert(entry.value);
        }
    }
}

std::string filesOf(unsigned files) {
    std::string names;
    for (const auto& [file, name] :
         {std::pair{kLauncherFile, "rcp/rcplauncher.properties"},
          std::pair{kJvmFile, "jvm.properties"}, std::pair{kUserFile, "rcpinstall.properties"}}) {
        if ((files & file) != 0) {
            names += (names.empty() ? "" : " or ") + std::string(name);
        }
    }
    return names;
}

// Whether the key is qualified for a system, which counts in the master rcpinstall.properties only.
bool isQualified(const std::wstring& key) {
    std::wstring line = key + L"=";
    return processFilterKey(line) || line != key + L"=";
}

void findUnread(const PropertyFile& file, const Property& entry, Findings& findings) {
    const std::size_t line = entry.origin.line;
    const std::wstring near = nearestKey(entry.key, file.kind);
    const std::string suggestion =
        near.empty() ? std::string() : "; did you mean " + inQuotes(near) + "?";
    if (const PropertyKey* elsewhere = findPropertyKey(entry.key)) {
        // The platform reads its own keys from the user's file.
        if (elsewhere->files != kNoFile && file.kind != kUserFile) {
            findings.add("RI203", file.name, line,
                         inQuotes(entry.key) + " is looked at in " + filesOf(elsewhere->files));
        }
        return;
    }
    if (file.kind != kUserFile && isQualified(entry.key)) {
        findings.add("RI210", file.name, line,
                     "nothing looks at " + inQuotes(entry.key) + ", qualifier included");
    } else if (file.kind != kUserFile || !near.empty()) {
        findings.add("RI202", file.name, line,
                     "nothing looks at " + inQuotes(entry.key) + suggestion);
    }
}

// --- Twice, or in vain ---

// Kinds of keys of which every entry counts: what is applied last wins.
bool countsEveryTime(std::wstring_view key) {
    constexpr Key kPrefixes[] = {keys::kSystemProperty, keys::kJvmOption, keys::kEnvSetVariable,
                                 keys::kEnvUnsetVariable, keys::kResetDir};
    return std::any_of(std::begin(kPrefixes), std::end(kPrefixes),
                       [key](Key prefix) { return key.starts_with(prefix); });
}

void findDuplicates(const PropertyFile& file, const std::deque<Property>& entries,
                    Findings& findings) {
    std::map<std::wstring, std::size_t> first;
    for (const Property& entry : entries) {
        if (!entry.origin.file || entry.key.empty()) {
            continue;
        }
        const auto [known, isNew] = first.emplace(entry.key, entry.origin.line);
        if (!isNew) {
            findings.add("RI204", file.name, entry.origin.line,
                         inQuotes(entry.key) + " stands on line " + std::to_string(known->second) +
                             " already; " +
                             (countsEveryTime(entry.key) ? "both count, the last one wins"
                                                         : "this one never counts"));
        }
    }
}

void findEmptyKeys(const PropertyFile& file, Findings& findings) {
    for (const Property& entry : file.entries.entries()) {
        if (entry.key.empty()) {
            findings.add("RI205", file.name, entry.origin.line, "the entry has no key");
        }
    }
}

// The prefixes by which the launcher searches a list.
void findHidden(const Examination& examination, const PropertyList& list,
                std::initializer_list<Key> prefixes, Findings& findings) {
    for (const Key prefix : prefixes) {
        const auto found = findProperties(prefix, list);  // in the order of the list
        auto next = found.begin();
        for (const Property& entry : list.entries()) {
            if (next != found.end() && *next == &entry) {
                ++next;
            } else if (entry.origin.file && entry.key.starts_with(prefix)) {
                findings.add("RI206", examination.nameOf(entry.origin), entry.origin.line,
                             inQuotes(entry.key) + " is never found");
            }
        }
    }
}

void findOverridden(const Examination& examination, const PropertyFile& file, Findings& findings) {
    if (file.kind != kJvmFile || !file.isRead) {
        return;
    }
    for (const Property& entry : file.entries.entries()) {
        const PropertyKey* known = findPropertyKey(entry.key, kJvmFile);
        const Origin winner = examination.originOf(entry.key);
        if (known != nullptr && known->tail == KeyTail::kNothing && winner.file &&
            examination.nameOf(winner) != file.name) {
            findings.add("RI207", file.name, entry.origin.line,
                         inQuotes(entry.key) + " in " + examination.nameOf(winner) + ", line " +
                             std::to_string(winner.line) + ", always wins");
        }
    }
}

// What the launcher appends to the user's copy carries no line.
void findMasterOverrides(const Examination& examination, Findings& findings) {
    const PropertyList& list = examination.userEntries;
    for (const Property& appended : list.entries()) {
        const Property* winner = list.find(appended.key);
        if (!appended.origin.file && winner->origin.file && winner->value != appended.value) {
            findings.add("RI208", examination.nameOf(winner->origin), winner->origin.line,
                         inQuotes(appended.key) + " here wins over the launcher's " +
                             inQuotes(appended.value));
        }
    }
}

void findOtherSystems(const Examination& examination, Findings& findings) {
    const PropertyFile* master = examination.file(kUserFile);
    if (master == nullptr) {
        return;
    }
    const PropertyList& list = examination.userEntries;
    for (const Property& entry : master->entries.entries()) {
        std::wstring line = entry.key + L"=";
        const std::wstring plain = entry.key.substr(0, entry.key.rfind(L'.'));
        if (processFilterKey(line) && list.find(plain) == nullptr) {
            findings.add("RI209", master->name, entry.origin.line,
                         "no user gets " + inQuotes(entry.key));
        }
    }
}

}  // namespace

std::set<std::wstring> referredKeys(const Examination& examination) {
    constexpr std::wstring_view kProperty = placeholders::kProperty;
    std::set<std::wstring> keys;
    for (const PropertyFile& file : examination.files) {
        for (const Property& entry : file.entries.entries()) {
            auto last = findLastPlaceholder(entry.value, std::wstring::npos);
            while (last) {
                if (last->name.starts_with(kProperty)) {
                    keys.emplace(last->name.substr(kProperty.size()));
                }
                last = last->begin == 0 ? std::nullopt
                                        : findLastPlaceholder(entry.value, last->begin - 1);
            }
        }
    }
    return keys;
}

void findInKeys(const Examination& examination, Findings& findings) {
    const LaunchInputs& inputs = examination.inputs;
    std::set<std::wstring> looked = referredKeys(examination);
    looked.emplace(kSecretNamesKey);
    addCompletionProperties(examination, looked);
    findMissing(examination, findings);
    for (const PropertyFile& file : examination.files) {
        const auto& entries =
            file.kind == kUserFile ? examination.userEntries.entries() : file.entries.entries();
        for (const Property& entry : entries) {
            if (entry.origin.file && !entry.key.empty() &&
                findPropertyKey(entry.key, file.kind) == nullptr && !looked.contains(entry.key)) {
                findUnread(file, entry, findings);
            }
        }
        findDuplicates(file, entries, findings);
        findEmptyKeys(file, findings);
        findOverridden(examination, file, findings);
    }
    findHidden(examination, inputs.properties,
               {keys::kSystemProperty, keys::kJvmOption, keys::kEnvSet, keys::kEnvUnset,
                keys::kConsoleFix, keys::kInitial},
               findings);
    findHidden(examination, inputs.userProperties, {keys::kResetDir}, findings);
    findMasterOverrides(examination, findings);
    findOtherSystems(examination, findings);
}

}  // namespace rcp::inspect
