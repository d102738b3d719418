#include "inspect/check/report.h"

#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kSchema[] =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";
constexpr char kBase[] = "INSTALLATION";

bool isUnreserved(unsigned char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') ||
           std::string_view("-._~/").find(static_cast<char>(byte)) != std::string_view::npos;
}

Json sarifRule(const FindingRule& rule) {
    return {{"id", rule.code},
            {"name", rule.name},
            {"shortDescription", {{"text", rule.meaning}}},
            {"fullDescription", {{"text", rule.meaning}}},
            {"help", {{"text", rule.remedy}}},
            {"defaultConfiguration", {{"level", levelName(rule.level)}}}};
}

Json sarifLocation(const Finding& finding) {
    if (finding.file == kEnvironmentPlace) {
        return {{"logicalLocations", Json::array({{{"name", finding.file}}})}};
    }
    Json artifact;
    if (finding.file.starts_with('/')) {
        artifact["uri"] = "file://" + uriOf(finding.file);
    } else {
        artifact["uri"] = uriOf(finding.file);
        artifact["uriBaseId"] = kBase;
    }
    Json physical{{"artifactLocation", artifact}};
    if (finding.line > 0) {
        physical["region"] = {{"startLine", finding.line}};
    }
    return {{"physicalLocation", physical}};
}

Json sarifResult(const Finding& finding) {
    const FindingRule* first = findingRules().data();
    return {
        {"ruleId", finding.rule->code},
        {"ruleIndex", finding.rule - first},
        {"level", levelName(finding.rule->level)},
        {"message",
         {{"text", finding.message + ". " + finding.rule->meaning + " " + finding.rule->remedy}}},
        {"locations", Json::array({sarifLocation(finding)})}};
}

}  // namespace

std::string uriOf(const std::string& path) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri;
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (isUnreserved(byte)) {
            uri += character;
        } else {
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return uri;
}

Json jsonReport(const Examination& examination, const Findings& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings.sorted()) {
        list.push_back({{"code", finding.rule->code},
                        {"name", finding.rule->name},
                        {"level", levelName(finding.rule->level)},
                        {"file", finding.file},
                        {"line", finding.line},
                        {"message", finding.message},
                        {"meaning", finding.rule->meaning},
                        {"remedy", finding.rule->remedy}});
    }
    return {{"layout", 1},
            {"command", "check"},
            {"installation", examination.installation},
            {"findings", list},
            {"summary",
             {{"errors", findings.count(Level::kError)},
              {"warnings", findings.count(Level::kWarning)}}}};
}

Json sarifReport(const Examination& examination, const Findings& findings) {
    Json rules = Json::array();
    for (const FindingRule& rule : findingRules()) {
        rules.push_back(sarifRule(rule));
    }
    Json results = Json::array();
    for (const Finding& finding : findings.sorted()) {
        results.push_back(sarifResult(finding));
    }
    const Json driver{{"name", "rcpinspect"}, {"version", RCP_VERSION}, {"rules", rules}};
    const Json run{{"tool", {{"driver", driver}}},
                   {"columnKind", "unicodeCodePoints"},
                   {"originalUriBaseIds",
                    {{kBase, {{"uri", "file://" + uriOf(examination.installation) + "/"}}}}},
                   {"results", results}};
    return {{"$schema", kSchema}, {"version", "2.1.0"}, {"runs", Json::array({run})}};
}

std::string dump(const Json& report) {
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace rcp::inspect
