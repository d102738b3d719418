#include "inspect/check/check.h"

#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/check/report.h"
#include "inspect/commands.h"
#include "inspect/handoff/rehearsed_end.h"
#include "inspect/handoff/try_jvm.h"
#include "launcher/process_entry.h"

#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

constexpr int kWarnings = 1;
constexpr int kErrors = 2;

// Where it cannot be rehearsed nothing is known of what only that tells.
void rehearseToo(const Options& options, const Examination& examination, Findings& findings) {
    try {
        findInRehearsal(options, examination, findings);
    } catch (const std::exception& problem) {
        // In one piece, for others write there at the same time when there are many.
        std::cerr << "rcpinspect: the launch of " + options.installation +
                         " was not rehearsed: " + problem.what() + "\n";
        findings.add("RI506", examination.launcherFile(), 0, problem.what());
    }
}

}  // namespace

Findings findEverything(const Examination& examination) {
    Findings findings;
    findInLines(examination, findings);
    findInFiles(examination, findings);
    if (examination.file(kLauncherFile) != nullptr) {
        findInKeys(examination, findings);
        findInValues(examination, findings);
        findInPlaceholders(examination, findings);
        findInJvmArguments(examination, findings);
        findInExtensions(examination, findings);
        findInHandOff(examination, findings);
    }
    findInBundle(examination, findings);
    return findings;
}

int checkStatus(const Findings& findings, bool isStrict) {
    if (findings.count(Level::kError) > 0) {
        return kErrors;
    }
    if (findings.count(Level::kWarning) > 0) {
        return isStrict ? kErrors : kWarnings;
    }
    return kSuccess;
}

int check(const Options& options) {
    if (!options.roots.empty()) {
        return checkMany(options);
    }
    endOf(&setCharacterLocale);  // texts are read as the launcher reads them
    const Examination examination = examine(options);
    Findings findings = findEverything(examination);
    if (examination.file(kLauncherFile) != nullptr) {
        rehearseToo(options, examination, findings);
    }
    if (options.isTryingJvm) {
        addFaults(tryJvm(examination), findings);
    }
    switch (options.format) {
        case Format::kText:
            std::cout << textReport(examination, findings, {options.isColored, options.isAll});
            break;
        case Format::kJson:
        case Format::kHtml:  // which is made of it
            std::cout << dump(jsonReport(examination, findings));
            break;
        case Format::kSarif:
            std::cout << dump(sarifReport(examination, findings));
            break;
    }
    return checkStatus(findings, options.isStrict);
}

}  // namespace rcp::inspect
