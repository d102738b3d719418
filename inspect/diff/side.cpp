#include "inspect/diff/side.h"

#include "base/system_calls.h"
#include "inspect/check/examination.h"
#include "inspect/check/groups.h"
#include "inspect/copies/describe_copies.h"
#include "inspect/diff/recorded_launch.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/handoff/describe_hand_off.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "inspect/status/last_launch.h"
#include "platform/text.h"

#include <sys/stat.h>
#include <time.h>

#include <array>
#include <set>
#include <stdexcept>
#include <utility>

namespace rcp::inspect {
namespace {

using nlohmann::json;

std::string dateOf(time_t time) {
    std::array<char, 32> text{};
    tm parts{};
    gmtime_r(&time, &parts);
    const std::size_t length = strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &parts);
    return {text.data(), length};
}

// Of the settings' last change; null when they cannot be looked at.
json settingsDate(const std::string& installation) {
    struct stat status {};
    return calls::stat((installation + "/rcp/rcplauncher.properties").c_str(), &status) == 0
               ? json(dateOf(status.st_mtime))
               : json();
}

json outcomeOf(const json& explanation) {
    json outcome;
    for (const char* name : {"kind", "role", "record", "obstacle"}) {
        if (explanation["outcome"].contains(name)) {
            outcome[name] = explanation["outcome"][name];
        }
    }
    return outcome;
}

json levelOf(const json& explanation) {
    const json provisioning = explanation["facts"].value("provisioning", json());
    return provisioning.is_null() ? json() : provisioning["installationLevel"];
}

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// Of every key the entry that wins among the files of its list; the user's file is a list of its own.
json propertiesOf(const json& files) {
    constexpr const char* kUsers = "rcpinstall.properties";
    json properties = json::array();
    std::set<std::pair<std::string, std::string>> known;
    for (const json& file : files) {
        const std::string list = baseName(file["path"]) == kUsers ? kUsers : "";
        for (const json& entry : file["entries"]) {
            const std::string key = entry["key"];
            if (known.emplace(list, key).second) {
                properties.push_back({{"name", key},
                                      {"value", entry["value"]},
                                      {"source",
                                       {{"kind", "file"},
                                        {"file", file["path"]},
                                        {"line", entry["line"]},
                                        {"key", key},
                                        {"value", entry["value"]}}}});
            }
        }
    }
    return properties;
}

json findingsOf(const Examination& examination) {
    json findings = json::array();
    for (const Finding& finding : findEverything(examination).sorted()) {
        findings.push_back({{"code", finding.rule->code},
                            {"name", finding.rule->name},
                            {"level", levelName(finding.rule->level)},
                            {"file", finding.file},
                            {"line", finding.line},
                            {"message", finding.message}});
    }
    // A message may quote what is not UTF-8.
    return json::parse(findings.dump(-1, ' ', false, json::error_handler_t::replace));
}

// What a launch writes is none of its files, and the settings are compared entry by entry.
Tree treeOf(const Options& options, const json& explanation) {
    const json& facts = explanation["facts"];
    Tree tree{.path = options.installation,
              .without = {facts.value("workspace", std::string()),
                          facts.value("configuration", std::string())},
              .settings = {},
              .place = placeOf(options.installation)};
    for (const json& file : explanation["files"]) {
        tree.settings.push_back(file["path"]);
    }
    return tree;
}

}  // namespace

Side explainedSide(const Options& options) {
    json explanation = explainLaunch(options);
    const Examination examination = examine(options);
    tellObstacle(explanation, examination);
    return {.about = {{"launcher", options.launcher},
                      {"installation", options.installation},
                      {"level", levelOf(explanation)},
                      {"date", settingsDate(options.installation)},
                      {"outcome", outcomeOf(explanation)}},
            .elements = explanation["elements"],
            .environment = explanation["environment"],
            .properties = propertiesOf(explanation["files"]),
            .copies = describeStaleCopies(examination),
            .findings = findingsOf(examination),
            .files = treeOf(options, explanation)};
}

RecordedLaunch recordedLaunch(const Options& options) {
    const json facts = explainLaunch(options)["facts"];
    const std::string logs = facts.value("workspace", std::string()) + "/logs";
    const auto last = lastLaunch(logs, options);
    if (!last) {
        throw std::runtime_error("no launch is recorded in " + logs);
    }
    const std::string log = readQuietly(last->log, kLongestLog);
    const auto elements = recordedElements(log);
    if (!elements) {
        throw std::runtime_error(log.size() < kLongestLog
                                     ? "the launch of " + last->log + " started no platform"
                                     : last->log + " is too long to look for the launch");
    }
    RecordedLaunch launch;
    launch.arguments = recordedArguments(log, *elements).value_or(options.arguments);
    launch.side.about = {{"log", last->log},
                         {"installation", options.installation},
                         {"date", dateOf(last->time.tv_sec)},
                         {"arguments", launch.arguments}};
    launch.side.elements = json::array();
    for (const std::string& element : *elements) {
        launch.side.elements.push_back({{"text", element}});
    }
    return launch;
}

}  // namespace rcp::inspect
