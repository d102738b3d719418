#include "inspect/handoff/code_faults.h"

#include "base/system_calls.h"
#include "inspect/handoff/own_code.h"
#include "inspect/quiet_read.h"
#include "platform/files.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace rcp::inspect {
namespace {

constexpr std::size_t kLongestFirstLine = 256;
// What the loader needs to know of a program or library stands far in front of that.
constexpr std::size_t kLongestCode = std::size_t{64} << 20U;

StartFault failsWith(int error, const std::string& reason = {}) {
    return {error, reason.empty() ? strerror(error) : reason};
}

// The program behind "#!".
std::string scriptInterpreter(const std::string& start) {
    const std::string line = start.substr(2, start.find('\n') - 2);
    const std::size_t begin = line.find_first_not_of(" \t");
    return begin == std::string::npos
               ? std::string()
               : line.substr(begin, line.find_first_of(" \t\r", begin) - begin);
}

std::optional<StartFault> fileFault(const std::string& path) {
    struct stat status {};
    if (calls::stat(path.c_str(), &status) != 0) {
        return failsWith(errno);
    }
    if (!S_ISREG(status.st_mode) || (status.st_mode & 0111U) == 0 || !isAllowedAt(path, X_OK)) {
        return failsWith(EACCES);
    }
    return std::nullopt;
}

std::optional<StartFault> interpreterFault(const std::string& interpreter) {
    const auto fault = fileFault(interpreter);
    return fault
               ? std::optional(failsWith(fault->error, "its interpreter " + interpreter +
                                                           " cannot be started: " + fault->reason))
               : std::nullopt;
}

// Whether the answer may lie behind what was read.
bool isNotJudged(const std::string& file, const std::optional<OwnCode>& code) {
    return !code && file.size() == kLongestCode && looksLikeOwnCode(file);
}

std::string foreign(const OwnCode& code) {
    return "it is for " + code.machine + ", not for this machine";
}

}  // namespace

std::optional<StartFault> startFault(const std::string& path) {
    if (auto fault = fileFault(path)) {
        return fault;
    }
    if (!isAllowedAt(path, R_OK)) {
        return std::nullopt;  // it can be started all the same
    }
    const std::string start = readQuietly(path, kLongestFirstLine);
    if (start.starts_with("#!")) {
        return interpreterFault(scriptInterpreter(start));
    }
    const std::string file = readQuietly(path, kLongestCode);
    const std::optional<OwnCode> code = readOwnCode(file);
    if (isNotJudged(file, code)) {
        return std::nullopt;
    }
    if (!code) {
        return failsWith(ENOEXEC,
                         start.empty() ? "it is empty" : "it is no program of this system");
    }
    if (!code->isForThisMachine) {
        return code->isEmulated ? std::nullopt : std::optional(failsWith(ENOEXEC, foreign(*code)));
    }
    return code->interpreter.empty() ? std::nullopt : interpreterFault(code->interpreter);
}

std::optional<std::string> loadFault(const std::string& path,
                                     std::span<const char* const> entryPoints,
                                     const std::string& variable) {
    if (!isAllowedAt(path, R_OK)) {
        return strerror(errno);
    }
    const std::string file = readQuietly(path, kLongestCode);
    const std::optional<OwnCode> code = readOwnCode(file);
    if (isNotJudged(file, code)) {
        return std::nullopt;
    }
    if (!code) {
        return file.empty() ? "it is empty" : "it is no library of this system, or damaged";
    }
    if (!code->isForThisMachine) {
        return foreign(*code);
    }
    if (!code->isLibrary) {
        return "it is a program, not a library";
    }
    for (const char* name : entryPoints) {
        if (code->symbols &&
            std::find(code->symbols->begin(), code->symbols->end(), name) == code->symbols->end()) {
            return std::string("it has no \"") + name + "\"";
        }
    }
    for (const std::string& name : code->libraries) {
        if (findLibrary(name, *code, path, variable).empty()) {
            return "it needs " + name + ", which is nowhere";
        }
    }
    return std::nullopt;
}

bool needsLibrary(const std::string& program, std::string_view start) {
    const std::optional<OwnCode> code = readOwnCode(readQuietly(program, kLongestCode));
    return code &&
           std::any_of(
               code->libraries.begin(), code->libraries.end(), [&](const std::string& name) {
                   return std::filesystem::path(name).filename().string().starts_with(start);
               });
}

std::vector<std::string> missingLibraries(const std::string& path, const std::string& variable) {
    std::vector<std::string> missing;
    // Unlike a library's, a program's own folder is that of the file which links lead to.
    const std::string program = resolvedPath(path).value_or(path);
    const std::optional<OwnCode> code = readOwnCode(readQuietly(program, kLongestCode));
    for (const std::string& name : code ? code->libraries : std::vector<std::string>()) {
        if (findLibrary(name, *code, program, variable).empty()) {
            missing.push_back(name);
        }
    }
    return missing;
}

}  // namespace rcp::inspect
