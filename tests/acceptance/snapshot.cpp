#include "snapshot.h"

#include <sys/stat.h>

#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

Entry entryOf(const files::directory_entry& entry) {
    if (entry.is_symlink()) {
        return {files::read_symlink(entry.path()), 0};
    }
    if (entry.is_directory()) {
        return {"(directory)", 0};
    }
    if (entry.hard_link_count() > 1) {
        return {"(program)", 0};
    }
    struct stat status {};
    (void)lstat(entry.path().c_str(), &status);
#ifdef __APPLE__
    const timespec& changed = status.st_mtimespec;
#else
    const timespec& changed = status.st_mtim;
#endif
    return {readFile(entry.path()), changed.tv_sec * 1'000'000'000LL + changed.tv_nsec};
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
}

}  // namespace

Snapshot takeSnapshot(const std::string& folder) {
    Snapshot snapshot;
    for (const auto& entry : files::recursive_directory_iterator(folder)) {
        snapshot[entry.path().string().substr(folder.size() + 1)] = entryOf(entry);
    }
    return snapshot;
}

Snapshot portable(Snapshot snapshot, const Installation& velmo) {
    for (auto& [path, entry] : snapshot) {
        replaceAll(entry.content, velmo.root, "ROOT");
        entry.changed = 0;
    }
    return snapshot;
}

Snapshot without(Snapshot snapshot, const std::function<bool(const std::string&)>& isLeftOut) {
    std::erase_if(snapshot, [&](const auto& item) { return isLeftOut(item.first); });
    return snapshot;
}

std::string differences(const Snapshot& expected, const Snapshot& actual) {
    std::string lines;
    for (const auto& [path, entry] : expected) {
        const auto found = actual.find(path);
        if (found == actual.end()) {
            lines += "missing: " + path + "\n";
        } else if (found->second.content != entry.content) {
            lines += "other content: " + path + "\n--- expected\n" + entry.content +
                     "\n--- actual\n" + found->second.content + "\n---\n";
        } else if (found->second.changed != entry.changed) {
            lines += "written again: " + path + "\n";
        }
    }
    for (const auto& [path, entry] : actual) {
        if (!expected.contains(path)) {
            lines += "new: " + path + "\n";
        }
    }
    return lines;
}

Texts temporaryNames(const Snapshot& snapshot) {
    Texts names;
    for (const auto& [path, entry] : snapshot) {
        if (path.ends_with(".tmp") || path.ends_with(".new") ||
            path.ends_with("/.rcp.unfinished")) {
            names.push_back(path);
        }
    }
    return names;
}

}  // namespace acceptance
