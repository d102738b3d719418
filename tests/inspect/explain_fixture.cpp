#include "tests/inspect/explain_fixture.h"

#include "tests/inspect/paths.h"

#include <algorithm>
#include <sstream>

namespace rcp::inspect::test {
namespace {

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

Words ExplainTest::launchEnvironment() const {
    Words all = environment();
    all.insert(all.end(), variables_.begin(), variables_.end());
    return all;
}

Words ExplainTest::explainWords(const Words& arguments, const Words& options) const {
    Words all = {seen(INSPECT_PROGRAM), "explain", "--install", installation()};
    all.insert(all.end(), options.begin(), options.end());
    all.emplace_back("--");
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

Json ExplainTest::explain(const Words& arguments) const {
    Program program(explainWords(arguments, {"--format", "json"}), launchEnvironment());
    const std::string output = program.rest();
    EXPECT_EQ(program.wait(), 0);
    return Json::parse(output);
}

std::string ExplainTest::explainText(const Words& arguments, const Words& options) const {
    Program program(explainWords(arguments, options), launchEnvironment());
    std::string output = program.rest();
    EXPECT_EQ(program.wait(), 0);
    return output;
}

Json ExplainTest::element(const Json& explanation, const std::string& text) {
    Json found;
    for (const Json& element : explanation["elements"]) {
        found = element["text"] == text ? element : found;
    }
    EXPECT_FALSE(found.is_null()) << text << " is not in " << explanation["elements"].dump(1);
    return found;
}

Json ExplainTest::valueOf(const Json& explanation, const std::string& option) {
    const Json& elements = explanation["elements"];
    for (std::size_t i = 0; i + 1 < elements.size(); ++i) {
        if (elements[i]["text"] == option) {
            return elements[i + 1];
        }
    }
    ADD_FAILURE() << option << " is not in " << elements.dump(1);
    return {};
}

bool ExplainTest::hasElement(const Json& explanation, const std::string& text) {
    const Json& elements = explanation["elements"];
    return std::any_of(elements.begin(), elements.end(),
                       [&](const Json& element) { return element["text"] == text; });
}

std::string ExplainTest::sourceOf(const Json& described) {
    const Json& source = described.at("source");
    const std::string kind = source["kind"];
    if (kind == "file") {
        return baseName(source["file"]) +
               (source.contains("key") ? " " + source["key"].get<std::string>() : "");
    }
    if (kind == "command line") {
        return "argument " + source["position"].dump();
    }
    return kind == "environment" ? "variable " + source["name"].get<std::string>() : kind;
}

std::string ExplainTest::losersOf(const Json& element) {
    std::string text;
    for (const Json& loser : element["instead"]) {
        text += loser["text"].get<std::string>() + " from " + sourceOf(loser) + ": " +
                loser["why"].get<std::string>() + "\n";
    }
    return text;
}

std::string ExplainTest::placeholdersOf(const Json& element) {
    std::string text;
    for (const Json& placeholder : element["placeholders"]) {
        text += placeholder["name"].get<std::string>() + "=" +
                placeholder["value"].get<std::string>() + "\n";
    }
    return text;
}

std::string ExplainTest::whyDropped(const Json& explanation, std::size_t position) {
    for (const Json& argument : explanation["dropped"]) {
        if (argument["position"] == position) {
            return argument["why"];
        }
    }
    return "not dropped";
}

std::string ExplainTest::useOf(const Json& explanation, const std::string& file,
                               const std::string& key) const {
    std::string text;
    for (const Json& described : explanation["files"]) {
        if (baseName(described["path"]) != file) {
            continue;
        }
        for (const Json& entry : described["entries"]) {
            if (entry["key"] == key) {
                text += entry["state"].get<std::string>() + ": " + baseName(portable(entry["by"])) +
                        "\n";
            }
        }
    }
    return text;
}

std::string ExplainTest::changesOf(const Json& explanation) const {
    std::string text;
    for (const Json& change : explanation["changes"]) {
        if (baseName(change["path"]).starts_with("rcplauncher")) {
            continue;
        }
        text += change["change"].get<std::string>() + " " + change["kind"].get<std::string>() +
                " " + change["path"].get<std::string>();
        text += change.contains("to") ? " -> " + change["to"].get<std::string>() : "";
        text += "\n";
    }
    return portable(text);
}

std::size_t ExplainTest::lineOf(const std::string& beginning) const {
    std::istringstream lines(folder_.read(kProperties));
    std::size_t number = 0;
    std::size_t found = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        found = line.starts_with(beginning) ? number : found;
    }
    return found;
}

std::string ExplainTest::valueIn(const std::string& key) const {
    std::istringstream lines(folder_.read(kProperties));
    std::string line;
    for (std::size_t left = lineOf(key + "="); left > 0; --left) {
        std::getline(lines, line);
    }
    return line.substr(key.size() + 1);
}

std::string ExplainTest::portable(std::string text) const {
    const std::string folder = folder_.path().string() + "/";
    for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;) {
        text.erase(at, folder.size());
    }
    return text;
}

}  // namespace rcp::inspect::test
