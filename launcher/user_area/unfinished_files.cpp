#include "launcher/user_area/unfinished_files.h"

#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>

namespace rcp {
namespace {

bool isGone(const std::wstring& path) {
    return deleteFile(path) || errno == ENOENT;
}

}  // namespace

std::wstring unfinishedNoteOf(const std::wstring& workspace) {
    return osPath(workspace + paths::kUnfinished);
}

// By name, not by pattern: a file of the user's that only looks like one of these stays.
bool removeUnfinishedFiles(const std::wstring& workspace, const std::wstring& configuration) {
    bool areGone = true;
    for (const auto& [folder, name, ending] : paths::kUnfinishedInWorkspace) {
        areGone &= isGone(osPath(workspace + folder + name + ending));
    }
    for (const auto& [folder, name, ending] : paths::kUnfinishedInConfiguration) {
        areGone &= isGone(osPath(configuration + folder + name + ending));
    }
    return areGone;
}

}  // namespace rcp
