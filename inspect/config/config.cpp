#include "inspect/commands.h"
#include "inspect/explain/elements_text.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/quiet_read.h"
#include "launcher/vocabulary/configuration_words.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <stdlib.h>

#include <exception>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

namespace rcp::inspect {
namespace {

using nlohmann::json;

// Of each key and list the entry that counts; rcpinstall.properties is the user's own list.
json effectiveEntries(const json& explanation, std::set<std::string>& keys) {
    json effective = json::array();
    std::set<std::pair<bool, std::string>> known;
    for (const json& file : explanation["files"]) {
        const bool isUsers = keyFileOf(toWide(file["path"])) == kUserFile;
        for (const json& entry : file["entries"]) {
            const std::string key = entry["key"];
            keys.insert(key);
            if (known.emplace(isUsers, key).second) {
                effective.push_back({{"key", key},
                                     {"value", entry["value"]},
                                     {"effective", entry["effective"]},
                                     {"file", file["path"]},
                                     {"line", entry["line"]},
                                     {"state", entry["state"]},
                                     {"by", entry["by"]}});
            }
        }
    }
    return effective;
}

json unsetKeys(const std::set<std::string>& keys) {
    json unset = json::array();
    for (const PropertyKey& known : propertyKeys()) {
        const std::string key = toNarrow(std::wstring(known.key));
        if (known.tail == KeyTail::kNothing && known.files != kNoFile && !keys.contains(key)) {
            unset.push_back(
                {{"key", key},
                 {"default", known.otherwise == nullptr ? json() : json(toNarrow(known.otherwise))},
                 {"usage", known.usage}});
        }
    }
    return unset;
}

// Which variables a launch reads, and what for: its own, and those that entries name.
std::map<std::string, std::string> readVariables(const json& entries) {
    std::map<std::string, std::string> read;
    for (const VariableWords& known : variableWords()) {
        if (*known.isRead != '\0') {
            std::string usage = known.isRead;
            std::erase(usage, '`');  // which are a document's
            read.emplace(toNarrow(std::wstring(known.name)), usage);
        }
    }
    constexpr std::string_view kOpening = "${env.";
    for (const json& entry : entries) {
        const std::string value = entry["value"];
        for (std::size_t at = value.find(kOpening); at != std::string::npos;
             at = value.find(kOpening, at + 1)) {
            const std::size_t begin = at + kOpening.size();
            std::string& usage =
                read[value.substr(begin, value.find_first_of(",}", begin) - begin)];
            usage += (usage.empty() ? "in " : "; in ") + entry["key"].get<std::string>();
        }
    }
    return read;
}

// And those that it changes.
json variables(const json& explanation, const json& entries) {
    json told = json::array();
    for (const auto& [name, usage] : readVariables(entries)) {
        const char* value = getenv(name.c_str());
        told.push_back(
            {{"name", name}, {"value", value == nullptr ? json() : json(value)}, {"usage", usage}});
    }
    for (const json& change : explanation["environment"]) {
        told.push_back({{"name", change["name"]},
                        {"value", change["before"]},
                        {"after", change["after"]},
                        {"source", change["source"]},
                        {"parts", change["parts"]}});
    }
    return told;
}

json effectiveConfiguration(const json& explanation) {
    std::set<std::string> keys;
    json entries = effectiveEntries(explanation, keys);
    json told{{"layout", 1},
              {"command", "config"},
              {"launcher", explanation["launcher"]},
              {"installation", explanation["installation"]},
              {"unset", unsetKeys(keys)}};
    told["variables"] = variables(explanation, entries);
    told["entries"] = std::move(entries);
    return told;
}

std::string orNotSet(const json& value) {
    return value.is_null() ? "(not set)" : value.get<std::string>();
}

std::string variableText(const json& variable) {
    std::string text =
        "$" + variable["name"].get<std::string>() + "=" + orNotSet(variable["value"]);
    if (!variable.contains("after")) {
        return text + "    (" + variable["usage"].get<std::string>() + ")\n";
    }
    text += " becomes " + orNotSet(variable["after"]) + "    (" + sourceText(variable["source"]) +
            ")\n";
    for (const json& part : variable["parts"]) {
        text += "    " + partText(part) + "\n";
    }
    return text;
}

std::string toText(const json& told) {
    std::string text;
    for (const json& entry : told["entries"]) {
        text += entry["key"].get<std::string>() + "=" + entry["effective"].get<std::string>() +
                "    (" + baseName(entry["file"]) + ":" + entry["line"].dump() + ", " +
                entry["state"].get<std::string>() + ")\n";
    }
    text += "\n";
    for (const json& key : told["unset"]) {
        const std::string name = key["key"];
        text += key["default"].is_null()
                    ? "# " + name + " is not set: " + key["usage"].get<std::string>() + "\n"
                    : name + "=" + key["default"].get<std::string>() + "    (the default)\n";
    }
    text += "\n";
    for (const json& variable : told["variables"]) {
        text += variableText(variable);
    }
    return text;
}

// The files as they stand, every line with where it is.
std::string filesText(const json& explanation) {
    std::string text;
    for (const json& file : explanation["files"]) {
        const std::string path = file["path"];
        const std::string content = readQuietly(path, kLongestSettings + 1);
        std::istringstream lines(content.substr(0, kLongestSettings));
        std::size_t number = 0;
        for (std::string line; std::getline(lines, line);) {
            text += path + ":";
            text += std::to_string(++number) + ":";
            text += line + "\n";
        }
        text += content.size() > kLongestSettings ? path + " goes on\n" : "";
    }
    return text;
}

}  // namespace

int config(const Options& options) {
    if (options.isFiles && options.format != Format::kText) {
        std::cerr << "rcpinspect: config --files is text\n";
        return kWrongUse;
    }
    try {
        const json explanation = explainLaunch(options);
        if (explanation["files"].empty() && options.format == Format::kText) {
            std::cout << "# no file can be read: " + explanation["outcome"].value("record", "") +
                             "\n";
        }
        if (options.isFiles) {
            std::cout << filesText(explanation);
        } else if (options.format == Format::kJson) {
            std::cout << effectiveConfiguration(explanation)
                             .dump(2, ' ', false, json::error_handler_t::replace)
                      << '\n';
        } else {
            // A variable need not be UTF-8; the text is as it is.
            std::cout << toText(effectiveConfiguration(explanation));
        }
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
    return kSuccess;
}

}  // namespace rcp::inspect
