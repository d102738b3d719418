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

void writeRecord(std::string text) {
    text.resize(cutAtCharacter(text, kRecordLimit).size());
    text += '\n';
    writeToLog(text);
}

constexpr int kFatalStatus = 255;

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

// The record may be the last thing this process says, so a failure while it is made must not start
// another report.
void runOutOfMemory() {
    static bool isReporting = false;
    if (std::exchange(isReporting, true)) {
        writeLastWords(messages.outOfMemory.format);
        writeLastWords("\n");
    } else {
        emergencyReserve.release();
        reportRecord(because(ENOMEM), messages.outOfMemory.format, {});
        endedWith(kFatalStatus);
    }
    _exit(kFatalStatus);
}

}  // namespace

bool setDebug(bool on) {
    return std::exchange(debug, on);
}

const ForcedTracing* ForcedTracing::outermost_ = nullptr;

ForcedTracing::ForcedTracing() : saved_(setDebug(true)) {
    if (outermost_ == nullptr) {
        outermost_ = this;
    }
}

ForcedTracing::~ForcedTracing() {
    setDebug(saved_);
    if (outermost_ == this) {
        outermost_ = nullptr;
    }
}

bool isTracingAsked() {
    return ForcedTracing::outermost_ == nullptr ? debug : ForcedTracing::outermost_->saved_;
}

void SvcDebugOutA(std::string_view text) {
    if (debug && text.size() < kTraceFormatLimit) {
        writeRecord(std::string(text));
    }
}

void SvcDebugOutA(std::string_view format, std::span<const FormatArgument> arguments) {
    if (debug && format.size() < kTraceFormatLimit) {
        writeRecord(expandFormat(format, arguments));
    }
}

void SvcDebugOutA(std::string_view format, std::string_view argument) {
    const FormatArgument arguments[] = {argument};
    SvcDebugOutA(format, arguments);
}

void SvcDebugOutA(std::string_view format, int argument) {
    const FormatArgument arguments[] = {static_cast<long>(argument)};
    SvcDebugOutA(format, arguments);
}

void SvcDebugOutW(std::wstring_view format, std::wstring_view argument) {
    if (debug && format.size() < kTraceFormatLimit) {
        const FormatArgument arguments[] = {argument};
        writeRecord(expandFormat(toUtf8(format), arguments));
    }
}

void traceArguments(Message<> message, std::span<const Argument> arguments) {
    if (!debug) {
        return;
    }
    std::string line = std::string(message.format) + "=\"";
    for (const Argument& argument : arguments) {
        line += toUtf8(argument.text);
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

std::string Reason::text() const {
    std::string text = place_.empty() ? std::string() : " (" + toUtf8(place_) + ")";
    if (words_ != nullptr || error_ != 0) {
        text += " : ";
        text += words_ != nullptr ? words_ : strerror(error_);
    }
    return text;
}

std::string reportRecord(const Reason& reason, std::string_view format,
                         std::span<const FormatArgument> arguments) {
    std::string text = expandFormat(format, arguments);
    text.resize(cutAtCharacter(text, kRecordLimit).size());
    text += reason.text();
    text.resize(cutAtCharacter(text, kRecordLimit).size());
    writeRecord(text);
    return text;
}

void endWithRecord(const Reason& reason, std::string_view format,
                   std::span<const FormatArgument> arguments) {
    throw LaunchEnded{kFatalStatus, reportRecord(reason, format, arguments), reason.origin()};
}

void endLaunch(int status) {
    throw LaunchEnded{status, {}, {}};
}

int endedWith(int status) {
    if (status != 0 && !logHasAll()) {
        dumpLogToTempLocation();
    }
    return status;
}

std::string GetLastErrorMsg() {
    const int savedErrno = errno;
    return " Failed with error " + std::to_string(savedErrno) + ": " + strerror(savedErrno);
}

std::wstring getTimeString() {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%.4d%.2d%.2d_%.2d%.2d%.2d_%.3hd",
                      local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                      local.tm_min, local.tm_sec, static_cast<short>(now.tv_usec / 1000));
    return {text.data(), text.data() + length};
}

void installOutOfMemoryReport() {
    emergencyReserve.fill();
    std::set_new_handler(runOutOfMemory);
}

}  // namespace rcp
