// Whether the files that decided a rehearsed launch are still what they were.
#pragma once

#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rcp::inspect {

/// How much of a path is there, and for a whole one which file in which state.
struct FileSign {
    std::string
        nearest;  // the path or, as long as it is missing, the first of its parents that is not
    ino_t number = 0;
    off_t size = 0;
    long seconds = 0;  // of the last change, and the rest of it
    long nanoseconds = 0;

    bool operator==(const FileSign&) const = default;
};

FileSign signOf(const std::string& path);

/// The files that a rehearsed launch read, would change or would start, in order. Not its logs: what
/// they hold decides nothing.
std::vector<std::string> pathsOf(const nlohmann::json& launch);

}  // namespace rcp::inspect
