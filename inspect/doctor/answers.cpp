#include "inspect/doctor/answers.h"

#include "inspect/doctor/surroundings_answers.h"
#include "inspect/explain/elements_text.h"
#include "inspect/making.h"
#include "inspect/messages.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

using nlohmann::json;

std::string remedyOf(const std::string& record) {
    const auto known = findMessages(record);
    return known.empty() ? std::string() : known.front()->remedy;
}

Answer answerLaunch(const Evidence& evidence) {
    const json& outcome = evidence.explanation["outcome"];
    const std::string kind = outcome["kind"];
    if (kind == "fatal") {
        const std::string record = outcome.value("record", "");
        return {"launch",
                "ends with status " + outcome["status"].dump(),
                {{Mark::kBad, record.empty() ? "it starts nothing" : record,
                  outcome.contains("source") ? sourceText(outcome["source"]) : std::string(),
                  outcome.value("cause", "rcpinspect explain tells how far it comes.")}}};
    }
    if (kind == "ends") {
        Answer answer{"launch", "ends without starting anything"};
        if (outcome.contains("record")) {
            answer.problems.push_back(
                {Mark::kBad, outcome["record"], "", outcome.value("cause", "")});
        }
        return answer;
    }
    const std::string program = outcome.value("program", "");
    if (const Fault* obstacle = obstacleIn(evidence.handOff)) {
        return {"launch",
                "is handed to " + program,
                {{Mark::kBad, std::string("the platform cannot be started: ") + obstacle->code, "",
                  "Mend what is told of it here."}}};
    }
    return {"launch", kind == "provisioning" ? "provisions first, through " + program
                      : outcome["role"] == "daemon"
                          ? "passes its arguments on to the running platform"
                      : kind == "in-process" ? "loads " + program
                                             : "becomes " + program};
}

Answer answerInstallation(const Evidence& evidence) {
    const std::string kind = evidence.explanation["facts"].value("installConfiguration", "");
    return {"installation", evidence.state.installation + (kind.empty() ? "" : ", for " + kind),
            evidence.problemsOf(Subject::kInstallation)};
}

Answer answerSettings(const Evidence& evidence) {
    const PropertyFile* file = evidence.examination.file(kLauncherFile);
    return {"settings",
            file == nullptr
                ? "none can be read"
                : file->name + ", " + std::to_string(file->entries.entries().size()) + " entries",
            evidence.problemsOf(Subject::kSettings)};
}

// What is not known is not right.
Answer knownOrOdd(Answer answer, bool isKnown) {
    if (!isKnown && answer.problems.empty()) {
        answer.problems.push_back({Mark::kOdd, "the launch ends before it is known", "", ""});
    }
    return answer;
}

Answer answerBase(const Evidence& evidence) {
    const std::wstring& base = evidence.examination.base;
    return knownOrOdd(
        {"base location", base.empty() ? "not known" : evidence.examination.nameOf(base),
         evidence.problemsOf(Subject::kBase)},
        !base.empty());
}

Answer answerLibrary(const Evidence& evidence) {
    const std::string library = evidence.pathOf("launcher library");
    return {"launcher library", library.empty() ? "none is needed" : library,
            evidence.problemsOf(Subject::kLibrary)};
}

Answer answerBundles(const Evidence& evidence) {
    const std::string framework = evidence.pathOf("framework");
    return knownOrOdd(
        {"bundles",
         framework.empty() ? "not known" : evidence.pathOf("bundles") + " start with " + framework,
         evidence.problemsOf(Subject::kBundles)},
        !framework.empty());
}

Answer answerJvmProperties(const Evidence& evidence) {
    const PropertyFile* file = evidence.examination.file(kJvmFile);
    return {"jvm.properties", file == nullptr || !file->isRead ? "none is read" : file->name,
            evidence.problemsOf(Subject::kJvmProperties)};
}

Answer answerArea(const Evidence& evidence) {
    const json& facts = evidence.explanation["facts"];
    const std::string area = facts.value("area", "");
    const std::string& workspace = evidence.state.workspace;
    return {"user's area",
            (workspace.empty() ? "the launch ends before it is known" : workspace) +
                (area.empty() ? "" : ", " + area),
            evidence.problemsOf(Subject::kArea)};
}

Answer answerLock(const Evidence& evidence) {
    const LockState& lock = evidence.state.lock;
    const std::string process = std::to_string(lock.file.process);
    Answer answer{"lock and platform",
                  lock.file.content == LockFile::Content::kProcess && lock.isPlatform
                      ? "process " + process + " is the running platform"
                      : "no platform is running"};
    if (lock.lock.isHeld && lock.lock.holders.empty()) {
        answer.problems.push_back({Mark::kOdd,
                                   "a process that the system does not name holds the lock",
                                   lock.path, "Look for it as the user who started it."});
    } else if (lock.lock.isHeld) {
        answer.problems.push_back({Mark::kOdd,
                                   "process " + std::to_string(lock.lock.holders.front().id) +
                                       " holds the lock; a launch waits for it",
                                   lock.path, "Wait, or end that process."});
    }
    if (lock.file.content == LockFile::Content::kOther ||
        lock.file.content == LockFile::Content::kUnreadable) {
        answer.problems.push_back({Mark::kBad,
                                   "the lock file holds no process id, or cannot be read",
                                   lock.path, "Remove it when no platform is running."});
    }
    return answer;
}

Answer answerLastStart(const Evidence& evidence) {
    const auto& last = evidence.state.last;
    if (!last) {
        return {"last start", "none is recorded"};
    }
    const std::optional<time_t> age = ageOf(*last, evidence.state.now);
    Answer answer{"last start", dateAndTime(last->time.tv_sec) + ", " +
                                    (age ? agoText(*age) + ", " : "") +
                                    (last->outcome == Outcome::kHandedOff     ? "handed off"
                                     : last->outcome == Outcome::kProvisioned ? "provisioned"
                                     : last->outcome == Outcome::kFailed      ? "failed"
                                                                              : "unfinished")};
    if (last->outcome == Outcome::kFailed) {
        answer.problems.push_back(
            {last->isOwn ? Mark::kBad : Mark::kOdd,
             (last->isOwn ? "" : "perhaps of another installation: ") + last->record, last->log,
             remedyOf(last->record)});
    }
    if (const auto& errors = evidence.state.platformErrors) {
        answer.problems.push_back({Mark::kOdd, "the platform has logged errors since then",
                                   errors->path, "rcpinspect status shows the last of them."});
    }
    return answer;
}

}  // namespace

Mark Answer::mark() const {
    Mark worst = Mark::kGood;
    for (const Problem& problem : problems) {
        worst = std::max(worst, problem.mark);
    }
    return worst;
}

std::vector<Answer> answers(const Options& options) {
    const Evidence evidence = gather(options);
    return {answerLaunch(evidence),        answerInstallation(evidence), answerSettings(evidence),
            answerBase(evidence),          answerLibrary(evidence),      answerJvm(evidence),
            answerJvmProperties(evidence), answerBundles(evidence),      answerArea(evidence),
            answerLock(evidence),          answerSpace(evidence),        answerLocale(evidence),
            answerEnvironment(evidence),   answerLastStart(evidence)};
}

}  // namespace rcp::inspect
