#include "inspect/making.h"
#include "inspect/messages.h"
#include "inspect/status/report.h"

#include <time.h>

#include <array>
#include <string_view>
#include <utility>

namespace rcp::inspect {
namespace {

constexpr std::size_t kColumn = 14;

enum class Tone { kPlain, kGood, kOdd, kBad };

// Lines of a heading and what belongs to it.
class Page {
  public:
    explicit Page(bool isColored) : isColored_(isColored) {}

    void line(std::string_view heading, std::string_view text, Tone tone = Tone::kPlain) {
        text_ += painted(heading, "\033[1m");
        text_.append(kColumn - heading.size(), ' ');
        text_ += painted(text, codeOf(tone));
        text_ += '\n';
    }
    void more(std::string_view text, Tone tone = Tone::kPlain) { line({}, text, tone); }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    static std::string_view codeOf(Tone tone) {
        switch (tone) {
            case Tone::kGood:
                return "\033[32m";
            case Tone::kOdd:
                return "\033[33m";
            case Tone::kBad:
                return "\033[31m";
            default:
                return {};
        }
    }
    [[nodiscard]] std::string painted(std::string_view text, std::string_view code) const {
        if (!isColored_ || code.empty() || text.empty()) {
            return std::string(text);
        }
        return std::string(code) + std::string(text) + "\033[0m";
    }

    bool isColored_;
    std::string text_;
};

std::string listOf(const std::vector<Process>& processes) {
    std::string text;
    for (const Process& process : processes) {
        text += text.empty() ? "" : ", ";
        text += std::to_string(process.id);
        text += process.name.empty() ? "" : " (" + process.name + ")";
    }
    return text;
}

// What is known about a record: its cause and what to do.
void addRecord(Page& page, const std::string& record) {
    page.more(record, Tone::kBad);
    for (const MessageRecord* message : findMessages(record)) {
        page.more((message->step.empty() ? "" : message->step + ": ") + message->remedy);
    }
}

void addPlatform(Page& page, const LockState& lock) {
    const std::string process = "process " + std::to_string(lock.file.process);
    switch (lock.file.content) {
        case LockFile::Content::kMissing:
            page.line("platform", "none: there is no lock file");
            break;
        case LockFile::Content::kNothing:
            page.line("platform", "none is recorded");
            break;
        case LockFile::Content::kOther:
            page.line("platform", lock.path + " holds something else than a number", Tone::kBad);
            break;
        case LockFile::Content::kUnreadable:
            page.line("platform", lock.path + " cannot be read", Tone::kBad);
            break;
        case LockFile::Content::kProcess:
            if (lock.isPlatform) {
                page.line("platform", process + " is running", Tone::kGood);
            } else if (lock.isAlive) {
                page.line("platform", process + " is recorded, but is no running platform",
                          Tone::kOdd);
            } else {
                page.line("platform", process + " is recorded, but is gone", Tone::kOdd);
            }
            break;
    }
}

void addLock(Page& page, const LockHolders& lock) {
    if (!lock.isHeld) {
        page.line("lock", "free");
        return;
    }
    const std::string holders = listOf(lock.holders);
    page.line("lock",
              "held by " + (holders.empty() ? "a process that the system does not name"
                                            : "process " + holders),
              Tone::kOdd);
    if (!lock.waiting.empty()) {
        page.more("waiting for it: " + listOf(lock.waiting));
    }
}

void addInstallId(Page& page, const InstallIds& ids) {
    std::string text = ids.installation;
    if (!ids.area) {
        text += ", not yet in the user's area";
    } else if (ids.isOld) {
        text += "; the user's area is of " + *ids.area;
    } else {
        text += ", the user's area too";
    }
    page.line("install id", text, ids.isOld ? Tone::kOdd : Tone::kPlain);
}

void addProvisioning(Page& page, const ProvisioningState& state) {
    const auto level = [](const std::optional<std::string>& text) {
        return text ? *text : std::string("none");
    };
    const std::string levels = "user's level " + level(state.userLevel) + ", the installation's " +
                               level(state.installationLevel);
    page.line("provisioning", (state.isEnabled ? "on; " : "off; ") + levels,
              state.isEnabled && state.isNew ? Tone::kOdd : Tone::kPlain);
}

constexpr std::pair<std::string_view, std::string_view> kSteps[] = {
    {"make-install-id", "makes an install id and adds it to the installation's properties"},
    {"wait-for-old-platform", "waits for the old platform to end, 21 seconds at most"},
    {"wait-for-lock", "waits until the lock is free; what follows holds if nothing else changes"},
    {"wait-for-provisioning", "waits for the provisioning program to end, then reads all afresh"},
    {"wait-for-debug-marker", "waits until rcp/rcplauncher.debug is removed"},
    {"reuse-area", "begins a new configuration: the area is another installation's"},
    {"reset-area", "begins a new configuration: -resetconfig"},
    {"leave-area-alone", "leaves the configuration as it is: the platform is using it"},
    {"make-area", "makes what is missing of the user's area"},
    {"provision", "starts the provisioning application instead of the platform"},
    {"initial-configuration", "uses the initial configuration instead of its own arguments"},
    {"start-platform", "starts the platform"},
};

std::string textOf(std::string_view step, const NextLaunch& next) {
    for (const auto& [name, sentence] : kSteps) {
        if (name == step) {
            return std::string(sentence);
        }
    }
    return "passes its arguments on to process " + std::to_string(next.platform);
}

void addNext(Page& page, const WorkspaceState& state) {
    std::string_view heading = "next launch";
    for (const std::string& step : state.next.steps) {
        page.line(heading, textOf(step, state.next));
        heading = {};
    }
    if (!state.next.obstacle.empty()) {
        page.line(heading, "which cannot start the platform: " + state.next.obstacle, Tone::kBad);
    }
    if (!state.next.record.empty()) {
        page.line(heading, "ends with", Tone::kBad);
        addRecord(page, state.next.record);
    }
}

std::string localTime(const timespec& time) {
    tm parts{};
    localtime_r(&time.tv_sec, &parts);
    std::array<char, 32> text{};
    const std::size_t length = strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
    return {text.data(), length};
}

std::string textOf(const LastLaunch& last) {
    switch (last.outcome) {
        case Outcome::kHandedOff:
            return last.role == "daemon" ? "passed its arguments on" : "started the platform";
        case Outcome::kProvisioned:
            return "started the provisioning application";
        case Outcome::kFailed:
            return "failed";
        default:
            return "is at work, or was ended from outside";
    }
}

void addLast(Page& page, const WorkspaceState& state) {
    const std::optional<LastLaunch>& last = state.last;
    if (!last) {
        page.line("last launch", "none has left a log");
        return;
    }
    const bool hasFailed = last->outcome == Outcome::kFailed;
    const std::optional<time_t> age = ageOf(*last, state.now);
    page.line("last launch",
              localTime(last->time) + (age ? ", " + agoText(*age) + ": " : " ") + textOf(*last),
              hasFailed ? Tone::kBad : Tone::kPlain);
    page.more(last->log +
              (last->isTemporary ? ", which all installations of this user share" : ""));
    if (!last->isOwn) {
        page.more("it does not tell whose launch this was: it may be another installation's",
                  Tone::kOdd);
    }
    if (!last->unclear.empty()) {
        page.more(
            "later " + last->unclear + " was written, which does not tell whose launch that was",
            Tone::kOdd);
    }
    if (hasFailed) {
        addRecord(page, last->record);
    }
}

// What the platform has against its installation. Some events say no more than that they are errors.
std::string textOf(const PlatformError& error) {
    constexpr std::string_view kEvent = "FrameworkEvent ERROR";
    std::string text = error.bundle;
    if (!error.message.empty() && (error.message != kEvent || error.exception.empty())) {
        text += ": " + error.message;
    }
    return error.exception.empty() ? text : text + ": " + error.exception;
}

void addPlatformErrors(Page& page, const std::optional<PlatformLog>& log) {
    if (!log) {
        return;
    }
    const std::string number = log->count == 1 ? "1 error" : std::to_string(log->count) + " errors";
    const std::string shown =
        log->errors.size() == log->count
            ? ""
            : ", the last " + std::to_string(log->errors.size()) + " of them here";
    page.line("platform log", localTime(log->time) + " has " + number + shown, Tone::kBad);
    page.more(log->path);
    for (const PlatformError& error : log->errors) {
        page.more(textOf(error), Tone::kBad);
        for (const std::string& missing : error.missing) {
            page.more("missing: " + missing);
        }
    }
}

}  // namespace

std::string toText(const WorkspaceState& state, bool isColored) {
    Page page(isColored);
    page.line("installation", state.installation);
    if (!state.workspace.empty()) {
        page.line("workspace", state.workspace + (state.isThere ? "" : " (not yet there)"));
        addPlatform(page, state.lock);
        addLock(page, state.lock.lock);
        addInstallId(page, state.ids);
    }
    if (state.provisioning) {
        addProvisioning(page, *state.provisioning);
    }
    if (state.lock.provisioner) {
        page.line("provisioned", "now, by process " + std::to_string(*state.lock.provisioner),
                  Tone::kOdd);
    }
    addNext(page, state);
    addLast(page, state);
    addPlatformErrors(page, state.platformErrors);
    return page.text();
}

}  // namespace rcp::inspect
