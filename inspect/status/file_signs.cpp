#include "inspect/status/file_signs.h"

#include "base/system_calls.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>

namespace rcp::inspect {
namespace {

using nlohmann::json;

void add(std::set<std::string>& paths, const json& object, const char* member) {
    const std::string path = object.value(member, "");
    if (path.starts_with('/') && !path.ends_with(".log")) {
        paths.insert(path);
    }
}

timespec lastChange(const struct stat& status) {
#ifdef __APPLE__
    return status.st_ctimespec;
#else
    return status.st_ctim;
#endif
}

}  // namespace

FileSign signOf(const std::string& path) {
    struct stat status {};
    if (calls::stat(path.c_str(), &status) == 0) {
        const timespec changed = lastChange(status);
        return {path, status.st_ino, status.st_size, changed.tv_sec, changed.tv_nsec};
    }
    // Its own state is none of ours: others' files come and go in it.
    std::filesystem::path nearest = std::filesystem::path(path).parent_path();
    while (nearest.has_relative_path() && calls::stat(nearest.c_str(), &status) != 0) {
        nearest = nearest.parent_path();
    }
    return {nearest.string()};
}

std::vector<std::string> pathsOf(const json& launch) {
    std::set<std::string> paths;
    add(paths, launch, "launcher");
    add(paths, launch["outcome"], "program");
    for (const json& file : launch["files"]) {
        add(paths, file, "path");
    }
    for (const json& change : launch["changes"]) {
        add(paths, change, "path");
        add(paths, change, "to");
    }
    for (const json& element : launch["elements"]) {
        add(paths, element, "text");
    }
    // Files that decide by being there.
    paths.insert(launch["installation"].get<std::string>() + "/rcp/rcplauncher.properties");
    paths.insert(launch["installation"].get<std::string>() + "/rcp/rcplauncher.debug");
    return {paths.begin(), paths.end()};
}

}  // namespace rcp::inspect
