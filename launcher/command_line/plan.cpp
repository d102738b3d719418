#include "launcher/command_line/plan.h"

#include "diagnostics/observer.h"
#include "diagnostics/whys.h"

#include <utility>

namespace rcp {

void CommandLine::setProgram(Argument path, const Why& why) {
    path.why = &why;
    arguments_.clear();
    arguments_.push_back(std::move(path));
}

void CommandLine::add(Argument argument) {
    if (start_ == Start::kRestart && (argument == DEBUGARG || argument == CONSOLEARG)) {
        tellLoser(argument, whys::kNoConsole);
        return;
    }
    arguments_.push_back(std::move(argument));
}

void CommandLine::add(Argument argument, const Why& why) {
    argument.why = argument.why == nullptr ? &why : argument.why;
    add(std::move(argument));
}

void CommandLine::add(Argument option, Argument value, const Why& why) {
    add(std::move(option), why);
    add(std::move(value), why);
}

}  // namespace rcp
