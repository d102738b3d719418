// Why the platform failed, as its own log tells it: what ends it behind the hand-off is in no log of the
// launcher's. A session of that log:
//
//   !SESSION 2026-01-31 12:00:00.000 ----------
//   ...                                  what it was started with: never told
//   !ENTRY bundle severity code 2026-01-31 12:00:01.000
//   !MESSAGE what has happened           may go on over several lines
//   !STACK 0
//   class.of.Exception: what was wrong   and where, in the lines that follow
//   !SUBENTRY 1 bundle ...               parts of the entry, in the same form
#pragma once

#include <time.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// Of a log only what explains: what else it holds may be nobody's business.
struct PlatformError {
    std::string bundle;                // that reported it
    std::string message;               // its first line
    std::string exception;             // the first line of its stack; empty without one
    std::vector<std::string> missing;  // requirements that nothing met

    bool operator==(const PlatformError&) const = default;
};

struct PlatformLog {
    std::string path;
    timespec time{};                    // when it was written last
    std::size_t count = 0;              // of errors in its last session
    std::vector<PlatformError> errors;  // the last of them, three at most
};

/// The errors of the last session.
std::vector<PlatformError> readPlatformErrors(std::string_view log);

/// The log that the platform wrote last and not before `launch`, in the configuration directory as long
/// as it has no workspace, then there; if its last session has errors.
std::optional<PlatformLog> platformLog(const std::string& configuration,
                                       const std::string& workspace, const timespec& launch);

}  // namespace rcp::inspect
