#include "inspect/check/finding.h"

#include "diagnostics/format.h"

#include <algorithm>
#include <map>

namespace rcp::inspect {

const char* levelName(Level level) {
    return level == Level::kError ? "error" : "warning";
}

std::string inQuotes(std::wstring_view text) {
    return inQuotes(toUtf8(text));
}

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

void Findings::add(std::string_view code, const std::string& file, std::size_t line,
                   const std::string& message) {
    const auto rules = findingRules();
    const auto rule = std::find_if(rules.begin(), rules.end(),
                                   [code](const FindingRule& known) { return known.code == code; });
    if (known_.emplace(rule->code, file, line, message).second) {
        findings_.push_back({&*rule, file, line, message});
    }
}

std::vector<Finding> Findings::sorted() const {
    std::map<std::string, std::size_t> order;
    for (const Finding& finding : findings_) {
        order.emplace(finding.file, order.size());
    }
    std::vector<Finding> all = findings_;
    std::stable_sort(all.begin(), all.end(), [&](const Finding& left, const Finding& right) {
        if (left.file != right.file) {
            return order[left.file] < order[right.file];
        }
        return left.line != right.line ? left.line < right.line
                                       : std::string_view(left.rule->code) < right.rule->code;
    });
    return all;
}

std::size_t Findings::count(Level level) const {
    return static_cast<std::size_t>(
        std::count_if(findings_.begin(), findings_.end(),
                      [level](const Finding& finding) { return finding.rule->level == level; }));
}

bool Findings::has(std::string_view code) const {
    return std::any_of(findings_.begin(), findings_.end(),
                       [code](const Finding& finding) { return finding.rule->code == code; });
}

}  // namespace rcp::inspect
