#include "inspect/commands.h"
#include "inspect/diff/sequence_diff.h"
#include "inspect/explain/explain_text.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/quiet_read.h"
#include "inspect/status/last_launch.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr std::string_view kBegin = "ZYPRA0132I: ===== Begin Launch Parameters =====";
constexpr std::string_view kEnd = "ZYPRA0133I: ===== End Launch Parameters =====";

// One of the two things that are compared.
struct Side {
    json about;     // what the layout tells of it
    json elements;  // text and, of an explained launch, source
    json environment = json::array();
};

Side explained(const Options& options) {
    const json explanation = explainLaunch(options);
    Side side{{{"launcher", options.launcher}, {"installation", options.installation}},
              explanation["elements"],
              explanation["environment"]};
    if (explanation["outcome"].contains("record")) {
        side.about["record"] = explanation["outcome"]["record"];
    }
    return side;
}

// The launch that wrote last into the log of the workspace that a launch would use now.
Side recorded(const Options& options) {
    const json facts = explainLaunch(options)["facts"];
    const std::string logs = facts.value("workspace", std::string()) + "/logs";
    const auto last = lastLaunch(logs, options.launcher);
    if (!last) {
        throw std::runtime_error("no launch is recorded in " + logs);
    }
    json elements = json::array();
    std::istringstream log(readQuietly(last->log));
    bool isInside = false;
    for (std::string line; std::getline(log, line) && line != kEnd;) {
        if (isInside) {
            elements.push_back({{"text", line}});
        }
        isInside |= line == kBegin;
    }
    if (!isInside) {
        throw std::runtime_error("the launch of " + last->log + " started no platform");
    }
    return {{{"log", last->log}}, elements, {}};
}

// A text as it would be if the installation lay elsewhere: that it does is no difference.
std::string comparable(std::string text, const Side& side) {
    const std::string home = side.about.value("installation", std::string());
    for (std::size_t at = home.empty() ? std::string::npos : text.find(home);
         at != std::string::npos; at = text.find(home, at)) {
        text.replace(at, home.size(), "${rcp.home}");
    }
    return text;
}

std::vector<std::string> comparableElements(const Side& side) {
    std::vector<std::string> texts;
    for (const json& element : side.elements) {
        texts.push_back(comparable(element["text"], side));
    }
    return texts;
}

// "NAME=value", or the name alone of a variable that is removed.
std::string comparableVariable(const json& variable, const Side& side) {
    const json& value = variable["after"];
    const std::string name = variable["name"];
    return value.is_null() ? name : name + "=" + comparable(value, side);
}

json describe(const Edit& edit, const Side& first, const Side& second) {
    const json& element = (edit.isAdded ? second : first).elements[edit.position];
    json described{{"change", edit.isAdded ? "added" : "removed"},
                   {"element", edit.position},
                   {"text", element["text"]}};
    if (element.contains("source")) {
        described["source"] = element["source"];
    }
    return described;
}

// The variables of one side that the other has not, or not with this value.
void addMissing(json& differences, const Side& side, const Side& other, const char* change) {
    for (const json& variable : side.environment) {
        const std::string wanted = comparableVariable(variable, side);
        const bool isThere =
            std::any_of(other.environment.begin(), other.environment.end(),
                        [&](const json& one) { return comparableVariable(one, other) == wanted; });
        if (!isThere) {
            differences.push_back({{"change", change},
                                   {"name", variable["name"]},
                                   {"value", variable["after"]},
                                   {"source", variable["source"]}});
        }
    }
}

json compare(const Side& first, const Side& second, bool withVariables) {
    json result{{"layout", 1},
                {"command", "diff"},
                {"first", first.about},
                {"second", second.about},
                {"elements", json::array()},
                {"environment", json::array()}};
    for (const Edit& edit : differences(comparableElements(first), comparableElements(second))) {
        result["elements"].push_back(describe(edit, first, second));
    }
    if (withVariables) {
        addMissing(result["environment"], first, second, "removed");
        addMissing(result["environment"], second, first, "added");
    }
    return result;
}

std::string lineText(const json& difference, const std::string& text) {
    return (difference["change"] == "added" ? "+ " : "- ") + text +
           (difference.contains("source") ? "    (" + sourceText(difference["source"]) + ")" : "") +
           "\n";
}

std::string toText(const json& result) {
    std::string text;
    for (const char* name : {"first", "second"}) {
        if (result[name].contains("record")) {
            text += std::string("! the ") + name + " would end with " +
                    result[name]["record"].get<std::string>() + "\n";
        }
    }
    for (const json& difference : result["elements"]) {
        text += lineText(difference, difference["text"]);
    }
    for (const json& difference : result["environment"]) {
        const json& value = difference["value"];
        text +=
            lineText(difference, difference["name"].get<std::string>() + "=" +
                                     (value.is_null() ? "(not set)" : value.get<std::string>()));
    }
    return text.empty() ? "no difference\n" : text;
}

json compareAsAsked(const Options& options) {
    if (options.isSinceLast) {
        Side now = explained(options);
        Side last = recorded(options);
        last.about["installation"] = options.installation;
        return compare(last, now, false);
    }
    Options other = options;
    other.launcher = options.other;
    other.installation = installationOf(options.other);
    return compare(explained(options), explained(other), true);
}

}  // namespace

int diff(const Options& options) {
    if (options.isSinceLast != options.other.empty()) {
        std::cerr << "rcpinspect: diff wants either --with DIR or --since-last\n";
        return kWrongUse;
    }
    try {
        const json result = compareAsAsked(options);
        if (options.format == Format::kJson) {
            std::cout << result.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
        } else {
            std::cout << toText(result);
        }
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
    return kSuccess;
}

}  // namespace rcp::inspect
