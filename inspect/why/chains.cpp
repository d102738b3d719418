#include "inspect/why/chains.h"

#include "inspect/check/jvm_options.h"
#include "inspect/check/near_keys.h"
#include "inspect/explain/elements_text.h"
#include "launcher/vocabulary/configuration_words.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <stdlib.h>

#include <algorithm>
#include <map>
#include <set>

namespace rcp::inspect {
namespace {

using nlohmann::json;

// --- An element of the command line ---

void addElement(json& chain, const json& element) {
    addStep(chain, "from", sourceText(element["source"]));
    addStep(chain, "rule", element["rule"]);
    for (const json& placeholder : element["placeholders"]) {
        addStep(chain, "with", placeholderText(placeholder));
    }
    for (const json& loser : element["instead"]) {
        addStep(chain, "not",
                loser["text"].get<std::string>() + " (" + sourceText(loser["source"]) +
                    "): " + loser["why"].get<std::string>());
    }
}

// "-Xmx" begins "-Xmx128m"; "-data" is a whole element whose value stands behind it.
bool isOf(const std::string& text, const std::string& option) {
    if (!text.starts_with(option)) {
        return false;
    }
    const std::string rest = text.substr(option.size());
    return rest.empty() || option.starts_with("-X") || option.starts_with("-D") ||
           rest.front() == '=' || rest.front() == ':';
}

bool isOption(const json& element) {
    return element["text"].get_ref<const std::string&>().starts_with('-');
}

// Of two JVM options that say the same thing the JVM takes the last.
void addJvmsChoice(json& chains, const json& elements, const std::vector<std::size_t>& found) {
    std::map<std::wstring, std::vector<std::size_t>> byName;
    for (const std::size_t i : found) {
        byName[jvmOptionName(toWide(elements[i]["text"]))].push_back(i);
    }
    for (const auto& [name, positions] : byName) {
        if (!name.empty() && positions.size() > 1) {
            json chain =
                chainOf("the JVM takes " + elements[positions.back()]["text"].get<std::string>());
            addStep(chain, "rule", "of several it takes the last");
            chains.push_back(chain);
        }
    }
}

void addOption(json& chains, const json& explanation, const std::string& subject) {
    const json& elements = explanation["elements"];
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const std::string text = elements[i]["text"];
        if (!isOf(text, subject)) {
            continue;
        }
        found.push_back(i);
        const bool hasValue =
            text == subject && i + 1 < elements.size() && !isOption(elements[i + 1]);
        const json& valued = elements[i + (hasValue ? 1 : 0)];
        json chain = chainOf("element " + std::to_string(i) + ": " + text +
                             (hasValue ? " " + valued["text"].get<std::string>() : std::string()));
        addElement(chain, valued);
        chains.push_back(chain);
    }
    addJvmsChoice(chains, elements, found);
    for (const json& dropped : explanation["dropped"]) {
        if (isOf(dropped["text"], subject)) {
            json chain = chainOf("argument " + dropped["position"].dump() + ": " +
                                 dropped["text"].get<std::string>() + ", not passed on");
            addStep(chain, "rule", dropped["why"]);
            chains.push_back(chain);
        }
    }
}

// --- A key ---

std::string namesOfFiles(unsigned files) {
    constexpr std::pair<unsigned, const char*> kNames[] = {
        {kLauncherFile, "rcplauncher.properties"},
        {kJvmFile, "jvm.properties"},
        {kUserFile, "rcpinstall.properties"},
        {kArgsFile, "args.properties"}};
    std::string text;
    for (const auto& [file, name] : kNames) {
        if ((files & file) != 0) {
            text += (text.empty() ? "" : ", ") + std::string(name);
        }
    }
    return text;
}

std::string placeOfEntry(const json& file, const json& entry) {
    return file["path"].get<std::string>() + ":" + entry["line"].dump();
}

void addEntries(json& chains, const json& explanation, const std::string& subject) {
    for (const json& file : explanation["files"]) {
        for (const json& entry : file["entries"]) {
            if (entry["key"] == subject) {
                json chain = chainOf(subject + "=" + entry["value"].get<std::string>());
                addStep(chain, "at", placeOfEntry(file, entry));
                if (entry["effective"] != entry["value"]) {
                    addStep(chain, "becomes", entry["effective"]);
                }
                addStep(chain, entry["state"], entry["by"]);
                chains.push_back(chain);
            }
        }
    }
}

// What could be set, and what may have been meant.
void addKnownKey(json& chains, const std::string& subject) {
    const std::wstring key = toWide(subject);
    if (const PropertyKey* known = findPropertyKey(key)) {
        json chain = chainOf(subject + (chains.empty() ? " is not set" : " is a key"));
        addStep(chain, "read as", known->usage);
        if (known->files != kNoFile) {
            addStep(chain, "counts in", namesOfFiles(known->files));
        }
        chains.push_back(chain);
        return;
    }
    if (subject.starts_with('-') && !chains.empty()) {
        return;  // it is an option of this launch
    }
    std::set<std::wstring> meant;
    for (const KeyFile file : {kLauncherFile, kJvmFile, kUserFile}) {
        meant.insert(nearestKey(key, file));
    }
    meant.erase(L"");
    for (const std::wstring& near : meant) {
        json chain = chainOf("nothing reads a key " + subject);
        addStep(chain, "did you mean", toNarrow(near) + "?");
        chains.push_back(chain);
    }
}

// --- A variable ---

json chainOfVariable(const std::string& name) {
    const char* now = getenv(name.c_str());
    return chainOf(name + (now == nullptr ? " is not set" : std::string("=") + now));
}

// What the launcher itself reads it for.
void addOwnUse(json& chains, const std::string& name) {
    for (const VariableWords& known : variableWords()) {
        if (*known.isRead != '\0' && toNarrow(std::wstring(known.name)) == name) {
            json chain = chainOfVariable(name);
            std::string usage = known.isRead;
            std::erase(usage, '`');  // which are a document's
            addStep(chain, "read as", usage);
            chains.push_back(chain);
        }
    }
}

void addVariable(json& chains, const json& explanation, const std::string& subject) {
    for (const json& variable : explanation["environment"]) {
        if (variable["name"] == subject) {
            const json& after = variable["after"];
            json chain = chainOf(
                subject + (after.is_null() ? " is removed" : "=" + after.get<std::string>()));
            addStep(chain, "from", sourceText(variable["source"]));
            for (const json& part : variable["parts"]) {
                addStep(chain, "part", partText(part));
            }
            const json& before = variable["before"];
            addStep(chain, "before", before.is_null() ? "not set" : before.get<std::string>());
            chains.push_back(chain);
        }
    }
    const bool isChanged = !chains.empty();
    addOwnUse(chains, subject);
    for (const json& file : explanation["files"]) {
        for (const json& entry : file["entries"]) {
            const std::string value = entry["value"];
            const std::size_t at = value.find("${env." + subject);
            const std::size_t end = at + subject.size() + 6;
            if (entry["key"] == "env.unset." + subject && !isChanged) {
                json chain = chainOfVariable(subject);
                addStep(chain, "removed by", entry["key"]);
                addStep(chain, "at", placeOfEntry(file, entry));
                chains.push_back(chain);
            }
            if (at == std::string::npos || end >= value.size() ||
                (value[end] != '}' && value[end] != ',')) {
                continue;
            }
            json chain = chainOfVariable(subject);
            addStep(chain, "read by", entry["key"].get<std::string>() + "=" + value);
            addStep(chain, "at", placeOfEntry(file, entry));
            chains.push_back(chain);
        }
    }
}

// --- A path ---

void addPath(json& chains, const json& explanation, const std::string& subject) {
    for (const json& change : explanation["changes"]) {
        if (change["path"] == subject || change.value("to", "") == subject) {
            json chain = chainOf(subject);
            addStep(chain, "changed",
                    change["kind"].get<std::string>() + " " + change["change"].get<std::string>() +
                        " by the launch");
            chains.push_back(chain);
        }
    }
    for (const json& file : explanation["files"]) {
        if (file["path"] == subject) {
            json chain = chainOf(subject);
            addStep(chain, "read", std::to_string(file["entries"].size()) + " properties");
            chains.push_back(chain);
        }
    }
    const json& elements = explanation["elements"];
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const std::string text = elements[i]["text"];
        if (text.find(subject) != std::string::npos) {
            json chain = chainOf("element " + std::to_string(i) + ": " + text);
            addElement(chain, elements[i]);
            chains.push_back(chain);
        }
    }
}

}  // namespace

void addStep(json& chain, const std::string& step, const std::string& text) {
    chain["steps"].push_back({{"step", step}, {"text", text}});
}

json chainOf(const std::string& what) {
    return {{"what", what}, {"steps", json::array()}};
}

json launchChains(const json& explanation, const json& beyond, const std::string& subject) {
    json chains = json::array();
    if (subject.starts_with('/')) {
        addPath(chains, explanation, subject);
        chains.insert(chains.end(), beyond.begin(), beyond.end());
        return chains;
    }
    if (subject.starts_with('-')) {
        addOption(chains, explanation, subject);
    }
    addEntries(chains, explanation, subject);
    addVariable(chains, explanation, subject);
    chains.insert(chains.end(), beyond.begin(), beyond.end());
    addKnownKey(chains, subject);
    return chains;
}

}  // namespace rcp::inspect
