// Environment variables and one-line system queries.
#pragma once

#include "launcher/vocabulary/name.h"

#include <sys/time.h>

#include <optional>
#include <string>

namespace rcp {

/// The value of environment variable `name`. Not set: one trace record, and none.
std::optional<std::wstring> getEnv(VariableName name);

/// What becomes of a variable that is set already.
enum class Overwrite { kNo, kYes };
/// setenv(3). The sense is the reverse of the usual one and callers rely on it: true when it
/// failed. A value that is no text of the locale leaves a record and the variable as it was.
bool setEnv(VariableName name, const std::wstring& value, Overwrite overwrite);
/// unsetenv(3); always true.
bool unsetEnv(VariableName name);
/// The user's home directory from "HOME"; empty when it is not set.
std::wstring getUserHome();
/// The operating system's name in property keys and folder names: "macosx" on every build, because
/// installations are laid out for it.
const wchar_t* getOS();
/// The time of day, gettimeofday(2).
timeval getTick();

/// Sleeps for whole seconds and returns what was left, as sleep(3).
unsigned sysSleep(unsigned seconds);

}  // namespace rcp
