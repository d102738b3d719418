// Explaining leaves no trace: every byte, time and lock stays, and no process is started but the one
// that lists processes.
#include "tests/inspect/explain_fixture.h"

#include <sys/stat.h>

#include <map>
#include <regex>

namespace rcp::inspect::test {
namespace {

namespace files = std::filesystem;

// Permissions, content and the times of change of everything in the folder.
std::map<std::string, std::string> snapshotOf(const files::path& folder) {
    std::map<std::string, std::string> entries;
    const auto add = [&](const files::path& path) {
        struct stat status {};
        ASSERT_EQ(lstat(path.c_str(), &status), 0) << path;
        std::string& entry = entries[path];
        entry = std::to_string(status.st_mode) + " " + std::to_string(status.st_mtime) + " " +
                std::to_string(status.st_ctime) + " " + std::to_string(status.st_ino) + "\n";
#ifdef __linux__
        entry += std::to_string(status.st_mtim.tv_nsec) + " " +
                 std::to_string(status.st_ctim.tv_nsec) + "\n";
#endif
        if (S_ISREG(status.st_mode)) {
            std::ifstream file(path, std::ios::binary);
            entry.append(std::istreambuf_iterator<char>(file), {});
        }
    };
    add(folder);
    for (const auto& entry : files::recursive_directory_iterator(folder)) {
        add(entry.path());
    }
    return entries;
}

class ExplainWithoutSideEffects : public ExplainTest {
  protected:
    void expectNothingChanges(const Words& arguments = {}) {
        const auto before = snapshotOf(folder_.path());
        (void)explain(arguments);
        (void)explainText(arguments);
        EXPECT_EQ(before, snapshotOf(folder_.path()));
    }
};

TEST_F(ExplainWithoutSideEffects, NothingChangesBeforeTheFirstLaunchOrAfterIt) {
    expectNothingChanges();
    ASSERT_EQ(launch(), 0);
    for (const Words& arguments :
         {Words{}, Words{"-debug"}, Words{"-resetconfig"}, Words{"-config", "sample"},
          Words{"-restart"}, Words{"-data", folder_.narrow("elsewhere")}}) {
        expectNothingChanges(arguments);
    }
}

TEST_F(ExplainWithoutSideEffects, NothingChangesWhereMuchWould) {
    makeInstallation({"--provisioning", "2"});
    folder_.write("client/rcp/rcplauncher.debug", "");
    expectNothingChanges();
    files::remove(folder_.path() / "client/rcp/rcplauncher.debug");
    ASSERT_EQ(launch(), 0);
    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    expectNothingChanges();
    files::remove(folder_.path() / kProperties);
    expectNothingChanges();
}

// --- Every call ---------------------------------------------------------------------------------------

// A trace of strace(1), read for what leaves the rehearsal's folder.
class Trace {
  public:
    explicit Trace(const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            calls_.push_back(line);
        }
    }
    [[nodiscard]] std::size_t size() const { return calls_.size(); }

    /// Calls that match `pattern` and not `allowed`, one a line.
    [[nodiscard]] std::string matching(const std::string& pattern,
                                       const std::string& allowed) const {
        std::string found;
        for (const std::string& call : calls_) {
            if (std::regex_search(call, std::regex(pattern)) &&
                !std::regex_search(call, std::regex(allowed))) {
                found += call + "\n";
            }
        }
        return found;
    }

  private:
    Words calls_;
};

constexpr const char* kNothing = "^$";
constexpr const char* kOwnFolder = "/rcpinspect-|\"/dev/null\"";

class ExplainTraced : public ExplainTest {
  protected:
    static constexpr const char* kTracer = "/usr/bin/strace";

    Trace trace(const Words& arguments) {
        Words traced = {kTracer, "-f", "-y", "-qq", "-o", folder_.narrow("trace")};
        const Words program = explainWords(arguments);
        traced.insert(traced.end(), program.begin(), program.end());
        Words variables = launchEnvironment();
        variables.emplace_back("ASAN_OPTIONS=detect_leaks=0");  // which cannot be traced
        Program tracing(traced, variables);
        (void)tracing.rest();
        status_ = tracing.wait();
        return Trace(folder_.read("trace"));
    }
    void expectOnlyLooking(const Trace& calls) const {
        EXPECT_EQ(status_, 0);
        EXPECT_GT(calls.size(), 100U);
        EXPECT_EQ(calls.matching("O_WRONLY|O_RDWR|O_CREAT|O_TRUNC", kOwnFolder), "");
        EXPECT_EQ(calls.matching("^[0-9]+ +(creat|mkdir|rename|unlink|rmdir|symlink|link|chmod|"
                                 "fchmod|chown|fchown|lchown|utime|futime|truncate|ftruncate|mknod|"
                                 "setxattr|fallocate|copy_file_range|sendfile)",
                                 kOwnFolder),
                  "");
        EXPECT_EQ(calls.matching("^[0-9]+ +flock|F_SETLK|F_OFD_SETLK", kNothing), "");
        EXPECT_EQ(calls.matching("^[0-9]+ +execve\\(.* = 0", "/rcpinspect\"|/ps\""), "");
        EXPECT_EQ(calls.matching("^[0-9]+ +(kill|tkill|tgkill)\\(", ", 0\\) "), "");
    }

    int status_ = -1;
};

#define NEEDS_STRACE()                                                         \
    do {                                                                       \
        if (!files::exists(kTracer)) {                                         \
            GTEST_SKIP() << "there is no " << kTracer;                         \
        }                                                                      \
        Program tracing({kTracer, "-qq", "-o", "/dev/null", "/bin/true"}, {}); \
        (void)tracing.rest();                                                  \
        if (tracing.wait() != 0) {                                             \
            GTEST_SKIP() << "nothing can be traced here";                      \
        }                                                                      \
    } while (false)

TEST_F(ExplainTraced, OnlyLooksBeforeTheFirstLaunch) {
    NEEDS_STRACE();
    expectOnlyLooking(trace({}));
}

TEST_F(ExplainTraced, OnlyLooksBesideARunningPlatform) {
    NEEDS_STRACE();
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    expectOnlyLooking(trace({}));
}

TEST_F(ExplainTraced, OnlyLooksWhereAResetRestartOrProvisioningIsDue) {
    NEEDS_STRACE();
    ASSERT_EQ(launch(), 0);
    folder_.write(area(".metadata/.plugins/sample.report/state"), "");
    expectOnlyLooking(trace({"-resetconfig"}));
    expectOnlyLooking(trace({"-restart", "-rcp_old_pid", "1"}));
    makeInstallation({"--provisioning", "2"});
    expectOnlyLooking(trace({}));
}

}  // namespace
}  // namespace rcp::inspect::test
