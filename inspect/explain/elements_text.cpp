#include "inspect/explain/elements_text.h"

#include <stdlib.h>

#include <set>

namespace rcp::inspect {
namespace {

using nlohmann::json;

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

void addLosers(TextPage& page, const json& element) {
    for (const json& loser : element["instead"]) {
        page.aside("        not " + loser["text"].get<std::string>() + " (" +
                   sourceText(loser["source"]) + "): " + loser["why"].get<std::string>());
    }
}

std::string inColumn(std::size_t number) {
    const std::string text = std::to_string(number);
    return std::string(text.size() < 4 ? 4 - text.size() : 0, ' ') + text + "  ";
}

bool isOption(const json& element) {
    return element["text"].get_ref<const std::string&>().starts_with('-');
}

// Of each variable once, however many elements it is in.
void addMissingVariables(TextPage& page, const json& element, std::set<std::string>& told) {
    for (const json& placeholder : element["placeholders"]) {
        const std::string variable = variableWithoutValue(placeholder);
        if (!variable.empty() && told.insert("$" + variable).second) {
            page.aside("        " + placeholderText(placeholder));
        }
    }
}

}  // namespace

void addElements(TextPage& page, const json& elements) {
    if (elements.empty()) {
        return;
    }
    page.heading("The command line, element by element");
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const json& element = elements[i];
        page.line(inColumn(i) + element["text"].get<std::string>());
        page.aside("        " + element["rule"].get<std::string>() + " (" +
                   sourceText(element["source"]) + ")");
        for (const json& placeholder : element["placeholders"]) {
            page.aside("        " + placeholderText(placeholder));
        }
        addLosers(page, element);
    }
}

// An option that the launcher has put in front of its value is told with it.
void addFoldedElements(TextPage& page, const json& elements) {
    if (elements.empty()) {
        return;
    }
    page.heading("The command line");
    std::set<std::string> told;
    std::size_t folded = 0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const std::size_t first = i;
        const bool isPair = isOption(elements[i]) && i + 1 < elements.size() &&
                            !isOption(elements[i + 1]) &&
                            elements[i]["source"]["kind"] == "computed";
        const json& element = elements[isPair ? ++i : i];
        const json& source = element["source"];
        const bool isNew = source["kind"] != "computed" && told.insert(source.dump()).second;
        if (first > 0 && !isNew) {
            folded += i - first + 1;
            continue;
        }
        page.line(inColumn(first) +
                  (isPair ? elements[first]["text"].get<std::string>() + " " : std::string()) +
                  element["text"].get<std::string>() + sourceInBrackets(source));
        addMissingVariables(page, element, told);
        addLosers(page, element);
    }
    if (folded > 0) {
        page.aside("      and " + std::to_string(folded) +
                   " that the launcher always writes, or makes of the same entries");
    }
}

std::string sourceInBrackets(const json& source) {
    return source["kind"] == "computed" ? std::string() : "    (" + sourceText(source) + ")";
}

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

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

std::string partText(const json& part) {
    return part["text"].get<std::string>() + " (" + sourceText(part["source"]) + ")";
}

// Some placeholders are told with what encloses them, others by their names.
std::string placeholderText(const json& placeholder) {
    const std::string name = placeholder["name"];
    const std::string variable = variableWithoutValue(placeholder);
    return (name.starts_with("${") ? name : "${" + name + "}") + " = " +
           placeholder["value"].get<std::string>() +
           (variable.empty() ? "" : ": " + variable + " is not set, its default is used");
}

}  // namespace rcp::inspect
