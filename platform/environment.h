// Environment variables and one-line system queries.
#pragma once

#include <sys/time.h>

#include <string>

namespace rcp {

/// Reads environment variable `name` into `value` and returns its characters. Not set: `value` is
/// emptied, one trace record is written, and the result is null.
const wchar_t* getEnv(const std::wstring& name, std::wstring& value);
/// setenv(3). The sense is the reverse of the usual one and callers rely on it: true when it
/// failed. A value that is no text of the locale leaves a record and the variable as it was.
bool setEnv(const std::wstring& name, const std::wstring& value, bool overwrite);
/// unsetenv(3); always true.
bool unsetEnv(const std::wstring& name);
/// The user's home directory from "HOME"; empty when it is not set.
const wchar_t* getUserHome(std::wstring& home);
/// Whether the real user is root. The argument is accepted for the callers' sake and not used.
bool userIsAdmin(const std::wstring& user);
/// The operating system's name in property keys and folder names: "macosx" on every build, because
/// installations are laid out for it.
const wchar_t* getOS();
/// The time of day, gettimeofday(2).
timeval getTick();

/// Sleeps for whole seconds and returns what was left, as sleep(3).
unsigned sysSleep(unsigned seconds);

}  // namespace rcp
