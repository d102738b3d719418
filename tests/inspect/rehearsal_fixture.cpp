#include "tests/inspect/rehearsal_fixture.h"

#include "base/system_calls.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

namespace rcp::inspect::test {
namespace {

namespace files = std::filesystem;

std::string withoutRoot(std::string text, const std::string& root) {
    for (std::size_t at = 0; (at = text.find(root)) != std::string::npos;) {
        text.replace(at, root.size(), "ROOT");
    }
    return text;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string octal(mode_t mode) {
    std::ostringstream text;
    text << std::oct << (mode & 07777);
    return text.str();
}

std::string statusText(const struct stat& status) {
    const char* kind = S_ISDIR(status.st_mode) ? "directory" : "file";
    return (S_ISLNK(status.st_mode) ? "link" : kind + (" " + octal(status.st_mode))) +
           (S_ISREG(status.st_mode) ? " of " + std::to_string(status.st_size) : "");
}

std::string resultText(ssize_t result) {
    return result < 0 ? std::string("error: ") + strerror(errno) : "done";
}

std::string namesIn(int descriptor) {
    std::set<std::string> names;
    DIR* directory = fdopendir(descriptor);
    for (const dirent* entry = readdir(directory); entry != nullptr; entry = readdir(directory)) {
        names.insert(entry->d_name);
    }
    closedir(directory);
    std::string text = "holds";
    for (const std::string& name : names) {
        text += " " + name;
    }
    return text;
}

std::string useOpened(int descriptor, const Call& call) {
    if (descriptor < 0) {
        return resultText(descriptor);
    }
    struct stat status {};
    fstat(descriptor, &status);
    if (S_ISDIR(status.st_mode)) {
        return namesIn(descriptor);
    }
    std::string text = statusText(status);
    if (!call.written.empty()) {
        text += " wrote " + resultText(write(descriptor, call.written.data(), call.written.size()));
    }
    char buffer[256];
    const ssize_t length = read(descriptor, buffer, sizeof buffer);
    text += length < 0 ? " " + resultText(length)
                       : " read " + std::string(buffer, static_cast<std::size_t>(length));
    close(descriptor);
    return text;
}

// What the call of this name without "at" does, from the directory that the path's last element
// lies in.
std::string resultFromDirectory(const Call& call, const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const int directory =
        calls::open(path.substr(0, slash).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) {
        return "no directory " + resultText(directory);
    }
    const std::string name = path.substr(slash + 1);
    std::string text;
    if (call.name == "openat") {
        const int flags = call.flags & ~(O_CREAT | O_EXCL);
        text = useOpened(calls::openat(directory, name.c_str(), flags | O_CLOEXEC), call);
    } else if (call.name == "fstatat") {
        struct stat status {};
        const int result = calls::fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
        text = result < 0 ? resultText(result) : statusText(status);
    } else {
        const int flags = call.name == "rmdirat" ? AT_REMOVEDIR : 0;
        text = resultText(calls::unlinkat(directory, name.c_str(), flags));
    }
    close(directory);
    return text;
}

std::string look(const Call& call, const std::string& path) {
    struct stat status {};
    const bool isFollowing = call.name == "stat";
    const int result =
        isFollowing ? calls::stat(path.c_str(), &status) : calls::lstat(path.c_str(), &status);
    return result < 0 ? resultText(result) : statusText(status);
}

std::string readLink(const std::string& path) {
    char buffer[4096];
    const ssize_t length = calls::readlink(path.c_str(), buffer, sizeof buffer);
    return length < 0 ? resultText(length) : std::string(buffer, static_cast<std::size_t>(length));
}

std::string resolve(const std::string& path) {
    char* resolved = calls::realpath(path.c_str());
    std::string text = resolved == nullptr ? resultText(-1) : std::string(resolved);
    free(resolved);
    return text;
}

std::string resultOf(const Call& call, const std::string& root) {
    const std::string path = root + "/" + call.path;
    if (call.name == "open") {
        return useOpened(calls::open(path.c_str(), call.flags | O_CLOEXEC, call.mode), call);
    }
    if (call.name.ends_with("at") && call.name != "stat" && call.name != "lstat") {
        return resultFromDirectory(call, path);
    }
    if (call.name == "stat" || call.name == "lstat") {
        return look(call, path);
    }
    if (call.name == "readlink") {
        return readLink(path);
    }
    if (call.name == "realpath") {
        return resolve(path);
    }
    if (call.name == "mkdir") {
        return resultText(calls::mkdir(path.c_str(), call.mode));
    }
    if (call.name == "rename") {
        return resultText(calls::rename(path.c_str(), (root + "/" + call.other).c_str()));
    }
    if (call.name == "unlink") {
        return resultText(calls::unlink(path.c_str()));
    }
    if (call.name == "rmdir") {
        return resultText(calls::unlinkat(AT_FDCWD, path.c_str(), AT_REMOVEDIR));
    }
    const std::string target = std::regex_replace(call.other, std::regex("ROOT"), root);
    return resultText(calls::symlink(target.c_str(), path.c_str()));
}

bool isAt(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

// Each path by the longest move that there is for it, all of them at once.
Tree afterMoves(const Tree& before, const std::map<std::string, std::string>& moves) {
    Tree after;
    for (const auto& [path, entry] : before) {
        std::string from;
        for (const auto& [source, target] : moves) {
            from = isAt(path, source) && source.size() > from.size() ? source : from;
        }
        const std::string to = from.empty() ? path : moves.at(from) + path.substr(from.size());
        EXPECT_TRUE(after.emplace(to, entry).second) << to << " was there";
    }
    return after;
}

const char* nameOf(FileChange::Kind kind) {
    constexpr const char* kNames[] = {"removed", "moved", "replaced", "made"};
    return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace

Tree treeOf(const std::string& root) {
    Tree tree;
    for (const auto& entry : files::recursive_directory_iterator(root)) {
        tree[entry.path().string().substr(root.size() + 1)] = entryAt(entry.path(), root);
    }
    return tree;
}

std::string entryAt(const std::string& place, const std::string& root) {
    struct stat status {};
    if (::lstat(place.c_str(), &status) != 0) {
        return {};
    }
    if (S_ISLNK(status.st_mode)) {
        return "link " + withoutRoot(files::read_symlink(place), root);
    }
    return statusText(status) + (S_ISREG(status.st_mode) ? ": " + contentOf(place) : "");
}

std::string carryOut(const Call& call, const std::string& root) {
    std::string text = call.name + " " + call.path;
    text += call.other.empty() ? "" : ", " + call.other;
    text += call.name.starts_with("open") ? " " + octal(static_cast<mode_t>(call.flags)) : "";
    errno = 0;
    return text + " = " + withoutRoot(resultOf(call, root), root);
}

std::string listOf(const std::vector<FileChange>& changes, const std::string& root) {
    std::string text;
    for (const FileChange& change : changes) {
        const char* kind = change.isDirectory ? "directory " : change.isLink ? "link " : "file ";
        text += nameOf(change.kind) + (" " + (kind + change.name));
        text += change.to.empty() ? "\n" : " -> " + change.toName + "\n";
    }
    return std::regex_replace(text, std::regex(root + "/"), "");
}

Tree changed(Tree before, const Rehearsal& rehearsal, const std::string& root) {
    std::map<std::string, std::string> moves;
    for (const FileChange& change : rehearsal.changes()) {
        EXPECT_TRUE(change.path.starts_with(root + "/")) << change.path;
        const std::string path = change.path.substr(root.size() + 1);
        if (change.kind == FileChange::Kind::kRemoved) {
            const auto count =
                std::erase_if(before, [&](const auto& entry) { return isAt(entry.first, path); });
            EXPECT_GT(count, 0U) << path << " was not there";
        } else if (change.kind == FileChange::Kind::kMoved) {
            EXPECT_TRUE(moves.emplace(path, change.to.substr(root.size() + 1)).second) << path;
        }
    }
    Tree after = afterMoves(before, moves);
    for (const FileChange& change : rehearsal.changes()) {
        const bool isMade = change.kind == FileChange::Kind::kMade;
        if (isMade || change.kind == FileChange::Kind::kReplaced) {
            std::string& entry = after[change.path.substr(root.size() + 1)];
            const std::string now = entryAt(rehearsal.placeOf(change.path, LastLink::kKept), root);
            EXPECT_EQ(entry.empty(), isMade) << nameOf(change.kind) << " " << change.path;
            EXPECT_NE(entry, now) << change.path << " is as it was";
            entry = now;
        }
    }
    return after;
}

// --- As whom and where ------------------------------------------------------------------------------

AsAnotherUser::AsAnotherUser() {
    if (geteuid() == 0) {
        EXPECT_EQ(seteuid(kUser), 0);
    }
}

AsAnotherUser::~AsAnotherUser() {
    if (getuid() == 0) {
        EXPECT_EQ(seteuid(0), 0);
    }
}

RehearsalTest::RehearsalTest() {
    makeTrees();
}

void RehearsalTest::makeTrees() const {
    for (const std::string& root : {real(), rehearsed()}) {
        files::remove_all(root);
        makeTree(root);
    }
    files::remove_all(folder_.path() / "copies");
    files::create_directory(folder_.path() / "copies");
}

void RehearsalTest::makeTree(const std::string& root) {
    files::create_directories(root + "/a/b");
    files::create_directories(root + "/c");
    files::create_directories(root + "/empty");
    for (const char* name : {"/a/f", "/a/b/f", "/c/g", "/f"}) {
        std::ofstream(root + name) << "text of " << name;
    }
    files::create_symlink("a", root + "/l");
    files::create_symlink(root + "/c", root + "/a/m");
    files::create_symlink(root + "/f", root + "/c/o");
    files::create_symlink("nowhere", root + "/n");
    files::create_symlink("loop", root + "/c/loop");
}

void RehearsalTest::startRehearsal() {
    rehearsal_ = std::make_unique<Rehearsal>(folder_.narrow("copies"));
}

std::vector<std::string> RehearsalTest::carryOutAll(const std::vector<Call>& calls,
                                                    const std::string& root) const {
    std::optional<AsAnotherUser> another;
    if (isForAnotherUser_) {
        another.emplace();
    }
    std::vector<std::string> results;
    for (const Call& call : calls) {
        results.push_back(carryOut(call, root));
    }
    return results;
}

void RehearsalTest::expectTheSame(const std::vector<Call>& calls) {
    const Tree before = treeOf(rehearsed());
    const std::vector<std::string> results = carryOutAll(calls, real());
    startRehearsal();
    const std::vector<std::string> rehearsedResults = carryOutAll(calls, rehearsed());
    std::string way;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        ASSERT_EQ(results[i], rehearsedResults[i]) << "behind\n" << way;
        way += results[i] + "\n";
    }
    EXPECT_EQ(before, treeOf(rehearsed())) << "changed in a rehearsal";
    EXPECT_EQ(treeOf(real()), changed(before, *rehearsal_, rehearsed())) << "behind\n" << way;
    rehearsal_.reset();
}

std::string RehearsalTest::changesOf(const std::vector<Call>& calls) {
    startRehearsal();
    for (const Call& call : calls) {
        const std::string result = carryOut(call, rehearsed());
        EXPECT_FALSE(std::regex_search(result, std::regex(" = error: "))) << result;
    }
    std::string list = listOf(rehearsal_->changes(), rehearsed());
    rehearsal_.reset();
    return list;
}

}  // namespace rcp::inspect::test
