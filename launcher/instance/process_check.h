// Whether a process id names the running platform: the process is alive, and the system's process
// listing shows it as the platform or it runs one of the platform's executables.
#pragma once

#include <string>
#include <string_view>

namespace rcp {

/// What tells a platform of this installation from other processes.
struct ProcessMarker {
    std::wstring mainProcessName;     // a basic regular expression for its listing
    std::wstring platformExecutable;  // what execv(3) gets
    bool invokeDylib = false;         // in-process: its listing is the launcher's own command line
};

/// Whether the process is alive and its listing matches the name (and "rcp.base" for the execv
/// hand-off, whose process has its own command line) or its executable is this launcher's own or
/// the one that execv(3) gets. Ids of 0 or less and those too large for a process id are never
/// signalled and never the platform.
bool isPlatformProcess(long processId, const ProcessMarker& marker);

/// Whether some line of `listing` matches the marker's name and, for the execv hand-off, "rcp.base", each
/// as a basic regular expression as grep(1) takes it. An empty name matches nothing, and the line of a
/// process that has ended but was not yet waited for matches nothing.
bool listingShowsPlatform(std::string_view listing, const ProcessMarker& marker);

}  // namespace rcp
