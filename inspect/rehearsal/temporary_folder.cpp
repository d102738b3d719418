#include "inspect/rehearsal/temporary_folder.h"

#include "inspect/quiet_read.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

constexpr std::string_view kName = "rcpinspect-XXXXXX";
constexpr std::size_t kNamed = kName.find('X');
// What nobody else writes into a folder of his, whatever its name.
constexpr std::string_view kMark = "rcpinspect 6f1d0c52-8a3e-4b97-b1c4-2e95d7a8f063\n";
constexpr time_t kDay = time_t{24} * 60 * 60;

std::string parentFolder() {
    const char* given = getenv("TMPDIR");
    return given == nullptr || *given == '\0' ? "/tmp" : given;
}

std::string markOf(const std::string& folder) {
    return folder + "/mark";
}

// Made by a run of this user's, and by nobody else: nobody but he could have put the mark there.
bool isOwn(const std::string& folder) {
    struct stat status {};
    struct stat mark {};
    return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 0777U) == 0700 &&
           lstat(markOf(folder).c_str(), &mark) == 0 && S_ISREG(mark.st_mode) &&
           mark.st_uid == geteuid() && mark.st_mtime + kDay < time(nullptr) &&
           readPlace(markOf(folder), kMark.size() + 1) == kMark;
}

// What interrupted runs have left.
void removeOld(const std::string& parent) {
    std::error_code unknown;
    for (const auto& entry : files::directory_iterator(
             parent, files::directory_options::skip_permission_denied, unknown)) {
        const std::string name = entry.path().filename();
        if (name.size() == kName.size() && name.starts_with(kName.substr(0, kNamed)) &&
            isOwn(entry.path())) {
            files::remove_all(entry.path(), unknown);
        }
    }
}

}  // namespace

TemporaryFolder::TemporaryFolder() : path_(parentFolder() + "/" + std::string(kName)) {
    removeOld(parentFolder());
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("no folder can be made as " + path_);
    }
    std::ofstream(markOf(path_)) << kMark;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    files::remove_all(path_, ignored);
}

}  // namespace rcp::inspect
