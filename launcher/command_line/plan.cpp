#include "launcher/command_line/plan.h"

namespace rcp {

void CommandLine::add(const Argument& argument) {
    if (start_ == Start::kRestart && (argument == DEBUGARG || argument == CONSOLEARG)) {
        return;
    }
    arguments_.push_back(argument);
}

void CommandLine::add(const Argument& option, const Argument& value) {
    add(option);
    add(value);
}

}  // namespace rcp
