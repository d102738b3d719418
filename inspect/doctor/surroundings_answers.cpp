#include "inspect/doctor/surroundings_answers.h"

#include "inspect/handoff/room.h"
#include "inspect/making.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"
#include "platform/files.h"

#include <stdlib.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr int kLevelsToHome = 5;  // from JDK/jre/lib/server/libjvm.so
constexpr std::size_t kLongestRelease = 65536;

// The file in which a JVM tells what it is, above its library or program.
std::string releaseOf(const std::string& jvm) {
    files::path folder = files::path(resolvedPath(jvm).value_or(jvm)).parent_path();
    for (int i = 0; i < kLevelsToHome && folder.has_relative_path(); ++i) {
        if (std::string text = readQuietly(folder / "release", kLongestRelease); !text.empty()) {
            return text;
        }
        folder = folder.parent_path();
    }
    return {};
}

// KEY="VALUE"
std::string valueIn(const std::string& release, const std::string& key) {
    std::istringstream lines(release);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(key + "=\"") && line.ends_with('"')) {
            return line.substr(key.size() + 2, line.size() - key.size() - 3);
        }
    }
    return {};
}

// The folder itself, or the nearest above it that is there.
std::string nearestFolder(const std::string& folder) {
    files::path path = folder;
    while (path.has_relative_path() && !isThere(path)) {
        path = path.parent_path();
    }
    return path;
}

std::string inMegabytes(std::uintmax_t bytes) {
    constexpr std::uintmax_t kMegabyte = std::uintmax_t{1} << 20U;
    return std::to_string(bytes / kMegabyte) + " MB";
}

// What a launch writes are some small files; the log is the longest of them. Where there is less room than a
// launch takes, check's finding tells.
constexpr std::uintmax_t kLeastBytes = std::uintmax_t{1} << 20U;
constexpr std::uintmax_t kLeastFiles = 32;

void judgeSpace(const struct statvfs& space, const std::string& folder, Answer& answer) {
    const std::uintmax_t bytes = std::uintmax_t{space.f_bavail} * space.f_frsize;
    answer.text += ", " + inMegabytes(bytes) + " free";
    if (bytes < kLeastBytes) {
        answer.problems.push_back(
            {Mark::kOdd,
             "the file system of " + folder + " has " + std::to_string(bytes) + " bytes left", "",
             "Make room there, or name another workspace with -data."});
    }
    if (space.f_files > 0 && space.f_favail < kLeastFiles) {
        answer.problems.push_back({Mark::kOdd,
                                   "the file system of " + folder + " has room for " +
                                       std::to_string(space.f_favail) + " more files",
                                   "",
                                   "Remove files there, or name another workspace with -data."});
    }
}

}  // namespace

Answer answerJvm(const Evidence& evidence) {
    const std::string jvm = evidence.jvm();
    Answer answer{"JVM", jvm.empty() ? "none is chosen before the launch ends" : jvm,
                  evidence.problemsOf(Subject::kJvm)};
    const std::string release = releaseOf(jvm);
    for (const char* key : {"JAVA_VERSION", "IMPLEMENTOR", "OS_ARCH"}) {
        if (const std::string value = valueIn(release, key); !value.empty()) {
            answer.text += ", " + value;
        }
    }
    if (const std::string said = evidence.pathOf("tried JVM"); !said.empty()) {
        answer.text += "; tried, it said: " + said;
    }
    return answer;
}

Answer answerSpace(const Evidence& evidence) {
    const std::string& workspace = evidence.state.workspace;
    Answer answer{"space and permissions", "of user " + effectiveUser()};
    if (geteuid() == 0) {
        answer.text += ", for whom permissions do not count: others may get other answers";
    }
    if (workspace.empty()) {
        answer.text += "; not looked at, for the launch ends before its workspace is known";
        return answer;
    }
    const std::string folder = nearestFolder(workspace);
    if (!isFolder(folder)) {
        answer.problems.push_back(
            {Mark::kBad, folder + " is no folder", "", "Name another workspace with -data."});
        return answer;
    }
    for (Problem& lack : evidence.problemsOf(Subject::kSpace)) {
        answer.problems.push_back(std::move(lack));
    }
    if (!isAllowedAt(folder, W_OK | X_OK)) {
        answer.problems.push_back({Mark::kBad, folder + " may not be written", "",
                                   "Let the user write there, or name another workspace with "
                                   "-data."});
    }
    struct statvfs space {};
    if (statvfs(placeOf(folder).c_str(), &space) == 0) {
        judgeSpace(space, folder, answer);
    }
    return answer;
}

Answer answerLocale(const Evidence& evidence) {
    const std::string characters = evidence.pathOf("locale");
    return {"locale", "characters are " + (characters.empty() ? "not looked at" : characters),
            evidence.problemsOf(Subject::kLocale)};
}

Answer answerEnvironment(const Evidence& evidence) {
    const std::size_t changed = evidence.explanation["environment"].size();
    return {"environment", std::to_string(changed) + " variables change, of which explain tells",
            evidence.problemsOf(Subject::kEnvironment)};
}

}  // namespace rcp::inspect
