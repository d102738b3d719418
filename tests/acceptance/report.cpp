#include "report.h"

#include "json.h"

#include <algorithm>

namespace acceptance {

int Report::indexOf(const std::string& argument) const {
    const auto found = std::find(arguments.begin(), arguments.end(), argument);
    return found == arguments.end() ? -1 : static_cast<int>(found - arguments.begin());
}

int Report::count(const std::string& argument) const {
    return static_cast<int>(std::count(arguments.begin(), arguments.end(), argument));
}

std::string Report::after(const std::string& option) const {
    const auto found = std::find(arguments.begin(), arguments.end(), option);
    return arguments.end() - found < 2 ? "(none)" : *(found + 1);
}

Texts Report::between(const std::string& begin, const std::string& end) const {
    auto first = std::find(arguments.begin(), arguments.end(), begin);
    if (first != arguments.end()) {
        ++first;
    }
    return {first, std::find(first, arguments.end(), end)};
}

Texts Report::behind(const std::string& option) const {
    const auto last = std::find(arguments.rbegin(), arguments.rend(), option);
    return last == arguments.rend() ? Texts() : Texts(last.base(), arguments.end());
}

std::string Report::variable(const std::string& name) const {
    const auto found = environment.find(name);
    return found == environment.end() ? "(unset)" : found->second;
}

Report parseReport(const std::string& text) {
    const Json json = parseJson(text);
    Report report;
    report.kind = json["kind"].text;
    report.pid = static_cast<pid_t>(json["pid"].number);
    report.folder = json["cwd"].text;
    if (json.has("argc")) {
        report.argc = json["argc"].number;
    }
    report.arguments = json["argv"].texts();
    report.library = json["library"].text;
    if (json.has("runArgc")) {
        report.runArgc = json["runArgc"].number;
    }
    report.runArguments = json["runArgv"].texts();
    if (!json["vmArgs"].isNull()) {
        report.vmArguments = json["vmArgs"].texts();
    }
    for (const Json& variable : json["environment"].list) {
        const size_t equals = variable.text.find('=');
        const std::string name = variable.text.substr(0, equals);
        // Those of the stand-in, and one that macOS gives to every process.
        if (!name.starts_with("RCP_STANDIN_") && name != "__CF_USER_TEXT_ENCODING") {
            report.environment[name] =
                equals == std::string::npos ? "" : variable.text.substr(equals + 1);
        }
    }
    for (const Json& entry : json["descriptors"].list) {
        report.descriptors[static_cast<int>(entry["fd"].number)] = entry["target"].text;
    }
    return report;
}

}  // namespace acceptance
