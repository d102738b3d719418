// The last launch in a workspace, as its log tells it.
#pragma once

#include "inspect/options.h"

#include <sys/types.h>
#include <time.h>

#include <optional>
#include <string>
#include <string_view>

namespace rcp::inspect {

enum class Outcome {
    kHandedOff,    // the platform was started, or the arguments went to the running one
    kProvisioned,  // the provisioning application was started
    kFailed,       // a record ended it
    kUnfinished,   // at work, or ended from outside
};

struct LastLaunch {
    std::string log;
    timespec time{};           // of the log's last record
    bool isTemporary = false;  // the log of /tmp, which all installations of the user share
    bool isOwn = true;         // false: it does not tell whose, so it may be another installation's
    std::string unclear;  // a later log that does not tell whose launch it was; empty without one
    std::string role;     // "main", "daemon", or empty when the log does not tell
    Outcome outcome = Outcome::kUnfinished;
    std::string record;  // kFailed: what ended it
};

/// What a launch's log says; everything but where and when.
LastLaunch readLaunch(std::string_view log);

/// The launch that wrote last: into the workspace's log folder, or into the temporary log because it
/// ended before there was one. Those of other installations than that of `options` do not count, one of which nobody knows
/// whose it was only where there is no other.
std::optional<LastLaunch> lastLaunch(const std::string& logFolder, const Options& options);

/// The seconds from the last record to `now`; none without a `now`, or when it is earlier: clocks are put
/// back.
std::optional<time_t> ageOf(const LastLaunch& launch, std::optional<time_t> now);

}  // namespace rcp::inspect
