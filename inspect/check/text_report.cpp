// The findings for people: by file, and what is alike told once.
#include "inspect/check/report.h"

#include <map>
#include <utility>
#include <vector>

namespace rcp::inspect {
namespace {

// Of one kind in one file, in the order of the lines.
using Group = std::vector<const Finding*>;

// So many of a group are shown, and one more where it is the last.
constexpr std::size_t kShown = 4;

std::string colored(const std::string& text, const char* code, bool isColored) {
    return isColored ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
}

// "9,996"
std::string withSeparators(std::size_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, ",");
    }
    return text;
}

std::string counted(std::size_t count, const std::string& what) {
    return withSeparators(count) + " " + what + (count == 1 ? "" : "s");
}

// In the order of files, in each by the first line of the kind.
std::vector<Group> groupsOf(const std::vector<Finding>& findings) {
    std::vector<Group> groups;
    std::map<std::pair<std::string_view, const FindingRule*>, std::size_t> known;
    for (const Finding& finding : findings) {
        const auto [at, isNew] = known.try_emplace({finding.file, finding.rule}, groups.size());
        if (isNew) {
            groups.emplace_back();
        }
        groups[at->second].push_back(&finding);
    }
    return groups;
}

std::string lineOf(const Finding& finding, bool isColored) {
    const bool isError = finding.rule->level == Level::kError;
    const std::string line = finding.line == 0 ? "" : std::to_string(finding.line) + ": ";
    return "  " + line + colored(levelName(finding.rule->level), isError ? "31" : "33", isColored) +
           " " + finding.rule->code + " " + finding.rule->name + ": " + finding.message + "\n";
}

std::string groupText(const Group& group, const TextForm& form) {
    const FindingRule& rule = *group.front()->rule;
    const bool isWhole = form.isWhole || group.size() <= kShown + 1;
    std::string text;
    for (std::size_t i = 0; i < (isWhole ? group.size() : kShown); ++i) {
        text += lineOf(*group[i], form.isColored);
    }
    if (!isWhole) {
        text += "  … and " + withSeparators(group.size() - kShown) + " more " +
                (rule.several == nullptr ? "of these" : rule.several) + "; --all lists them\n";
    }
    return text + "      " + rule.meaning + "\n      -> " + rule.remedy + "\n";
}

}  // namespace

std::string textReport(const Examination& examination, const Findings& findings,
                       const TextForm& form) {
    const std::vector<Finding> sorted = findings.sorted();
    std::string text;
    std::string_view file;
    for (const Group& group : groupsOf(sorted)) {
        if (group.front()->file != file) {
            file = group.front()->file;
            text +=
                (text.empty() ? "" : "\n") + colored(std::string(file), "1", form.isColored) + "\n";
        }
        text += groupText(group, form);
    }
    const std::size_t errors = findings.count(Level::kError);
    const std::size_t warnings = findings.count(Level::kWarning);
    text += text.empty() ? "" : "\n";
    text += examination.installation + ": ";
    text += errors + warnings == 0 ? "nothing found"
                                   : counted(errors, "error") + ", " + counted(warnings, "warning");
    return text + "\n";
}

}  // namespace rcp::inspect
