#include "inspect/handoff/room.h"

#include "inspect/making.h"
#include "inspect/quiet_read.h"
#include "inspect/rehearsal/staged_tree.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

namespace rcp::inspect {
namespace {

using nlohmann::json;

// Of one file system.
struct Write {
    std::string folder;  // that is there already
    std::uintmax_t block = 1;
    bool hasFoldersInBlocks = false;
    Room need = {};
    Room beside =
        {};  // what the largest file takes that is written whole before its former one goes

    [[nodiscard]] std::uintmax_t blocksOf(std::uintmax_t size) const {
        return (size + block - 1) / block * block;
    }
};

std::uintmax_t sizeAt(const std::string& place) {
    struct stat status {};
    return ::stat(place.c_str(), &status) == 0 && S_ISREG(status.st_mode)
               ? static_cast<std::uintmax_t>(status.st_size)
               : 0;
}

// A log grows where it is.
bool isOnlyLonger(const std::string& before, const std::string& after) {
    return sizeAt(before) < sizeAt(after) &&
           readPlace(after, kLongestLog).starts_with(readPlace(before, kLongestLog));
}

std::uintmax_t left(std::uintmax_t limit, std::uintmax_t used) {
    return limit == kNoLimit ? kNoLimit : limit - std::min(limit, used);
}

// The nearest folder above, with the file system that it is on.
std::string folderAbove(const std::string& path, struct stat& status) {
    std::filesystem::path folder = std::filesystem::path(path).parent_path();
    while (::stat(placeOf(folder).c_str(), &status) != 0 && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

Write writeBelow(const std::string& folder, const struct stat& status) {
    struct statvfs space {};
    const bool isTold = statvfs(placeOf(folder).c_str(), &space) == 0 && space.f_frsize > 0;
    return {.folder = folder,
            .block = isTold ? space.f_frsize : 1,
            .hasFoldersInBlocks = status.st_blocks > 0};
}

void addMade(Write& write, const FileChange& change, const Rehearsal& rehearsal) {
    const bool isFree = change.isDirectory && !write.hasFoldersInBlocks;
    const std::uintmax_t size = change.isDirectory ? 1 : sizeAt(rehearsal.placeOf(change.path));
    write.need.bytes += isFree ? 0 : write.blocksOf(size);
    write.need.files += 1;
}

void addReplaced(Write& write, const FileChange& change, const Rehearsal& rehearsal) {
    const std::string after = rehearsal.placeOf(change.path);
    const std::string before = placeOf(change.path);
    const std::uintmax_t size = write.blocksOf(sizeAt(after));
    write.need.bytes += size - std::min(size, write.blocksOf(sizeAt(before)));
    if (!isOnlyLonger(before, after)) {
        write.beside = {std::max(write.beside.bytes, size), 1};
    }
}

// For root, what is kept for him counts too.
std::optional<Room> freeAt(const std::string& folder) {
    struct statvfs space {};
    if (statvfs(placeOf(folder).c_str(), &space) != 0) {
        return std::nullopt;
    }
    const bool isRoot = geteuid() == 0;
    return Room{
        std::uintmax_t{isRoot ? space.f_bfree : space.f_bavail} * space.f_frsize,
        space.f_files == 0 ? kNoLimit : std::uintmax_t{isRoot ? space.f_ffree : space.f_favail}};
}

// "a launch writes 2000 bytes; /home has room for 10 bytes of user ann"
std::string lackText(const char* does, std::uintmax_t need, const char* what,
                     const std::string& folder, std::uintmax_t room) {
    std::ostringstream text;
    text << "a launch " << does << " " << need << " " << what << "; " << folder << " has room for "
         << room << " " << what << " of user " << effectiveUser();
    return text.str();
}

}  // namespace

Room roomWithin(const Room& free, const Quota& quota) {
    return {std::min(free.bytes, left(quota.limit.bytes, quota.used.bytes)),
            std::min(free.files, left(quota.limit.files, quota.used.files))};
}

json describeWrites(const Rehearsal& rehearsal) {
    std::map<dev_t, Write> all;
    for (const FileChange& change : rehearsal.changes()) {
        const bool isMade = change.kind == FileChange::Kind::kMade;
        if (!isMade && change.kind != FileChange::Kind::kReplaced) {
            continue;
        }
        struct stat status {};
        const std::string folder = folderAbove(change.path, status);
        Write& write = all.try_emplace(status.st_dev, writeBelow(folder, status)).first->second;
        if (isMade) {
            addMade(write, change, rehearsal);
        } else {
            addReplaced(write, change, rehearsal);
        }
    }
    json writes = json::array();
    for (const auto& [device, write] : all) {
        writes.push_back({{"folder", write.folder},
                          {"bytes", write.need.bytes + write.beside.bytes},
                          {"files", write.need.files + write.beside.files}});
    }
    return writes;
}

Examined examineRoom(const json& writes) {
    Examined examined{.what = "room", .path = "for user " + effectiveUser()};
    for (const json& write : writes) {
        const std::string folder = write["folder"];
        const auto free = freeAt(folder);
        const auto quota = free ? quotaAt(placeOf(folder)) : std::nullopt;
        const Room room = !free   ? Room{kNoLimit, kNoLimit}
                          : quota ? roomWithin(*free, *quota)
                                  : *free;
        const std::uintmax_t bytes = write["bytes"];
        const std::uintmax_t files = write["files"];
        if (bytes > room.bytes) {
            examined.faults.push_back(
                {"RI609", folder, 0, lackText("writes", bytes, "bytes", folder, room.bytes)});
        }
        if (files > room.files) {
            examined.faults.push_back(
                {"RI609", folder, 0, lackText("makes", files, "files", folder, room.files)});
        }
    }
    return examined;
}

}  // namespace rcp::inspect
