#include "inspect/handoff/rehearsed_end.h"

#include "inspect/explain/rehearse_launch.h"
#include "inspect/handoff/room.h"
#include "platform/text.h"

#include <ctype.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr std::size_t kNowhere = std::string::npos;

struct Place {
    std::string file;
    std::size_t line = 0;
    std::string text = {};  // behind the message, where neither tells it
};

Place findingPlace(const json& outcome, const Examination& examination) {
    const json source = outcome.value("source", json::object());
    const std::string kind = source.value("kind", "");
    if (kind == "file") {
        return {examination.nameOf(toWide(source["file"])), source["line"]};
    }
    const std::string file = examination.launcherFile();
    return kind == "command line"  ? Place{file, 0, " (argument " + source["position"].dump() + ")"}
           : kind == "environment" ? Place{file, 0, " (" + source["name"].get<std::string>() + ")"}
                                   : Place{file};
}

bool isOfWord(std::string_view text, std::size_t at) {
    const auto isLetter = [&](std::size_t i) {
        return i < text.size() && isalnum(static_cast<unsigned char>(text[i])) != 0;
    };
    return at < text.size() && (isLetter(at) || text[at] == '_' || text[at] == '-' ||
                                (text[at] == '.' && isLetter(at + 1)));
}

// A whole word or path, the end of a path, or a folder above one.
bool names(std::string_view record, std::string_view piece) {
    const bool isPath = piece.find('/') != kNowhere;
    for (std::size_t at = record.find(piece); at != kNowhere; at = record.find(piece, at + 1)) {
        const std::size_t end = at + piece.size();
        const bool isInPath = (at > 0 && record[at - 1] == '/') || record.substr(end, 1) == "/";
        if ((at == 0 || !isOfWord(record, at - 1)) && !isOfWord(record, end) &&
            (isPath || !isInPath)) {
            return true;
        }
    }
    return false;
}

// Whether the record is about something that the finding names in quotes.
bool isAbout(const std::string& record, const std::string& message) {
    for (std::size_t begin = message.find('"'); begin != std::string::npos;) {
        const std::size_t end = message.find('"', begin + 1);
        if (end == std::string::npos) {
            return false;
        }
        if (end > begin + 1 &&
            names(record, std::string_view(message).substr(begin + 1, end - begin - 1))) {
            return true;
        }
        begin = message.find('"', end + 1);
    }
    return false;
}

// What is the matter with a line or file tells more than that the launch ends there. That a variable is
// not set is so here and may be otherwise where the launcher is started.
bool tells(const Finding& finding, const Place& place, const std::string& record,
           const Examination& examination) {
    // An end that comes from no line is told of the launcher's file as a whole.
    const bool isSameLine = place.line != 0 && finding.file == place.file &&
                            finding.line == place.line && place.text.empty();
    if (finding.rule->level == Level::kWarning) {
        return isSameLine && finding.rule->code == std::string_view("RI302");
    }
    const bool isOfFile = finding.line == 0 && finding.file != examination.launcherFile() &&
                          record.find(finding.file) != kNowhere;
    return isSameLine || isOfFile || record.starts_with(finding.message) ||
           isAbout(record, finding.message);
}

}  // namespace

void findInRehearsal(const Options& options, const Examination& examination, Findings& findings) {
    const json end = rehearseEnd(options);
    addFaults(examineRoom(end["writes"]), findings);
    const json& outcome = end["outcome"];
    if (outcome["kind"] != "fatal") {
        return;
    }
    const std::string record = outcome.value("record", "it leaves no record");
    const Place place = findingPlace(outcome, examination);
    const std::vector<Finding> known = findings.sorted();
    if (std::none_of(known.begin(), known.end(), [&](const Finding& finding) {
            return tells(finding, place, record, examination);
        })) {
        findings.add("RI505", place.file, place.line, record + place.text);
    }
}

}  // namespace rcp::inspect
