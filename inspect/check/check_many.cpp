#include "inspect/check/check_many.h"

#include "base/pipe.h"
#include "base/transfer.h"
#include "inspect/check/check.h"
#include "inspect/check/report.h"
#include "inspect/child.h"
#include "inspect/commands.h"
#include "inspect/hand_out.h"
#include "inspect/locate.h"
#include "inspect/rehearsal/staged_tree.h"

#include <errno.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <deque>
#include <iostream>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

namespace rcp::inspect {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kNoneOrErrors = 2;

struct Checked {
    std::string root;
    int status = kNoneOrErrors;
    Json report;          // null when there is a problem
    std::string problem;  // why there is no report
};

struct Worker {
    std::string root;
    UniqueFd output;
    pid_t process = -1;
    int error = 0;  // for which there is no process
};

[[noreturn]] void work(const std::string& root, Options options, int output) {
    options.roots.clear();
    options.launcher = launcherPath({}, root, Launcher::kMayBeMissing);
    if (options.launcher.empty()) {
        _exit(kNoLauncher);
    }
    options.installation = installationOf(options.launcher);
    stageAlone(options.installation);
    options.format = options.format == Format::kSarif ? Format::kSarif : Format::kJson;
    const Told told = toldBy(check, options);
    _exit(writeFully(output, told.output) ? told.status : kFailure);
}

Worker start(const std::string& root, const Options& options) {
    Pipe pipe;
    const pid_t process = pipe.readEnd ? fork() : -1;
    if (process == 0) {
        beChild([&] { work(root, options, pipe.writeEnd.get()); });
    }
    const int error = errno;
    return {root, std::move(pipe.readEnd), process, error};
}

Checked resultOf(const Worker& worker) {
    Checked checked{worker.root, kNoneOrErrors, {}, {}};
    if (worker.process < 0) {
        checked.problem =
            "no process to check " + worker.root + ": " + std::string(strerror(worker.error));
        return checked;
    }
    Json report = Json::parse(readToEnd(worker.output.get()), nullptr, false);
    int status = 0;
    while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && !report.is_discarded()) {
        checked.status = WEXITSTATUS(status);
        checked.report = std::move(report);
    } else {
        checked.problem = whyUnchecked(worker.root, status);
    }
    return checked;
}

// In the order of the roots, so many at a time as there are processors.
std::vector<Checked> checkAll(const Options& options) {
    const std::size_t most = std::max(1U, std::thread::hardware_concurrency());
    std::vector<Checked> all;
    std::deque<Worker> workers;
    for (std::size_t next = 0; all.size() < options.roots.size();) {
        while (next < options.roots.size() && workers.size() < most) {
            workers.push_back(start(options.roots[next++], options));
        }
        all.push_back(resultOf(workers.front()));
        workers.pop_front();
    }
    return all;
}

Json summaryOf(const std::vector<Checked>& all) {
    const auto count = [&](auto condition) {
        return std::count_if(all.begin(), all.end(), condition);
    };
    const auto has = [](const Checked& one, const char* what) {
        return !one.report.is_null() && one.report["summary"][what] != 0;
    };
    const auto isBad = [&](const Checked& one) {
        return one.report.is_null() || has(one, "errors");
    };
    return {
        {"installations", all.size()},
        {"clean", count([&](const Checked& one) { return !isBad(one) && !has(one, "warnings"); })},
        {"withWarnings",
         count([&](const Checked& one) { return !isBad(one) && has(one, "warnings"); })},
        {"withErrors", count(isBad)}};
}

Json toJson(const std::vector<Checked>& all) {
    Json installations = Json::array();
    for (const Checked& one : all) {
        Json told{{"root", one.root}};
        one.report.is_null() ? void(told["problem"] = one.problem) : told.update(one.report);
        installations.push_back(told);
    }
    return {{"layout", 1},
            {"command", "check"},
            {"installations", installations},
            {"summary", summaryOf(all)}};
}

// A run each.
Json toSarif(const std::vector<Checked>& all) {
    Json whole;
    Json runs = Json::array();
    for (const Checked& one : all) {
        if (!one.report.is_null()) {
            whole = whole.is_null() ? one.report : whole;
            runs.push_back(one.report["runs"][0]);
            continue;
        }
        const Json note{{"level", "error"}, {"message", {{"text", one.problem}}}};
        runs.push_back(
            {{"tool", {{"driver", {{"name", "rcpinspect"}}}}},
             {"invocations", Json::array({{{"executionSuccessful", false},
                                           {"toolExecutionNotifications", Json::array({note})}}})},
             {"results", Json::array()}});
    }
    if (whole.is_null()) {
        whole["version"] = "2.1.0";
    }
    whole["runs"] = runs;
    return whole;
}

std::string counted(const Json& number, const std::string& what) {
    return number.dump() + " " + what + (number == 1 ? "" : "s");
}

std::string lineOf(const Checked& one, bool isColored) {
    struct Sign {
        const char* glyph;
        const char* color;
    };
    constexpr std::array<Sign, 3> kSigns{{{"✓", "32"}, {"!", "33"}, {"✗", "31"}}};
    const bool isBad = one.report.is_null() || one.report["summary"]["errors"] != 0;
    const Json summary = one.report.is_null() ? Json() : one.report["summary"];
    const bool isClean = !isBad && summary["warnings"] == 0;
    const Sign sign = kSigns[isBad ? 2 : isClean ? 0 : 1];
    const std::string glyph =
        isColored ? std::string("\033[") + sign.color + "m" + sign.glyph + "\033[0m" : sign.glyph;
    return glyph + " " + one.root + ": " +
           (one.report.is_null() ? one.problem
            : isClean            ? "nothing found"
                                 : counted(summary["errors"], "error") + ", " +
                            counted(summary["warnings"], "warning")) +
           "\n";
}

std::string toText(const std::vector<Checked>& all, bool isColored) {
    std::string text;
    for (const Checked& one : all) {
        text += lineOf(one, isColored);
    }
    const Json summary = summaryOf(all);
    return text + "\n" + counted(summary["installations"], "installation") + ": " +
           summary["clean"].dump() + " clean, " + summary["withWarnings"].dump() +
           " with warnings, " + summary["withErrors"].dump() + " with errors\n";
}

}  // namespace

std::string whyUnchecked(const std::string& root, int status) {
    if (WIFSIGNALED(status)) {
        return "the check of " + root + " was ended by signal " + std::to_string(WTERMSIG(status));
    }
    const int code = WEXITSTATUS(status);
    return code == kNoLauncher ? "no launcher at " + root
                               : "the check of " + root + " ended with status " +
                                     std::to_string(code) + " and told nothing that can be read";
}

int checkMany(const Options& options) {
    const std::vector<Checked> all = checkAll(options);
    std::cout << (options.format == Format::kText    ? toText(all, options.isColored)
                  : options.format == Format::kSarif ? dump(toSarif(all))
                                                     : dump(toJson(all)));
    int worst = kSuccess;
    for (const Checked& one : all) {
        worst = std::max(worst, one.status);
    }
    return worst;
}

}  // namespace rcp::inspect
