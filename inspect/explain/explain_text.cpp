#include "inspect/explain/explain_text.h"

#include "inspect/explain/elements_text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace rcp::inspect {
namespace {

using nlohmann::json;

std::string endText(const json& outcome) {
    const std::string kind = outcome["kind"];
    if (kind == "fatal") {
        return "it would end with status " + outcome["status"].dump();
    }
    if (kind == "ends") {
        return "it would end without starting anything";
    }
    const std::string program = outcome.value("program", "");
    if (outcome.contains("obstacle")) {
        return "it is handed to " + program +
               ", which cannot start the platform: " + outcome["obstacle"].get<std::string>();
    }
    if (kind == "in-process") {
        return "the platform runs in the launcher's own process, through " + program;
    }
    return (kind == "provisioning" ? "provisioning first: " : "") + ("it becomes " + program);
}

std::string faultText(const json& fault) {
    return fault["code"].get<std::string>() + " " + fault["message"].get<std::string>();
}

// What is examined of the platform's files.
void addBeyond(TextPage& page, const json& explanation) {
    std::string names;
    for (const json& examined : explanation.value("handOff", json::array())) {
        for (const json& fault : examined["faults"]) {
            page.pair("but", faultText(fault));
        }
        names += (names.empty() ? "" : ", ") + examined["what"].get<std::string>();
    }
    if (!names.empty()) {
        page.pair("examined", names);
    }
}

void addUser(TextPage& page, const json& facts) {
    if (facts.contains("user")) {
        page.pair("user", facts["user"].get<std::string>() +
                              (facts["isRoot"] == true ? ", for whom permissions do not count: "
                                                         "others may get other answers"
                                                       : ""));
    }
}

void addOutcome(TextPage& page, const json& explanation) {
    const json& outcome = explanation["outcome"];
    const json& facts = explanation["facts"];
    page.heading("What a launch would do");
    page.pair("end", endText(outcome) + (outcome.contains("beyond")
                                             ? "; what the platform does then is not rehearsed"
                                             : ""));
    addBeyond(page, explanation);
    if (outcome.contains("record")) {
        page.pair("record", outcome["record"]);
    }
    if (outcome.contains("source")) {
        page.pair("from", sourceText(outcome["source"]));
    }
    if (outcome.contains("cause")) {
        page.pair("remedy", outcome["cause"]);
    }
    page.pair("role", outcome["role"]);
    addUser(page, facts);
    for (const char* name : {"workspace", "configuration", "area", "installConfiguration"}) {
        if (facts.contains(name) && facts[name] != "") {
            page.pair(name == std::string("installConfiguration") ? "kind" : name, facts[name]);
        }
    }
    page.pair("first launch", facts["firstLaunch"] == true ? "yes" : "no");
    for (const json& wait : facts["waits"]) {
        page.pair("waits", wait);
    }
}

void addDropped(TextPage& page, const json& dropped) {
    if (dropped.empty()) {
        return;
    }
    page.heading("Arguments that are not passed on");
    for (const json& argument : dropped) {
        page.line("  " + argument["text"].get<std::string>());
        page.aside("        " + argument["why"].get<std::string>());
    }
}

std::string variableText(const json& value) {
    return value.is_null() ? "(not set)" : value.get<std::string>();
}

void addParts(TextPage& page, const json& variable) {
    for (const json& part : variable["parts"]) {
        page.aside("        " + partText(part));
    }
}

void addEnvironment(TextPage& page, const json& environment) {
    if (environment.empty()) {
        return;
    }
    page.heading("The environment");
    for (const json& variable : environment) {
        page.line("  " + variable["name"].get<std::string>() + ": " +
                  variableText(variable["before"]) + " -> " + variableText(variable["after"]));
        page.aside("        " + sourceText(variable["source"]));
        addParts(page, variable);
    }
}

void addFoldedEnvironment(TextPage& page, const json& environment) {
    if (environment.empty()) {
        return;
    }
    page.heading("The environment");
    for (const json& variable : environment) {
        page.line("  " + variable["name"].get<std::string>() + "=" +
                  variableText(variable["after"]) + sourceInBrackets(variable["source"]));
        addParts(page, variable);
    }
}

void addChanges(TextPage& page, const json& changes) {
    if (changes.empty()) {
        return;
    }
    page.heading("Files and directories");
    for (const json& change : changes) {
        page.pair(change["change"].get<std::string>() + " " + change["kind"].get<std::string>(),
                  change["path"].get<std::string>() +
                      (change.contains("to") ? " -> " + change["to"].get<std::string>() : ""));
    }
}

// "made 9 files", of each kind of change.
void addFoldedChanges(TextPage& page, const json& changes) {
    constexpr std::size_t kFew = 6;
    if (changes.size() <= kFew) {
        addChanges(page, changes);
        return;
    }
    page.heading("Files and directories");
    std::vector<std::pair<std::string, std::vector<std::string>>> kinds;
    for (const json& change : changes) {
        const std::string kind =
            change["change"].get<std::string>() + " " + change["kind"].get<std::string>();
        const auto same = std::find_if(kinds.begin(), kinds.end(),
                                       [&](const auto& one) { return one.first == kind; });
        auto& paths = same == kinds.end()
                          ? kinds.emplace_back(kind, std::vector<std::string>()).second
                          : same->second;
        paths.push_back(change["path"]);
    }
    for (const auto& [kind, paths] : kinds) {
        const std::size_t others = paths.size() - 1;
        page.pair(kind,
                  paths.front() + (others == 0 ? "" : " and " + std::to_string(others) + " more"));
    }
}

void addFoldedFiles(TextPage& page, const json& files) {
    if (files.empty()) {
        return;
    }
    page.heading("Property files");
    for (const json& file : files) {
        const auto unused =
            std::count_if(file["entries"].begin(), file["entries"].end(),
                          [](const json& entry) { return entry["state"] != "used"; });
        page.line("  " + file["path"].get<std::string>() + ": " +
                  std::to_string(file["entries"].size()) + " entries, " + std::to_string(unused) +
                  " of them without effect");
    }
}

void addCopies(TextPage& page, const json& copies) {
    if (copies.empty()) {
        return;
    }
    page.heading("The user's copies that differ from their masters");
    for (const json& copy : copies) {
        page.line("  " + baseName(copy["copy"]) + ": " + copy["message"].get<std::string>());
        page.aside("        " + copy["master"].get<std::string>() + ":" + copy["line"].dump());
    }
}

void addHandOff(TextPage& page, const json& handOff) {
    if (handOff.empty()) {
        return;
    }
    page.heading("What was examined of what it is handed to");
    for (const json& examined : handOff) {
        page.pair(examined["what"],
                  examined["path"].get<std::string>() +
                      (examined["faults"].empty() ? "" : ": not as it should be"));
    }
}

void addFiles(TextPage& page, const json& files) {
    for (const json& file : files) {
        page.heading("Properties of " + file["path"].get<std::string>());
        for (const json& entry : file["entries"]) {
            page.line("  " + entry["line"].dump() + "  " + entry["key"].get<std::string>() + "=" +
                      entry["value"].get<std::string>());
            page.aside("        " + entry["state"].get<std::string>() + ": " +
                       entry["by"].get<std::string>());
        }
    }
}

}  // namespace

std::string explanationText(const json& explanation, const TextForm& form) {
    TextPage page(form.isColored);
    addOutcome(page, explanation);
    form.isWhole ? addElements(page, explanation["elements"])
                 : addFoldedElements(page, explanation["elements"]);
    addDropped(page, explanation["dropped"]);
    form.isWhole ? addEnvironment(page, explanation["environment"])
                 : addFoldedEnvironment(page, explanation["environment"]);
    form.isWhole ? addChanges(page, explanation["changes"])
                 : addFoldedChanges(page, explanation["changes"]);
    if (form.isWhole) {
        addHandOff(page, explanation.value("handOff", json::array()));
    }
    addCopies(page, explanation.value("copies", json::array()));
    form.isWhole ? addFiles(page, explanation["files"])
                 : addFoldedFiles(page, explanation["files"]);
    if (!form.isWhole) {
        page.aside("\n--all tells every element with its rule, every change and every property.");
    }
    return page.text();
}

}  // namespace rcp::inspect
