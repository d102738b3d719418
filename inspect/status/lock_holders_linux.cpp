// Linux: the lock table of proc(5) names who took a lock and who waits for it; the open files of the
// processes tell who holds it now. Both are needed: a lock goes to the processes that share the open
// file, and its taker may have given it up or be gone, as the launcher that has handed off.
#include "base/system_calls.h"
#include "inspect/status/lock_holders.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace rcp::inspect {
namespace {

namespace files = std::filesystem;

long numberOf(const std::string& text) {
    long number = 0;
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, number).ptr == end ? number : 0;
}

Process processOf(long id) {
    Process process{id, {}};
    std::ifstream file("/proc/" + std::to_string(id) + "/comm");
    std::getline(file, process.name);
    return process;
}

void add(std::vector<Process>& processes, long id) {
    const auto isSame = [id](const Process& process) { return process.id == id; };
    if (id > 0 && std::none_of(processes.begin(), processes.end(), isSame)) {
        processes.push_back(processOf(id));
    }
}

// "1: FLOCK  ADVISORY  WRITE 1234 08:01:5678 0 EOF"; who waits has "->" behind the number.
struct TableLine {
    bool isWaiting = false;
    std::string kind;
    long process = 0;
    std::string file;
};

TableLine parseLine(const std::string& line) {
    std::istringstream text(line);
    std::vector<std::string> words{std::istream_iterator<std::string>(text), {}};
    TableLine result;
    if (words.size() > 1 && words[1] == "->") {
        result.isWaiting = true;
        words.erase(words.begin() + 1);
    }
    if (words.size() > 5) {
        result.kind = words[1];
        result.process = numberOf(words[4]);
        result.file = words[5];
    }
    return result;
}

std::string tableName(const struct stat& file) {
    std::ostringstream name;
    name << std::hex;
    for (const unsigned part : {major(file.st_dev), minor(file.st_dev)}) {
        name << (part < 16 ? "0" : "") << part << ':';
    }
    name << std::dec << file.st_ino;
    return name.str();
}

// Whether the lock belongs to this open file of a process.
bool holdsThrough(const files::path& descriptor) {
    std::ifstream info(descriptor.parent_path().parent_path() / "fdinfo" / descriptor.filename());
    std::string line;
    while (std::getline(info, line)) {
        constexpr std::string_view kLock = "lock:";
        if (line.starts_with(kLock) && parseLine(line.substr(kLock.size())).kind == "FLOCK") {
            return true;
        }
    }
    return false;
}

bool isFile(const files::path& descriptor, const struct stat& file) {
    struct stat opened {};
    return ::stat(descriptor.c_str(), &opened) == 0 && opened.st_ino == file.st_ino &&
           opened.st_dev == file.st_dev;
}

bool hasLock(const files::path& process, const struct stat& file) {
    std::error_code refused;  // other users' processes, and those that have just ended
    for (files::directory_iterator at(process / "fd", refused), end; !refused && at != end;
         at.increment(refused)) {
        if (isFile(at->path(), file) && holdsThrough(at->path())) {
            return true;
        }
    }
    return false;
}

std::vector<Process> holdersByOpenFiles(const struct stat& file) {
    std::vector<Process> holders;
    std::error_code refused;
    for (files::directory_iterator at("/proc", refused), end; !refused && at != end;
         at.increment(refused)) {
        const long id = numberOf(at->path().filename());
        if (id > 0 && hasLock(at->path(), file)) {
            add(holders, id);
        }
    }
    std::sort(holders.begin(), holders.end(),
              [](const Process& left, const Process& right) { return left.id < right.id; });
    return holders;
}

}  // namespace

LockHolders lockHolders(const std::string& path) {
    LockHolders result;
    struct stat file {};
    if (calls::stat(path.c_str(), &file) != 0) {
        return result;
    }
    const std::string name = tableName(file);
    std::vector<Process> takers;
    std::ifstream table("/proc/locks");
    std::string line;
    while (std::getline(table, line)) {
        const TableLine entry = parseLine(line);
        if (entry.kind == "FLOCK" && entry.file == name) {
            result.isHeld = true;
            add(entry.isWaiting ? result.waiting : takers, entry.process);
        }
    }
    result.holders = holdersByOpenFiles(file);
    if (result.holders.empty()) {
        result.holders = takers;
    }
    result.isHeld = result.isHeld || !result.holders.empty();
    return result;
}

}  // namespace rcp::inspect
