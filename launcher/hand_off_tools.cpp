#include "launcher/hand_off_tools.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "diagnostics/log_file.h"
#include "diagnostics/svc_debug.h"
#include "platform/signals.h"
#include "platform/text.h"

#include <errno.h>

namespace rcp {

NarrowArguments::NarrowArguments(std::span<const Argument> arguments) {
    texts_.reserve(arguments.size());
    pointers_.reserve(arguments.size() + 1);
    for (const Argument& argument : arguments) {
        texts_.push_back(toNarrow(argument.text));
        if (texts_.back().empty() && !argument.text.empty()) {
            report(noReason(), messages.launchArgumentNoText, argument.text);
        }
    }
    for (std::string& text : texts_) {
        pointers_.push_back(text.data());
    }
    pointers_.push_back(nullptr);
}

void logLaunchArguments(Message<> begin, const NarrowArguments& arguments, Message<> end) {
    const ForcedTracing forced;
    std::vector<std::string_view> records{begin.format};
    records.insert(records.end(), arguments.texts().begin(), arguments.texts().end());
    records.emplace_back(end.format);
    SvcDebugOutRecords(records);
}

void becomeProgram(NarrowArguments& command) {
    restoreFileSizeSignal();
    calls::execv(command.data()[0], command.data());
    const int error = errno;
    ignoreFileSizeSignal();
    report(because(error), messages.programNotStarted, toWide(command.texts().front()));
    if (logIsOpen() && !logHasAll()) {
        dumpLogToTempLocation();
    }
}

void Gate::open() {
    pipe_.readEnd.reset();
    pipe_.writeEnd.reset();
}

void Gate::wait() {
    pipe_.writeEnd.reset();
    if (pipe_.readEnd) {
        (void)readToEnd(pipe_.readEnd.get());
    }
}

}  // namespace rcp
