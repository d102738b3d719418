// The launcher's only voice: trace records while tracing is on, error records always.
//
//   record --> log file open? --yes--> appended to the file at once
//                  |
//                  no --> `logque`; emptied into the log file when it is opened, or into the
//                         temporary log in /tmp when a fatal error comes first; holds besides what
//                         an open log file refuses
//
// Records are plain lines without time stamp. The message id at their start ("ZYPRA", four digits
// and I for information or E for error) is part of the text. Information goes out through the
// SvcDebugOut functions and only while `debug` is on; errors go out always.
#pragma once

#include "diagnostics/argument.h"
#include "diagnostics/format.h"
#include "diagnostics/messages.h"
#include "diagnostics/reason.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace rcp {

/// Bytes of text in one record; longer text is cut there, before its line feed.
inline constexpr std::size_t kRecordLimit = 4095;
/// A trace format of this length or more is dropped whole.
inline constexpr std::size_t kTraceFormatLimit = 1000;

/// Tracing on or off. Set with setDebug.
extern bool debug;

/// Returns the former state.
bool setDebug(bool on);

/// Tracing forced on for a scope: the argument dump, the launch parameters, the lock's records.
class ForcedTracing {
  public:
    ForcedTracing();
    ~ForcedTracing();
    ForcedTracing(const ForcedTracing&) = delete;
    ForcedTracing& operator=(const ForcedTracing&) = delete;
    ForcedTracing(ForcedTracing&&) = delete;
    ForcedTracing& operator=(ForcedTracing&&) = delete;

  private:
    friend bool isTracingAsked();
    static const ForcedTracing* outermost_;
    bool saved_ = false;
};

/// Whether the user asked for tracing, whatever is forced on at the moment.
bool isTracingAsked();

// --- Tracing: nothing is formatted or written while `debug` is off. ---

/// `text` as it stands; percent signs in it mean nothing.
void SvcDebugOutA(std::string_view text);
void SvcDebugOutA(std::string_view format, std::string_view argument);
void SvcDebugOutA(std::string_view format, int argument);
void SvcDebugOutA(std::string_view format, std::span<const FormatArgument> arguments);
void SvcDebugOutW(std::wstring_view format, std::wstring_view argument);
/// The argument dump: message="first, second, ", with the percent signs of the arguments read as
/// directives ("%%" becomes "%") and an empty line after it.
void traceArguments(Message<> message, std::span<const Argument> arguments);
/// A message of the table.
template <typename... Kinds, typename... Values>
requires(Message<Kinds...>::template fits<Values...>()) void trace(Message<Kinds...> message,
                                                                   const Values&... values) {
    const std::array<FormatArgument, sizeof...(Values)> arguments{FormatArgument(values)...};
    SvcDebugOutA(message.format, arguments);
}
/// Every text a record of its own as it stands, all in one write to the log: a launch has dozens of
/// parameters.
void SvcDebugOutRecords(std::span<const std::string_view> texts);

// --- Errors: written whatever `debug` is. ---

/// One error record: `format` with `arguments`, then what `reason` knows. Returns it.
std::string reportRecord(const Reason& reason, std::string_view format,
                         std::span<const FormatArgument> arguments);
/// The same, then the end of the launch with status 255.
[[noreturn]] void endWithRecord(const Reason& reason, std::string_view format,
                                std::span<const FormatArgument> arguments);

/// Reports a failure that the launch survives.
template <typename... Kinds, typename... Values>
requires(Message<Kinds...>::template fits<Values...>()) void report(const Reason& reason,
                                                                    Message<Kinds...> message,
                                                                    const Values&... values) {
    const std::array<FormatArgument, sizeof...(Values)> arguments{FormatArgument(values)...};
    reportRecord(reason, message.format, arguments);
}

/// Reports a failure that ends the launch (LaunchEnded).
template <typename... Kinds, typename... Values>
requires(Message<Kinds...>::template fits<Values...>())
    [[noreturn]] void fatal(const Reason& reason, Message<Kinds...> message,
                            const Values&... values) {
    const std::array<FormatArgument, sizeof...(Values)> arguments{FormatArgument(values)...};
    endWithRecord(reason, message.format, arguments);
}

/// The end of a launch before its hand-off. The launcher's only exception: whoever makes a launch catches
/// it and calls endedWith, and nobody in between does more than tidy up.
struct LaunchEnded {
    int status = 0;
    std::string record;  // the fatal one; empty without
    Origin origin;       // of the entry or argument that has brought it about, where there is one
};

/// Ends the launch.
[[noreturn]] void endLaunch(int status);

/// The last thing of a launch that has ended with `status`, which is returned: with another than 0 its
/// records go to the temporary log when no log is open, or the open one has refused some.
int endedWith(int status);

/// " Failed with error N: text" for the current errno.
std::string GetLastErrorMsg();

// --- The log file. ---

/// Opens the log in `folder` ("rcplauncher.log"; "rcplauncher_TIME.log", a new file of its own,
/// when the user asked for tracing) and empties the queue into it. False, with one error record queued, when it
/// cannot be opened.
bool enableLogging(const std::wstring& folder);
/// enableLogging for the temporary folder /tmp. Everybody can write there, so only a regular file
/// of this user's own is used, never through a link; otherwise the queue stays where it is.
bool dumpLogToTempLocation();
/// Removes this user's temporary log of an earlier launch.
void deleteTempLog();
/// Local time as YYYYMMDD_HHMMSS_mmm.
std::wstring getTimeString();

/// What has been written while no log file was open. For tests.
const std::string& logQueue();

/// From now on running out of memory ends the process at once with a record: there is no memory for an
/// exception, nor for those who would tidy up.
void installOutOfMemoryReport();

}  // namespace rcp
