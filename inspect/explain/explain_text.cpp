#include "inspect/explain/explain_text.h"

#include <stdlib.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr const char* kBold = "\033[1m";
constexpr const char* kDim = "\033[2m";
constexpr const char* kPlain = "\033[0m";

class Page {
  public:
    explicit Page(bool isColored) : isColored_(isColored) {}

    void heading(const std::string& title) {
        text_ += (text_.empty() ? "" : "\n") + painted(kBold, title) + "\n";
    }
    void line(const std::string& text) { text_ += text + "\n"; }
    void aside(const std::string& text) { text_ += painted(kDim, text) + "\n"; }
    void pair(const std::string& name, const std::string& value) {
        text_ += "  " + name + std::string(name.size() < 15 ? 15 - name.size() : 1, ' ') + value;
        text_ += "\n";
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    [[nodiscard]] std::string painted(const char* color, const std::string& text) const {
        return isColored_ ? color + text + kPlain : text;
    }

    bool isColored_;
    std::string text_;
};

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string endText(const json& outcome) {
    const std::string kind = outcome["kind"];
    if (kind == "fatal") {
        return "it would end with status " + outcome["status"].dump();
    }
    if (kind == "ends") {
        return "it would end without starting anything";
    }
    const std::string program = outcome.value("program", "");
    if (kind == "in-process") {
        return "the platform runs in the launcher's own process, through " + program;
    }
    return (kind == "provisioning" ? "provisioning first: " : "") + ("it becomes " + program);
}

void addOutcome(Page& page, const json& explanation) {
    const json& outcome = explanation["outcome"];
    const json& facts = explanation["facts"];
    page.heading("What a launch would do");
    page.pair("end", endText(outcome));
    if (outcome.contains("record")) {
        page.pair("record", outcome["record"]);
    }
    if (outcome.contains("cause")) {
        page.pair("remedy", outcome["cause"]);
    }
    page.pair("role", outcome["role"]);
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

// The variable whose default an expanded placeholder is; empty of others.
std::string variableWithoutValue(const json& placeholder) {
    constexpr std::string_view kVariable = "env.";
    const std::string name = placeholder["name"];
    const std::size_t begin = name.find(kVariable);
    const std::size_t comma = name.find(',');
    if (begin == std::string::npos || begin > 2 || comma == std::string::npos) {
        return {};
    }
    const std::string variable =
        name.substr(begin + kVariable.size(), comma - begin - kVariable.size());
    return getenv(variable.c_str()) == nullptr ? variable : std::string();
}

void addLosers(Page& page, const json& element) {
    for (const json& loser : element["instead"]) {
        page.aside("        not " + loser["text"].get<std::string>() + " (" +
                   sourceText(loser["source"]) + "): " + loser["why"].get<std::string>());
    }
}

void addElements(Page& page, const json& elements) {
    if (elements.empty()) {
        return;
    }
    page.heading("The command line, element by element");
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const json& element = elements[i];
        const std::string number = std::to_string(i);
        page.line(std::string(number.size() < 4 ? 4 - number.size() : 0, ' ') + number + "  " +
                  element["text"].get<std::string>());
        page.aside("        " + element["rule"].get<std::string>() + " (" +
                   sourceText(element["source"]) + ")");
        for (const json& placeholder : element["placeholders"]) {
            page.aside("        " + placeholderText(placeholder));
        }
        addLosers(page, element);
    }
}

std::string inColumn(std::size_t number) {
    const std::string text = std::to_string(number);
    return std::string(text.size() < 4 ? 4 - text.size() : 0, ' ') + text + "  ";
}

// "    (rcplauncher.properties:12 vm)"; nothing of what the launcher makes itself.
std::string sourceBehind(const json& source) {
    return source["kind"] == "computed" ? std::string() : "    (" + sourceText(source) + ")";
}

bool isOption(const json& element) {
    return element["text"].get_ref<const std::string&>().starts_with('-');
}

// An option that the launcher has put in front of its value is told with it.
void addFoldedElements(Page& page, const json& elements) {
    if (elements.empty()) {
        return;
    }
    page.heading("The command line");
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const bool isPair = isOption(elements[i]) && i + 1 < elements.size() &&
                            !isOption(elements[i + 1]) &&
                            elements[i]["source"]["kind"] == "computed";
        const std::string front =
            inColumn(i) + (isPair ? elements[i]["text"].get<std::string>() + " " : std::string());
        i += isPair ? 1 : 0;
        const json& element = elements[i];
        page.line(front + element["text"].get<std::string>() + sourceBehind(element["source"]));
        for (const json& placeholder : element["placeholders"]) {
            if (!variableWithoutValue(placeholder).empty()) {
                page.aside("        " + placeholderText(placeholder));
            }
        }
        addLosers(page, element);
    }
}

void addDropped(Page& page, const json& dropped) {
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

void addEnvironment(Page& page, const json& environment) {
    if (environment.empty()) {
        return;
    }
    page.heading("The environment");
    for (const json& variable : environment) {
        page.line("  " + variable["name"].get<std::string>() + ": " +
                  variableText(variable["before"]) + " -> " + variableText(variable["after"]));
        page.aside("        " + sourceText(variable["source"]));
    }
}

void addFoldedEnvironment(Page& page, const json& environment) {
    if (environment.empty()) {
        return;
    }
    page.heading("The environment");
    for (const json& variable : environment) {
        page.line("  " + variable["name"].get<std::string>() + "=" +
                  variableText(variable["after"]) + sourceBehind(variable["source"]));
    }
}

void addChanges(Page& page, const json& changes) {
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
void addFoldedChanges(Page& page, const json& changes) {
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

void addFoldedFiles(Page& page, const json& files) {
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

void addCopies(Page& page, const json& copies) {
    if (copies.empty()) {
        return;
    }
    page.heading("The user's copies that differ from their masters");
    for (const json& copy : copies) {
        page.line("  " + baseName(copy["copy"]) + ": " + copy["message"].get<std::string>());
        page.aside("        " + copy["master"].get<std::string>() + ":" + copy["line"].dump());
    }
}

void addFiles(Page& page, const json& files) {
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

std::string sourceText(const json& source) {
    const std::string kind = source["kind"];
    if (kind == "file") {
        const std::string name = baseName(source["file"]);
        const std::string line = source["line"] == 0 ? "" : ":" + source["line"].dump();
        return name + line + (source.contains("key") ? " " + source["key"].get<std::string>() : "");
    }
    if (kind == "command line") {
        return "argument " + source["position"].dump();
    }
    return kind == "environment" ? "variable " + source["name"].get<std::string>() : "the launcher";
}

// Some placeholders are told with what encloses them, others by their names.
std::string placeholderText(const json& placeholder) {
    const std::string name = placeholder["name"];
    const std::string variable = variableWithoutValue(placeholder);
    return (name.starts_with("${") ? name : "${" + name + "}") + " = " +
           placeholder["value"].get<std::string>() +
           (variable.empty() ? "" : ": " + variable + " is not set, its default is used");
}

std::string explanationText(const json& explanation, const TextForm& form) {
    Page page(form.isColored);
    addOutcome(page, explanation);
    form.isWhole ? addElements(page, explanation["elements"])
                 : addFoldedElements(page, explanation["elements"]);
    addDropped(page, explanation["dropped"]);
    form.isWhole ? addEnvironment(page, explanation["environment"])
                 : addFoldedEnvironment(page, explanation["environment"]);
    form.isWhole ? addChanges(page, explanation["changes"])
                 : addFoldedChanges(page, explanation["changes"]);
    addCopies(page, explanation.value("copies", json::array()));
    form.isWhole ? addFiles(page, explanation["files"])
                 : addFoldedFiles(page, explanation["files"]);
    if (!form.isWhole) {
        page.aside("\n--all tells every element with its rule, every change and every property.");
    }
    return page.text();
}

}  // namespace rcp::inspect
