// The process-wide flags of a launch.
#pragma once

#include "launcher/core/arguments.h"
#include "launcher/core/property_list.h"

#include <string>

namespace rcp {

/// A directory or per-user file of the user's had to be made in this launch, or the provisioning
/// level changed. While false, reuse and reset of the user's area are considered.
extern bool userFirstLaunch;

/// True: hand off inside this process through the launcher library; false: hand off with execv(3).
extern bool invokeDylib;

/// What the process check looks for in the listing of the main process. Set by the start-up
/// sequence.
extern std::wstring mainProcessName;

/// The platform's own program, which execv(3) gets. Set by the start-up sequence.
extern std::wstring platformExecutable;

void setWaitMode();
bool isWaitMode();

/// This launcher is the main one, the one whose process becomes the platform.
void setMainProcess(bool isMain);
bool isMainProcess();

/// "Velmo" for the in-process hand-off, whose process keeps the launcher's own command line;
/// otherwise the name of the executable that execv(3) gets.
void getMainProcessName(std::wstring& name, const PropertyList& properties);

/// workspace + "/logs".
void getLogLocation(std::wstring& location, const std::wstring& workspace);

/// Whether the debug marker file at `path` exists; remembers path and answer.
bool debugFileExists(const std::wstring& path);
/// While the debug marker file of the last test exists, waits in steps of one second. There is no
/// limit: a debugger may be being attached.
void waitForDeletionOfDebugFile();

/// The tick count as a decimal number: seconds * 1,000,000 + microseconds.
std::wstring getTickString();

}  // namespace rcp
