#include "inspect/doctor/evidence.h"

#include "inspect/check/groups.h"
#include "inspect/explain/rehearse_launch.h"
#include "inspect/handoff/describe_hand_off.h"
#include "inspect/handoff/try_jvm.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace rcp::inspect {
namespace {

bool standsAt(const Finding& finding, const Examination& examination, Key key) {
    const Origin origin = examination.originOf(key);
    return origin.file && finding.line == origin.line && finding.file == examination.nameOf(origin);
}

// What is missing belongs to what the entry is about that leads there.
Subject subjectOfPath(const Finding& finding, const Examination& examination) {
    return standsAt(finding, examination, keys::kBaseLocation)  ? Subject::kBase
           : standsAt(finding, examination, keys::kJvmLocation) ? Subject::kJvm
                                                                : Subject::kInstallation;
}

// What was examined of the hand-off, by its name.
constexpr std::pair<const char*, Subject> kExaminedSubjects[] = {
    {"program", Subject::kBase},
    {"launcher library", Subject::kLibrary},
    {"JVM", Subject::kJvm},
    {"tried JVM", Subject::kJvm},
    {"LD_LIBRARY_PATH", Subject::kEnvironment},
    {"DYLD_LIBRARY_PATH", Subject::kEnvironment},
    {"variable", Subject::kEnvironment},
    {"locale", Subject::kLocale},
    {"room", Subject::kSpace},
};

// By the message of the fault.
std::map<std::string, Subject> subjectsOf(const std::vector<Examined>& handOff) {
    std::map<std::string, Subject> subjects;
    for (const Examined& examined : handOff) {
        const auto known =
            std::find_if(std::begin(kExaminedSubjects), std::end(kExaminedSubjects),
                         [&](const auto& one) { return one.first == examined.what; });
        for (const Fault& fault : examined.faults) {
            subjects.try_emplace(fault.message, known == std::end(kExaminedSubjects)
                                                    ? Subject::kBundles
                                                    : known->second);
        }
    }
    return subjects;
}

Subject subjectOfHandOff(const Finding& finding, const Evidence& evidence) {
    const auto known = evidence.subjects.find(finding.message);
    return known == evidence.subjects.end() ? Subject::kBundles : known->second;
}

Subject subjectOf(const Finding& finding, const Evidence& evidence) {
    const Examination& examination = evidence.examination;
    const std::string_view code = finding.rule->code;
    if (finding.file == examination.nameOf(toWide(examination.launcher))) {
        return Subject::kInstallation;
    }
    if (finding.file == examination.launcherFile() && examination.file(kLauncherFile) == nullptr) {
        return Subject::kSettings;
    }
    if (code == "RI607" || code == "RI608") {
        return Subject::kArea;
    }
    if (code == "RI609") {
        return Subject::kSpace;
    }
    if (code == "RI610") {
        return Subject::kJvmProperties;
    }
    if (code == "RI603" || code == "RI606") {
        return Subject::kBase;
    }
    if (code == "RI601" && subjectOfHandOff(finding, evidence) == Subject::kJvm) {
        return Subject::kJvm;
    }
    if (code.starts_with("RI6")) {
        return subjectOfPath(finding, examination);
    }
    if (code.starts_with("RI7")) {
        return Subject::kInstallation;
    }
    if (code.starts_with("RI8")) {
        return subjectOfHandOff(finding, evidence);
    }
    const PropertyFile* jvms = examination.file(kJvmFile);
    if (jvms != nullptr && finding.file == jvms->name) {
        return Subject::kJvmProperties;
    }
    return code.starts_with("RI4") ? Subject::kJvm : Subject::kSettings;
}

}  // namespace

std::vector<Problem> Evidence::problemsOf(Subject subject) const {
    std::vector<Problem> problems;
    for (const Finding& finding : findings) {
        if (subjectOf(finding, *this) == subject) {
            const std::string line = finding.line == 0 ? "" : ":" + std::to_string(finding.line);
            problems.push_back({finding.rule->level == Level::kError ? Mark::kBad : Mark::kOdd,
                                std::string(finding.rule->code) + " " + finding.message,
                                finding.file + line, finding.rule->remedy});
        }
    }
    std::stable_sort(
        problems.begin(), problems.end(),
        [](const Problem& left, const Problem& right) { return left.mark > right.mark; });
    return problems;
}

std::string Evidence::pathOf(const std::string& what) const {
    const auto found = std::find_if(handOff.begin(), handOff.end(),
                                    [&](const Examined& one) { return one.what == what; });
    return found == handOff.end() ? std::string() : found->path;
}

std::string Evidence::jvm() const {
    const nlohmann::json& elements = explanation["elements"];
    for (std::size_t i = 0; i + 1 < elements.size() && elements[i]["text"] != "-vmargs"; ++i) {
        if (elements[i]["text"] == "-vm") {
            return elements[i + 1]["text"];
        }
    }
    return examination.inputs.traits.isDirectJavaShape()
               ? explanation["outcome"].value("program", "")
               : std::string();
}

Evidence gather(const Options& options) {
    Evidence evidence{.explanation = explainLaunch(options),
                      .state = WorkspaceWatch(options).look(),
                      .examination = examine(options),
                      .findings = {},
                      .handOff = {},
                      .subjects = {}};
    Findings findings = findEverything(evidence.examination);
    evidence.handOff = tellObstacle(evidence.explanation, evidence.examination);
    if (options.isTryingJvm) {
        evidence.handOff.push_back(tryJvm(evidence.examination));
    }
    for (const Examined& examined : evidence.handOff) {
        addFaults(examined, findings);
    }
    evidence.subjects = subjectsOf(evidence.handOff);
    evidence.findings = findings.sorted();
    return evidence;
}

}  // namespace rcp::inspect
