#include "launcher/command_line/plan.h"

#include "launcher/command_line/whys.h"

#include <utility>

namespace rcp {

void CommandLine::setProgram(Argument path, const Why& why) {
    path.why = &why;
    arguments_.clear();
    arguments_.push_back(std::move(path));
}

void CommandLine::add(const Argument& argument) {
    if (start_ == Start::kRestart && (argument == DEBUGARG || argument == CONSOLEARG)) {
        drop(argument, whys::kNoConsole);
        return;
    }
    arguments_.push_back(argument);
}

void CommandLine::add(Argument argument, const Why& why) {
    argument.why = argument.why == nullptr ? &why : argument.why;
    add(argument);
}

void CommandLine::add(const Argument& option, const Argument& value, const Why& why) {
    add(option, why);
    add(value, why);
}

void CommandLine::drop(Argument argument, const Why& why) {
    argument.why = &why;
    dropped_.push_back(std::move(argument));
}

}  // namespace rcp
