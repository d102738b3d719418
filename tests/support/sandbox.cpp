#include "tests/support/sandbox.h"

#include <stdlib.h>
#include <sys/types.h>
#include <unistd.h>  // macOS has mkdtemp here

#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#ifdef __linux__
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/magic.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#endif

namespace rcp::test {
namespace {

namespace files = std::filesystem;

struct Sandbox {
    std::string obstacle = "this system has no mount namespaces";
    std::string folder;        // for the test's files
    std::string view;          // where the machine's own /tmp is seen; empty when nobody needs it
    std::optional<dev_t> tmp;  // the device number of the new /tmp
};

Sandbox sandbox;

// What startWhereSeen leaves for enterSandbox: the device number of /tmp, the folder and the view.
[[maybe_unused]] constexpr char kAgain[] = "RCP_SANDBOX_AGAIN";

bool isBelow(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

// Where a path of the built project lies in the copy that is tested.
std::string inCopy(const std::string& path) {
    const std::pair<const char*, std::string> places[] = {{"RCP_TEST_BUILD", SANDBOX_BUILD},
                                                          {"RCP_TEST_SOURCES", SANDBOX_SOURCES}};
    for (const auto& [variable, folder] : places) {
        const char* const copy = getenv(variable);
        if (copy != nullptr && isBelow(path, copy)) {
            return path;  // the copy may lie in the project itself
        }
    }
    for (const auto& [variable, folder] : places) {
        const char* const copy = getenv(variable);
        if (copy != nullptr && isBelow(path, folder)) {
            return copy + path.substr(folder.size());
        }
    }
    return path;
}

#ifdef __linux__

constexpr char kTmp[] = "/tmp";

// Whether every user gets there: tests of root play others.
bool isOpenToAll(files::path folder) {
    while (folder.has_relative_path()) {
        if ((files::status(folder).permissions() & files::perms::others_exec) ==
            files::perms::none) {
            return false;
        }
        folder = folder.parent_path();
    }
    return true;
}

// Folders of every Linux system that a test needs nothing from. They are mounted over where the
// project itself lies below /tmp, which the new /tmp hides, or behind a door closed to others.
std::optional<std::string> unusedPlace(const std::string& taken = {}) {
    for (const std::string place : {"/mnt", "/media", "/srv", "/opt"}) {
        std::error_code missing;
        if (place != taken && files::is_directory(place, missing) &&
            !isBelow(inCopy(SANDBOX_SOURCES), place) && !isBelow(inCopy(SANDBOX_BUILD), place)) {
            return place;
        }
    }
    errno = ENOENT;
    return std::nullopt;
}

bool writeFile(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    const bool written =
        file != -1 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file != -1) {
        close(file);
    }
    return written;
}

// Of what a user may do in a user namespace only mounting stays, or no file would be closed to it.
bool keepOnlyMounting() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
    data[0].effective = data[0].permitted = 1U << CAP_SYS_ADMIN;
    // The system has closed /proc/self to a process whose rights grew; it is the user's own again.
    return syscall(SYS_capset, &header, data) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0;
}

bool enterNamespace() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user == 0) {
        return unshare(CLONE_NEWNS) == 0;
    }
    const auto itself = [](auto id) {
        return std::to_string(id) + " " + std::to_string(id) + " 1";
    };
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", itself(user)) &&
           writeFile("/proc/self/gid_map", itself(group)) && keepOnlyMounting();
}

bool makeAllReadOnly() {
    mount_attr change = {};
    change.attr_set = MOUNT_ATTR_RDONLY;
    return mount_setattr(AT_FDCWD, "/", AT_RECURSIVE, &change, sizeof change) == 0;
}

bool makeWritable(const std::string& place) {
    mount_attr change = {};
    change.attr_clr = MOUNT_ATTR_RDONLY;
    return mount_setattr(AT_FDCWD, place.c_str(), 0, &change, sizeof change) == 0;
}

// Who is not root can do no harm there, and writes there to shut in processes of its own.
bool leaveProcToUsers() {
    return geteuid() == 0 || makeWritable("/proc") || errno == EPERM;
}

std::optional<dev_t> deviceOf(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? std::optional(status.st_dev) : std::nullopt;
}

// A new file system; true only when it is really what is found there now.
bool mountNew(const std::string& place, const char* options) {
    const std::optional<dev_t> before = deviceOf(place);
    struct statfs status = {};
    return mount("tmpfs", place.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options) == 0 &&
           deviceOf(place) != before && statfs(place.c_str(), &status) == 0 &&
           status.f_type == TMPFS_MAGIC && files::is_empty(place);
}

bool bind(const std::string& what, const std::string& place, unsigned long flags = 0) {
    return mount(what.c_str(), place.c_str(), nullptr, MS_BIND | flags, nullptr) == 0;
}

// A working directory that the new /tmp hides is none any more.
bool isSomewhere(const Sandbox& inside) {
    std::error_code hidden;
    return files::exists(files::current_path(hidden), hidden) || chdir(inside.folder.c_str()) == 0;
}

// Fills in `inside` and carries it out. No folder of the user's is ever mounted below a place that
// a test empties: the view is read-only and apart.
bool enter(const std::string& folder, Shelter shelter, Sandbox& inside) {
    if (!enterNamespace() || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return false;
    }
    const bool isFolderHidden = isBelow(folder, kTmp) || !isOpenToAll(folder);
    const auto home = isFolderHidden ? unusedPlace() : folder;
    if (!home) {
        return false;
    }
    inside.folder = *home;
    if (isBelow(folder, kTmp) || isBelow(inCopy(SANDBOX_SOURCES), kTmp) ||
        isBelow(inCopy(SANDBOX_BUILD), kTmp)) {
        const auto view = unusedPlace(*home);
        if (!view || !bind(kTmp, *view, MS_REC)) {
            return false;
        }
        inside.view = *view;
    }
    const bool isKept = shelter == Shelter::kKept;
    const char* const writable = getenv("RCP_TEST_WRITABLE");
    return (!isKept || bind(folder, inside.folder)) &&
           (writable == nullptr || bind(writable, writable)) && makeAllReadOnly() &&
           (writable == nullptr || makeWritable(writable)) && leaveProcToUsers() &&
           (isKept ? makeWritable(inside.folder) : mountNew(inside.folder, "mode=0755")) &&
           mountNew(kTmp, "mode=1777") && (inside.tmp = deviceOf(kTmp)) && isSomewhere(inside);
}

// Tried by a child first, so that a system which lets only half of it happen leaves us untouched.
std::string obstacleTo(const std::string& folder, Shelter shelter) {
    const pid_t child = fork();
    if (child == 0) {
        Sandbox tried;
        _exit(enter(folder, shelter, tried) ? 0 : errno);
    }
    int status = -1;
    if (child == -1 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return "no process could be started to try it";
    }
    return WEXITSTATUS(status) == 0
               ? ""
               : std::string("mount namespace: ") + std::strerror(WEXITSTATUS(status));
}

#endif

#ifdef __linux__

// True when this program was started again in here.
bool isInside(Sandbox& inside) {
    const char* const left = getenv(kAgain);
    std::istringstream lines(left == nullptr ? "" : left);
    dev_t device = 0;
    if (!(lines >> device).ignore() || deviceOf(kTmp) != device) {
        return false;
    }
    std::getline(lines, inside.folder);
    std::getline(lines, inside.view);
    inside.tmp = device;
    inside.obstacle.clear();
    return unsetenv(kAgain) == 0;
}

#endif

}  // namespace

void enterSandbox(const std::string& folder, [[maybe_unused]] Shelter shelter) {
#ifdef __linux__
    if (isInside(sandbox)) {
        return;
    }
#endif
    files::create_directories(inCopy(folder));
    const std::string path = files::canonical(inCopy(folder));
    sandbox.folder = path;
#ifdef __linux__
    sandbox.obstacle = obstacleTo(path, shelter);
    if (sandbox.obstacle.empty() && !enter(path, shelter, sandbox)) {
        throw std::runtime_error(std::string("the test cannot be shut in: ") +
                                 std::strerror(errno));
    }
#endif
}

void startWhereSeen([[maybe_unused]] char** argv) {
#ifdef __linux__
    const std::string program = files::read_symlink("/proc/self/exe");
    if (sandbox.tmp && seen(program) != program) {
        const std::string left =
            std::to_string(*sandbox.tmp) + "\n" + sandbox.folder + "\n" + sandbox.view + "\n";
        (void)setenv(kAgain, left.c_str(), 1);
        std::string name = seen(program);
        argv[0] = name.data();
        (void)execv(name.c_str(), argv);
        throw std::runtime_error("the test cannot be started where it is seen");
    }
#endif
}

const std::string& sandboxObstacle() {
    return sandbox.obstacle;
}

const std::string& sandboxFolder() {
    return sandbox.folder;
}

std::string makeFolder(const std::string& prefix) {
    std::string path = sandbox.folder + "/" + prefix + "XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("no folder below " + sandbox.folder);
    }
    return path;
}

std::string seen(const std::string& original) {
    std::string path = inCopy(original);
#ifdef __linux__
    if (!sandbox.view.empty() && path.starts_with("/tmp/")) {
        return sandbox.view + path.substr(sizeof kTmp - 1);
    }
#endif
    return path;
}

bool showAsTmp([[maybe_unused]] const std::string& folder) {
#ifdef __linux__
    return sandbox.obstacle.empty() && unshare(CLONE_NEWNS) == 0 && bind(folder, kTmp) &&
           deviceOf(kTmp) == deviceOf(sandbox.folder);
#else
    return false;
#endif
}

bool hasOwnTmp() {
#ifdef __linux__
    return sandbox.tmp && sandbox.tmp == deviceOf(kTmp);
#else
    return false;
#endif
}

void emptyOwnTmp() {
    if (!hasOwnTmp()) {
        throw std::logic_error("this /tmp is not the test's own");
    }
    for (const auto& entry : files::directory_iterator("/tmp")) {
        files::remove_all(entry.path());
    }
}

}  // namespace rcp::test
