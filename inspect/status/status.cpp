#include "inspect/commands.h"
#include "inspect/status/report.h"

#include <signal.h>
#include <time.h>

#include <exception>
#include <iostream>
#include <string>

namespace rcp::inspect {
namespace {

constexpr time_t kPause = 1;

// The user's interruption, waited for instead of handled: what is printed is always whole.
class Interruption {
  public:
    Interruption() {
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGINT);
        sigaddset(&signals_, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals_, &former_);
    }
    ~Interruption() { pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    Interruption(Interruption&&) = delete;
    Interruption& operator=(Interruption&&) = delete;

    /// Whether it comes in the next second.
    bool comes() {
#ifdef __APPLE__
        sigset_t pending;
        const timespec pause{kPause, 0};
        nanosleep(&pause, nullptr);
        return sigpending(&pending) == 0 &&
               (sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1);
#else
        const timespec pause{kPause, 0};
        return sigtimedwait(&signals_, nullptr, &pause) > 0;
#endif
    }

  private:
    sigset_t signals_{};
    sigset_t former_{};
};

// File names and log lines need not be UTF-8; JSON is.
std::string dumped(const nlohmann::ordered_json& json, int indent) {
    return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string render(const WorkspaceState& state, const Options& options) {
    if (options.format == Format::kJson) {
        return dumped(toJson(state), options.isWatching ? -1 : 2) + "\n";
    }
    return toText(state, options.isColored);
}

bool print(const std::string& text) {
    return (std::cout << text << std::flush).good();
}

// Until the user has had enough, or nobody reads any more.
void watch(const Options& options) {
    Interruption interruption;
    WorkspaceWatch workspace(options);
    std::string shown;
    do {
        WorkspaceState state = workspace.look();
        state.now.reset();  // what stands on the screen would be wrong a second later
        std::string now = render(state, options);
        if (now == shown) {
            continue;
        }
        const bool isNext = !shown.empty() && options.format == Format::kText;
        if (!print(isNext ? "\n" + now : now)) {
            return;
        }
        shown = std::move(now);
    } while (!interruption.comes());
}

}  // namespace

int status(const Options& options) {
    try {
        if (options.isWatching) {
            watch(options);
        } else {
            print(render(WorkspaceWatch(options).look(), options));
        }
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return kFailure;
    }
    return kSuccess;
}

}  // namespace rcp::inspect
