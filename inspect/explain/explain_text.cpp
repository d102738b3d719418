#include "inspect/explain/explain_text.h"

#include <algorithm>

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

// Some placeholders are told with what encloses them, others by their names.
std::string placeholderText(const std::string& name) {
    return name.starts_with("${") ? name : "${" + name + "}";
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
            page.aside("        " + placeholderText(placeholder["name"]) + " = " +
                       placeholder["value"].get<std::string>());
        }
        for (const json& loser : element["instead"]) {
            page.aside("        not " + loser["text"].get<std::string>() + " (" +
                       sourceText(loser["source"]) + "): " + loser["why"].get<std::string>());
        }
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

std::string explanationText(const json& explanation, bool isColored) {
    Page page(isColored);
    addOutcome(page, explanation);
    addElements(page, explanation["elements"]);
    addDropped(page, explanation["dropped"]);
    addEnvironment(page, explanation["environment"]);
    addChanges(page, explanation["changes"]);
    addCopies(page, explanation.value("copies", json::array()));
    addFiles(page, explanation["files"]);
    return page.text();
}

}  // namespace rcp::inspect
