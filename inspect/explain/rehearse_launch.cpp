#include "inspect/explain/rehearse_launch.h"

#include "base/pipe.h"
#include "base/system_calls.h"
#include "base/transfer.h"
#include "diagnostics/log_file.h"
#include "diagnostics/svc_debug.h"
#include "inspect/child.h"
#include "inspect/explain/account.h"
#include "inspect/handoff/describe_hand_off.h"
#include "inspect/handoff/room.h"
#include "inspect/messages.h"
#include "inspect/rehearsal/temporary_folder.h"
#include "launcher/process_entry.h"
#include "platform/install_location.h"
#include "platform/text.h"

#include <errno.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace rcp::inspect {
namespace {

using nlohmann::json;

// --- In the rehearsal's process ---------------------------------------------------------------------

// Waiting takes no time, and what is waited for is taken to have happened, but for the end of a platform.
class PatientWitness : public Witness {
  public:
    explicit PatientWitness(Rehearsal& rehearsal) : rehearsal_(rehearsal) {}
    void waits(Wait wait, const std::wstring& file) override {
        Witness::waits(wait, file);
        if (wait != Wait::kOldPlatform) {
            rehearsal_.hide(toNarrow(file));
        }
    }

  private:
    Rehearsal& rehearsal_;
};

// What the account needs when the launch has ended wherever it does.
struct Stage {
    explicit Stage(const std::string& folder)
        : rehearsal(std::make_unique<Rehearsal>(folder)), witness(*rehearsal) {}

    std::unique_ptr<Rehearsal> rehearsal;
    Launch launch;
    PatientWitness witness;
    Variables before = environmentNow();
    std::string lastError;  // that was recorded before a log was looked for in the end
    Origin cause;           // of the end
};

enum class Share { kAll, kEnd };

// Empty when there is none.
std::string lastErrorOf(const json& records) {
    std::string last;
    for (const json& record : records) {
        const std::string text = record;
        if (isErrorRecord(text)) {
            last = text;
        }
    }
    return last;
}

json outcomeOf(Stage& stage, int status, const json& records, const Sources& sources) {
    json outcome = describeOutcome(stage.launch);
    if (outcome["kind"] == "provisioning") {
        // The part of the parent, which the rehearsal does not play.
        stage.launch.lock->record(getpid());
    }
    if (status != 0) {
        const std::string& last = stage.lastError;
        outcome["record"] = last.empty() ? lastErrorOf(records) : last;
        if (!stage.cause.isComputed()) {
            outcome["source"] = sources.describe(stage.cause);
        }
    } else {
        const auto path = stage.before.find("LD_LIBRARY_PATH");
        settleHandOff(outcome, path == stage.before.end() ? std::string() : path->second);
    }
    return outcome;
}

json tellEnd(Stage& stage, int status) {
    observer = nullptr;
    const json records = describeRecords(*stage.rehearsal);
    return {{"outcome", outcomeOf(stage, status, records, Sources(stage.witness))},
            {"writes", describeWrites(*stage.rehearsal)}};
}

json tellAll(Stage& stage, int status) {
    observer = nullptr;
    const Sources sources(stage.witness);
    const Launch& launch = stage.launch;
    const Losers losers(stage.witness, sources, launch);
    const CommandLine line = launch.plan ? launch.plan->line : CommandLine();
    const Account account{.witness = stage.witness,
                          .sources = sources,
                          .launch = launch,
                          .losers = losers,
                          .line = line,
                          .before = stage.before,
                          .status = status};
    const json records = describeRecords(*stage.rehearsal);
    const json outcome = outcomeOf(stage, status, records, sources);
    json told{{"outcome", outcome},
              {"elements", describeElements(account)},
              {"dropped", describeDropped(account)},
              {"environment", describeEnvironment(account)},
              {"files", describeFiles(account)},
              {"changes", describeChanges(*stage.rehearsal)},
              {"writes", describeWrites(*stage.rehearsal)},
              {"records", records}};
    stage.rehearsal.reset();
    told["facts"] = describeFacts(account, outcome);
    return told;
}

void tell(Stage& stage, int status, Share share, int output) {
    std::vector<std::uint8_t> text;
    try {
        text =
            json::to_cbor(share == Share::kAll ? tellAll(stage, status) : tellEnd(stage, status));
    } catch (const std::exception& problem) {
        text = json::to_cbor(json{{"problem", problem.what()}});
    }
    (void)writeFully(output, {reinterpret_cast<const char*>(text.data()), text.size()});
}

// The launch up to its end, wherever that is; its exit status.
int launchOn(Stage& stage, int argc, char** argv) {
    try {
        run(stage.launch, argc, argv);
        return 0;
    } catch (const LaunchEnded& end) {
        // That no log can be written either is not what the launch ends with.
        stage.lastError = lastErrorOf(describeRecords(*stage.rehearsal));
        stage.cause = end.origin;
        stage.launch.note.reset();  // the rest of the launch is still told of
        return endedWith(end.status);
    }
}

[[noreturn]] void rehearse(const Options& options, Share share, const std::string& folder,
                           int output) {
    Stage stage(folder);
    setLauncherExecutable(options.launcher);
    systemCalls.sleep = [](unsigned /*seconds*/) { return 0U; };
    observer = &stage.witness;
    std::vector<std::string> words{options.launcher};
    words.insert(words.end(), options.arguments.begin(), options.arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const int status = launchOn(stage, static_cast<int>(words.size()), argv.data());
    tell(stage, status, share, output);
    _exit(status);
}

// --- Around it --------------------------------------------------------------------------------------

// Somebody who waits for more than a second in front of a terminal wants to know for what, and at once: what is redacted
// is held until it is whole.
void tellIfSlow(int descriptor) {
    constexpr int kSecond = 1000;  // poll(2) counts milliseconds
    pollfd awaited{descriptor, POLLIN, 0};
    if (isatty(STDERR_FILENO) != 0 && poll(&awaited, 1, kSecond) == 0) {
        (void)writeFully(STDERR_FILENO, "rcpinspect: rehearsing the launch ...\n");
    }
}

// What the rehearsal's process tells, and its wait status.
std::string runRehearsal(const Options& options, Share share, int& status) {
    const TemporaryFolder folder;
    Pipe answer;
    if (!answer.readEnd) {
        throw std::runtime_error("no pipe can be made");
    }
    const pid_t child = fork();
    if (child == 0) {
        answer.readEnd.reset();
        beChild([&] { rehearse(options, share, folder.path(), answer.writeEnd.get()); });
    }
    answer.writeEnd.reset();
    if (child > 0) {
        tellIfSlow(answer.readEnd.get());
    }
    std::string text = child < 0 ? std::string() : readToEnd(answer.readEnd.get());
    if (child < 0 || waitpid(child, &status, 0) != child) {
        throw std::runtime_error("no process can be made");
    }
    return text;
}

// The record that ended the launch is the last error.
void settleRecord(json& outcome, int status) {
    if (outcome.value("record", "").empty()) {
        outcome.erase("record");
    }
    if (status != 0) {
        outcome["kind"] = "fatal";
        outcome["status"] = status;
    }
    const auto known = findMessages(outcome.value("record", ""));
    if (!known.empty()) {
        outcome["cause"] = known.front()->remedy;
    }
}

json rehearse(const Options& options, Share share) {
    int status = 0;
    const std::string text = runRehearsal(options, share, status);
    json explanation = json::from_cbor(text, true, false);
    if (explanation.is_discarded() || !WIFEXITED(status)) {
        throw std::runtime_error("the rehearsal ended unexpectedly");
    }
    if (explanation.contains("problem")) {
        throw std::runtime_error(explanation["problem"]);
    }
    settleRecord(explanation["outcome"], WEXITSTATUS(status));
    return explanation;
}

}  // namespace

json rehearseEnd(const Options& options) {
    return rehearse(options, Share::kEnd);
}

json rehearseLaunch(const Options& options) {
    json explanation = rehearse(options, Share::kAll);
    explanation["layout"] = 1;
    explanation["command"] = "explain";
    explanation["launcher"] = options.launcher;
    explanation["installation"] = options.installation;
    explanation["arguments"] = options.arguments;
    return explanation;
}

json explainLaunch(const Options& options) {
    return json::parse(
        rehearseLaunch(options).dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace rcp::inspect
