// What else a launch reads and leaves: property files, variables, changed files, its log.
#include "diagnostics/svc_debug.h"
#include "inspect/expansion.h"
#include "inspect/explain/account.h"
#include "inspect/redaction/secret_names.h"
#include "launcher/vocabulary/property_keys.h"
#include "launcher/vocabulary/variables.h"
#include "platform/text.h"

#include <algorithm>
#include <fstream>
#include <iterator>

extern char** environ;  // environ(7)

namespace rcp::inspect {
namespace {

using nlohmann::json;

// What has changed each variable last.
std::map<std::string, const EnvironmentChange*> lastChanges(const Launch& launch) {
    std::map<std::string, const EnvironmentChange*> last;
    if (launch.plan) {
        for (const EnvironmentChange& change : launch.plan->environment) {
            const bool isPreload = change.kind == EnvironmentChange::kPreload;
            last[toNarrow(isPreload ? std::wstring(variables::kPreload) : change.name)] = &change;
        }
    }
    return last;
}

// Of a value that is put together, each part with its source.
json describeParts(const EnvironmentChange* change, const Account& account) {
    json parts = json::array();
    if (change != nullptr && change->parts.size() > 1) {
        for (const Argument& part : change->parts) {
            parts.push_back(
                {{"text", jsonText(part.text)}, {"source", account.sources.describe(part.origin)}});
        }
    }
    return parts;
}

json textOrNull(const Variables& variables, const std::string& name) {
    const auto found = variables.find(name);
    return found == variables.end() ? json() : json(found->second);
}

// "element 3", or "element 0, 20".
std::string elementText(const std::vector<std::size_t>& elements) {
    std::string text;
    for (const std::size_t element : elements) {
        text += (text.empty() ? "element " : ", ") + std::to_string(element);
    }
    return text;
}

std::string placeText(const Origin& origin) {
    return origin.file              ? toNarrow(*origin.file) + ":" + std::to_string(origin.line)
           : origin.isCommandLine() ? "the command line"
                                    : "the launcher";
}

struct Use {
    const char* state;
    std::string by;
};

Use useOfIdle(const Property& entry, const Account& account) {
    const PropertyKey* known = findPropertyKey(entry.key);
    if (account.sources.counts(entry)) {
        return {"unused", std::string("not needed in this launch: ") + known->usage};
    }
    if (keyFileOf(*entry.origin.file) == kArgsFile) {
        return {"unused", "kept for a restart"};
    }
    if (entry.key == kSecretNamesKey) {
        return {"unused", "rcpinspect takes names of secrets from it"};
    }
    return {"unused", known == nullptr ? "nothing reads this key" : "nothing reads it there"};
}

Use useOf(const Property& entry, const Account& account) {
    const std::vector<std::size_t> elements = elementsFrom(entry.origin, account);
    if (!elements.empty()) {
        return {"used", elementText(elements)};
    }
    if (const Origin* winner = account.losers.winnerOver(entry.origin)) {
        return {"overridden", placeText(*winner)};
    }
    if (account.witness.wasFound(entry.origin)) {
        const PropertyKey* known =
            account.sources.counts(entry) ? findPropertyKey(entry.key) : nullptr;
        return {"used", known == nullptr ? "a step of the launch" : known->usage};
    }
    const auto argument = account.launch.inputs.vmargMap.find(entry.key);
    if (argument != account.launch.inputs.vmargMap.end() &&
        argument->second.origin == entry.origin && entry.value.empty()) {
        return {"used", "keeps later arguments of its name out"};
    }
    return useOfIdle(entry, account);
}

// What the launch has made of an entry's value. Of one that is only a part of something it is not told.
std::wstring effectiveValue(const Property& entry, const Account& account) {
    if (entry.value.find(placeholders::kOpening) == std::wstring::npos) {
        return entry.value;
    }
    const auto way = account.witness.replacementsFrom(entry.value);
    const PropertyKey* known = findPropertyKey(entry.key, keyFileOf(*entry.origin.file));
    if (!way.empty() || known == nullptr) {
        return way.empty() ? entry.value : way.back().after;
    }
    const LaunchInputs& inputs = account.launch.inputs;
    return expanded(entry.value, known->expansion, {inputs.workspace, inputs.installDir});
}

bool isLog(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return name.starts_with("rcplauncher") && name.ends_with(".log");
}

void addLines(json& records, const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (end > at) {
            records.push_back(text.substr(at, end - at));
        }
        at = end + 1;
    }
}

const char* nameOf(FileChange::Kind kind) {
    switch (kind) {
        case FileChange::Kind::kMade:
            return "made";
        case FileChange::Kind::kReplaced:
            return "replaced";
        case FileChange::Kind::kRemoved:
            return "removed";
        case FileChange::Kind::kMoved:
            return "moved";
    }
    return "";
}

}  // namespace

Variables environmentNow() {
    Variables variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const std::size_t equals = text.find('=', 1);
        if (equals != std::string::npos) {
            variables[text.substr(0, equals)] = text.substr(equals + 1);
        }
    }
    return variables;
}

json describeEnvironment(const Account& account) {
    const auto changes = lastChanges(account.launch);
    const Variables after = environmentNow();
    Variables all = after;
    all.insert(account.before.begin(), account.before.end());
    json environment = json::array();
    for (const auto& [name, value] : all) {
        const json was = textOrNull(account.before, name);
        const json is = textOrNull(after, name);
        if (was != is) {
            const auto last = changes.find(name);
            const EnvironmentChange* change = last == changes.end() ? nullptr : last->second;
            const Origin origin = change == nullptr ? Origin() : change->origin;
            environment.push_back({{"name", name},
                                   {"before", was},
                                   {"after", is},
                                   {"source", account.sources.describe(origin)},
                                   {"parts", describeParts(change, account)}});
        }
    }
    return environment;
}

json describeFiles(const Account& account) {
    json files = json::array();
    for (const ReadFile& file : account.sources.files()) {
        json entries = json::array();
        for (const Property& entry : file.entries.entries()) {
            const Use use = useOf(entry, account);
            entries.push_back({{"line", entry.origin.line},
                               {"key", jsonText(entry.key)},
                               {"value", jsonText(entry.value)},
                               {"effective", jsonText(effectiveValue(entry, account))},
                               {"state", use.state},
                               {"by", use.by}});
        }
        files.push_back({{"path", jsonText(file.path)}, {"found", true}, {"entries", entries}});
    }
    return files;
}

json describeChanges(const Rehearsal& rehearsal) {
    json changes = json::array();
    for (const FileChange& change : rehearsal.changes()) {
        json described{{"path", change.name},
                       {"change", nameOf(change.kind)},
                       {"kind", change.isDirectory ? "directory"
                                : change.isLink    ? "link"
                                                   : "file"}};
        if (!change.to.empty()) {
            described["to"] = change.toName;
        }
        changes.push_back(described);
    }
    return changes;
}

json describeRecords(const Rehearsal& rehearsal) {
    json records = json::array();
    for (const FileChange& change : rehearsal.changes()) {
        if (isLog(change.path) && change.kind != FileChange::Kind::kRemoved) {
            std::ifstream log(rehearsal.placeOf(change.path), std::ios::binary);
            addLines(records, {std::istreambuf_iterator<char>(log), {}});
        }
    }
    addLines(records, logQueue());
    return records;
}

}  // namespace rcp::inspect
