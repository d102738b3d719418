// What else a launch reads and leaves: property files, variables, changed files, its log.
#include "diagnostics/svc_debug.h"
#include "inspect/explain/account.h"
#include "inspect/explain/contest.h"
#include "inspect/property_keys.h"
#include "platform/text.h"

#include <algorithm>
#include <fstream>
#include <iterator>

extern char** environ;  // environ(7)

namespace rcp::inspect {
namespace {

using nlohmann::json;

struct VariableProperty {
    const char* variable;
    const wchar_t* property;
    bool isLast;  // set when env.set has done its work
};

// Variables that have properties of their own, in the order in which they make the value.
constexpr VariableProperty kVariableProperties[] = {
    {"JAVA_HIGH_ZIPFDS", L"env.JAVA_HIGH_ZIPFDS", true},
    {"LD_PRELOAD", L"library.preload", true},
    {"DYLD_LIBRARY_PATH", L"library.path.prepend", false},
    {"DYLD_LIBRARY_PATH", L"com.ovr.rcp.core.internal.librarypath", false},
    {"DYLD_LIBRARY_PATH", L"library.path.append", false},
};

const Property* propertyOf(const std::string& name, bool isLast, const Sources& sources) {
    for (const VariableProperty& pair : kVariableProperties) {
        const auto entries = sources.entriesOf(pair.property);
        if (pair.variable == name && pair.isLast == isLast && !entries.empty()) {
            return entries.front();
        }
    }
    return nullptr;
}

json variableSource(const std::string& name, const Sources& sources) {
    const Property* entry = propertyOf(name, true, sources);
    if (entry == nullptr && name == "JAVA_HIGH_ZIPFDS") {
        return sources.describe({});  // which is set in any case
    }
    for (const wchar_t* prefix : {L"env.set.", L"env.unset."}) {
        const auto entries = sources.entriesOf(prefix + toWide(name));
        if (entry == nullptr && !entries.empty()) {
            entry = entries.back();
        }
    }
    entry = entry == nullptr ? propertyOf(name, false, sources) : entry;
    return sources.describe(entry == nullptr ? Origin() : entry->origin);
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
    return origin.file ? toNarrow(*origin.file) + ":" + std::to_string(origin.line)
                       : "the command line";
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
    return {"unused", known == nullptr ? "nothing reads this key" : "nothing reads it there"};
}

Use useOf(const Property& entry, const Account& account) {
    const std::vector<std::size_t> elements = elementsFrom(entry.origin, account);
    if (!elements.empty()) {
        return {"used", elementText(elements)};
    }
    const auto rivals = rivalsOf(entry, account);
    if (!rivals.empty() && !isSamePlace(rivals.front().origin, entry.origin)) {
        return {"overridden", placeText(rivals.front().origin)};
    }
    if (account.witness.wasFound(*entry.origin.file, entry.origin.line)) {
        const PropertyKey* known =
            account.sources.counts(entry) ? findPropertyKey(entry.key) : nullptr;
        return {"used", known == nullptr ? "a step of the launch" : known->usage};
    }
    if (entry.key.starts_with(L"vmarg.") && entry.value.empty() && !rivals.empty()) {
        return {"used", "keeps later arguments of its name out"};
    }
    return useOfIdle(entry, account);
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
    const Variables after = environmentNow();
    Variables all = after;
    all.insert(account.before.begin(), account.before.end());
    json environment = json::array();
    for (const auto& [name, value] : all) {
        const json was = textOrNull(account.before, name);
        const json is = textOrNull(after, name);
        if (was != is) {
            environment.push_back({{"name", name},
                                   {"before", was},
                                   {"after", is},
                                   {"source", variableSource(name, account.sources)}});
        }
    }
    return environment;
}

json describeFiles(const Account& account) {
    json files = json::array();
    for (const Sources::File& file : account.sources.files()) {
        json entries = json::array();
        for (const Property& entry : file.entries.entries()) {
            const Use use = useOf(entry, account);
            entries.push_back({{"line", entry.origin.line},
                               {"key", jsonText(entry.key)},
                               {"value", jsonText(entry.value)},
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
