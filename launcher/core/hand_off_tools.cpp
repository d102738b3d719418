#include "launcher/core/hand_off_tools.h"

#include "diagnostics/log_file.h"
#include "diagnostics/svc_debug.h"
#include "platform/signals.h"
#include "platform/text.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace rcp {

NarrowArguments::NarrowArguments(std::span<const Argument> arguments) {
    texts_.reserve(arguments.size());
    pointers_.reserve(arguments.size() + 1);
    for (const std::wstring& argument : arguments) {
        texts_.push_back(toNarrow(argument));
        if (texts_.back().empty() && !argument.empty()) {
            report(noReason(),
                   "Error: the launch argument '%ls' is no text of this locale and becomes empty.",
                   argument);
        }
    }
    for (std::string& text : texts_) {
        pointers_.push_back(text.data());
    }
    pointers_.push_back(nullptr);
}

void logLaunchArguments(std::string_view begin, const NarrowArguments& arguments,
                        std::string_view end) {
    const ForcedTracing forced;
    std::vector<std::string_view> records{begin};
    records.insert(records.end(), arguments.texts().begin(), arguments.texts().end());
    records.push_back(end);
    SvcDebugOutRecords(records);
}

void becomeProgram(NarrowArguments& command) {
    restoreFileSizeSignal();
    execv(command.data()[0], command.data());
    const int error = errno;
    ignoreFileSizeSignal();
    report(because(error), "Error: execv: %ls could not be started",
           toWide(command.texts().front()));
    if (logIsOpen() && !logHasAll()) {
        dumpLogToTempLocation();
    }
}

Gate::Gate() {
    if (pipe(ends_.data()) != 0) {
        ends_ = {-1, -1};
        return;
    }
    for (const int end : ends_) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
}

Gate::~Gate() {
    closeEnd(0);
    closeEnd(1);
}

void Gate::open() {
    closeEnd(0);
    closeEnd(1);
}

void Gate::wait() {
    closeEnd(1);
    char unused = 0;
    while (ends_[0] >= 0 && read(ends_[0], &unused, 1) < 0 && errno == EINTR) {
    }
}

void Gate::closeEnd(std::size_t end) {
    if (ends_[end] >= 0) {
        close(std::exchange(ends_[end], -1));
    }
}

}  // namespace rcp
