// The launch argument list: the complete command line for the hand-off, in final order.
#pragma once

#include "launcher/core/arguments.h"

#include <string>

namespace rcp {

/// Element 0 is the program path; every other element is appended behind it.
extern Arguments launchArgs;
/// Full path of the launcher library; empty when the hand-off needs none.
extern std::wstring eclipseSoPath;

/// File name of the Eclipse launcher library.
inline constexpr wchar_t ECLIPSE_SO_NAME_DEFAULT[] = L"eclipse_1615.so";

inline constexpr wchar_t CONSOLEARG[] = L"-console";
inline constexpr wchar_t DEBUGARG[] = L"-debug";
inline constexpr wchar_t PB4LARG[] = L"-pb4l";

/// Appends `argument`; on a restart "-debug" and "-console" are dropped, because a restarted
/// platform never gets a debug console. The second parameter tells option keywords (false) from
/// values (true) for the reader of a call and is ignored.
void addArgToCommandLine(const Argument& argument, bool isValue);
/// Empties the list and stores `path` as its only element.
void addPathToCommandLine(const Argument& path);
void setEclipseSoPath(const std::wstring& path);

}  // namespace rcp
