// The launcher's own command line and the questions asked of it.
#pragma once

#include "diagnostics/argument.h"
#include "launcher/vocabulary/name.h"

#include <cstddef>
#include <optional>
#include <string>

namespace rcp {

/// The index of the first argument from index 1 on that equals `option` exactly. The program path is never
/// compared.
std::optional<std::size_t> findOption(OptionName option, const Arguments& arguments);
bool hasOption(OptionName option, const Arguments& arguments);
/// The index of "-vmargs", or the number of arguments: what follows is for the JVM.
std::size_t endOfOptions(const Arguments& arguments);
/// The argument behind the first `option`; null when the option is missing or has none. "-vmargs"
/// ends the options and is never a value.
const Argument* optionValue(OptionName option, const Arguments& arguments);

bool isRestart(const Arguments& arguments);      // "-restart"
bool isResetConfig(const Arguments& arguments);  // "-resetconfig"
/// "-debug", but never on a restart: a restarted launcher does not trace.
bool isDebug(const Arguments& arguments);
bool isWaitMode(const Arguments& arguments);  // "-rcpLauncherWait"

}  // namespace rcp
