// What the user asked rcpinspect for.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace rcp::inspect {

enum class Format { kText, kJson, kSarif, kHtml };

struct Options {
    std::string launcher;      // the rcplauncher to look at, absolute
    std::string installation;  // the directory it belongs to: where "rcp/rcplauncher" lies
    Format format = Format::kText;
    std::string page;                // the file that Format::kHtml writes
    bool isRedacted = false;         // secrets and who the user is are taken out of it
    bool isColored = false;          // a terminal that may be coloured reads the text
    bool isAll = false;              // lists in full, however long they are
    bool isTryingJvm = false;        // check, doctor: the JVM is started
    bool isStrict = false;           // check: warnings count as errors
    bool isWatching = false;         // status: goes on until interrupted
    bool isSinceLast = false;        // diff: against the recorded last launch
    std::vector<std::string> roots;  // check: several installations
    std::string other;               // diff: the older installation
    bool isFiles = false;            // config: the files as they stand
    std::string output;              // report: the archive; empty for a name with the date
    bool isWithHost = false;         // report: names this machine
    std::string subject;             // why: what is asked about
    std::string environmentFile;     // what it holds are the variables of this process
    std::map<std::string, std::size_t> variableLines = {};  // where in it
    std::vector<std::string> arguments;  // the launcher's, program name not included
};

/// How a text is written for people.
struct TextForm {
    bool isColored = false;
    bool isWhole = false;  // lists in full, however long they are
};

/// Exit statuses that every command shares; `check` says more with its own.
inline constexpr int kSuccess = 0;
inline constexpr int kDifferent = 1;      // diff, as diff(1)
inline constexpr int kUnknown = 1;        // why: nothing is known of it
inline constexpr int kFailure = 70;       // sysexits(3) EX_SOFTWARE, and a record says what
inline constexpr int kWrongUse = 64;      // sysexits(3) EX_USAGE
inline constexpr int kCannotCreate = 73;  // sysexits(3) EX_CANTCREAT: the page or the output

}  // namespace rcp::inspect
