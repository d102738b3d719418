#include "diagnostics/svc_debug.h"

#include "diagnostics/log_file.h"

#include <errno.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace rcp {

bool debug = false;

namespace {

// The record may be the last thing this process says, so a failure while it is made must not
// start another report.
bool reportingFatalError = false;

void writeRecord(std::string text) {
    text.resize(cutAtCharacter(text, kRecordLimit).size());
    text += '\n';
    writeToLog(text);
}

// Trace records: only while tracing, and only for formats of reasonable length.
void output_doit(std::string_view format, std::span<const FormatArgument> arguments) {
    if (debug && format.size() < kTraceFormatLimit) {
        writeRecord(expandFormat(format, arguments));
    }
}

// Error records: always. `savedErrno` is the errno of the moment the report began.
std::string err_doit(ErrnoText errnoText, int savedErrno, std::string_view format,
                     std::span<const FormatArgument> arguments) {
    std::string text = expandFormat(format, arguments);
    text.resize(cutAtCharacter(text, kRecordLimit).size());
    if (errnoText == ErrnoText::kAppend) {
        text += " : ";
        text += strerror(savedErrno);
        text.resize(cutAtCharacter(text, kRecordLimit).size());
    }
    writeRecord(text);
    return text;
}

constexpr int kFatalStatus = 255;

void endProcess(int status) {
    if (status != 0 && !logIsOpen()) {
        dumpLogToTempLocation();
    }
    exit(status);
}

constinit EndFunction endFunction = &endProcess;

// Set while a fatal error is reported. A replaced end leaves by an exception, which clears it.
class Reporting {
  public:
    Reporting() { reportingFatalError = true; }
    ~Reporting() { reportingFatalError = false; }
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;
    Reporting(Reporting&&) = delete;
    Reporting& operator=(Reporting&&) = delete;
};

void reportAndMaybeEnd(std::string_view format, std::span<const FormatArgument> arguments,
                       Then then, ErrnoText errnoText) {
    const int savedErrno = errno;
    if (then == Then::kReturn) {
        err_doit(errnoText, savedErrno, format, arguments);
        return;
    }
    if (reportingFatalError) {
        // Only exhausted memory fails while it is being reported.
        writeLastWords("ZYPRA0004E: malloc failed!\n");
        _exit(255);
    }
    const Reporting reporting;
    err_doit(errnoText, savedErrno, format, arguments);
    endFunction(kFatalStatus);
}

void runOutOfMemory();

// Held back so that the report of an exhausted memory has memory to work with.
class EmergencyReserve {
  public:
    void fill() { block_ = malloc(kSize); }
    void release() {
        free(block_);
        block_ = nullptr;
    }

  private:
    static constexpr std::size_t kSize = std::size_t{64} * 1024;
    void* block_ = nullptr;
};

constinit EmergencyReserve emergencyReserve;

void runOutOfMemory() {
    emergencyReserve.release();
    errno = ENOMEM;
    fatal("ZYPRA0004E: malloc failed!");
}

}  // namespace

void setDebug(bool on) {
    debug = on;
}

void setDebug(bool on, bool& saved) {
    saved = debug;
    debug = on;
}

void SvcDebugOutA(std::string_view text) {
    if (debug && text.size() < kTraceFormatLimit) {
        writeRecord(std::string(text));
    }
}

void SvcDebugOutA(std::string_view format, std::string_view argument) {
    const FormatArgument arguments[] = {argument};
    output_doit(format, arguments);
}

void SvcDebugOutA(std::string_view format, int argument) {
    const FormatArgument arguments[] = {static_cast<long>(argument)};
    output_doit(format, arguments);
}

void SvcDebugOutW(std::wstring_view format, std::wstring_view argument) {
    if (debug && format.size() < kTraceFormatLimit) {
        const FormatArgument arguments[] = {argument};
        writeRecord(expandFormat(toUtf8(format), arguments));
    }
}

void SvcDebugOutW(std::wstring_view message, std::span<const Argument> arguments) {
    if (!debug || message.size() >= kTraceFormatLimit) {
        return;
    }
    std::string line = toUtf8(message) + "=\"";
    for (const std::wstring& argument : arguments) {
        line += toUtf8(argument);
        line += ", ";
    }
    // The line feed is part of the text, so the record's own leaves an empty line behind the dump.
    line += "\"\n";
    writeRecord(expandFormat(line));
}

void SvcDebugOutRecords(std::span<const std::string_view> texts) {
    if (!debug) {
        return;
    }
    std::string records;
    for (const std::string_view text : texts) {
        records += cutAtCharacter(text, kRecordLimit);
        records += '\n';
    }
    writeToLog(records);
}

void SvcDebugLastError(std::wstring_view message) {
    SvcDebugOutW(message, std::wstring_view());
}

void SvcDebugLastError(std::wstring_view format, std::wstring_view argument) {
    SvcDebugOutW(format, argument);
}

void Output(std::string_view format, std::span<const FormatArgument> arguments) {
    output_doit(format, arguments);
}

std::string fatalError(ErrnoText errnoText, std::string_view format,
                       std::span<const FormatArgument> arguments) {
    return err_doit(errnoText, errno, format, arguments);
}

void fatalErrorA(std::string_view message, Then then, ErrnoText errnoText) {
    reportAndMaybeEnd(message, {}, then, errnoText);
}

void fatalErrorA(std::string_view format, std::string_view argument, Then then,
                 ErrnoText errnoText) {
    const FormatArgument arguments[] = {argument};
    reportAndMaybeEnd(format, arguments, then, errnoText);
}

void fatalErrorA(std::string_view format, std::wstring_view argument, Then then,
                 ErrnoText errnoText) {
    const FormatArgument arguments[] = {argument};
    reportAndMaybeEnd(format, arguments, then, errnoText);
}

void fatalErrorW(std::wstring_view message, Then then, ErrnoText errnoText) {
    const int savedErrno = errno;
    const std::string narrow = toUtf8(message);
    errno = savedErrno;
    reportAndMaybeEnd(narrow, {}, then, errnoText);
}

void fatal(std::string_view format) {
    fatalErrorA(format, Then::kExit, ErrnoText::kAppend);
    _exit(255);  // not reached
}

void fatal(std::string_view format, std::wstring_view argument) {
    fatalErrorA(format, argument, Then::kExit, ErrnoText::kAppend);
    _exit(255);  // not reached
}

void fatal(std::string_view format, long argument) {
    const FormatArgument arguments[] = {argument};
    reportAndMaybeEnd(format, arguments, Then::kExit, ErrnoText::kAppend);
    _exit(255);  // not reached
}

void report(std::string_view format, std::wstring_view argument) {
    fatalErrorA(format, argument, Then::kReturn, ErrnoText::kOmit);
}

void endLaunch(int status) {
    endFunction(status);
    _exit(status);  // not reached
}

EndFunction setEndFunction(EndFunction function) {
    return std::exchange(endFunction, function);
}

void GetLastErrorMsg(std::string& out) {
    const int savedErrno = errno;
    out = " Failed with error " + std::to_string(savedErrno) + ": " + strerror(savedErrno);
}

void GetLastErrorMsg(std::wstring& out) {
    std::string narrow;
    GetLastErrorMsg(narrow);
    // strerror(3) follows LC_MESSAGES, which the launcher leaves at "C": every character is ASCII.
    out.assign(narrow.begin(), narrow.end());
}

void getTimeString(std::wstring& out) {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%.4d%.2d%.2d_%.2d%.2d%.2d_%.3hd",
                      local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                      local.tm_min, local.tm_sec, static_cast<short>(now.tv_usec / 1000));
    out.assign(text.data(), text.data() + length);
}

void installOutOfMemoryReport() {
    emergencyReserve.fill();
    std::set_new_handler(runOutOfMemory);
}

}  // namespace rcp
