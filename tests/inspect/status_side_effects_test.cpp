// Looking leaves no trace: neither in the installation nor in the user's area nor in /tmp.
#include "tests/inspect/status_fixture.h"

#include <sys/stat.h>

#include <map>
#include <regex>

namespace rcp::inspect::test {
namespace {

namespace files = std::filesystem;

struct Entry {
    std::string content;
    std::array<std::time_t, 2> changed{};  // of the content and of the entry, nanoseconds apart
    std::array<long, 2> fractions{};

    bool operator==(const Entry&) const = default;
};

std::map<std::string, Entry> snapshotOf(const files::path& folder) {
    std::map<std::string, Entry> entries;
    const auto add = [&](const files::path& path) {
        struct stat status {};
        ASSERT_EQ(lstat(path.c_str(), &status), 0) << path;
        Entry& entry = entries[path];
        if (S_ISREG(status.st_mode)) {
            std::ifstream file(path, std::ios::binary);
            entry.content.assign(std::istreambuf_iterator<char>(file), {});
        }
#ifdef __APPLE__
        entry.changed = {status.st_mtimespec.tv_sec, status.st_ctimespec.tv_sec};
        entry.fractions = {status.st_mtimespec.tv_nsec, status.st_ctimespec.tv_nsec};
#else
        entry.changed = {status.st_mtim.tv_sec, status.st_ctim.tv_sec};
        entry.fractions = {status.st_mtim.tv_nsec, status.st_ctim.tv_nsec};
#endif
    };
    add(folder);
    for (const auto& entry : files::recursive_directory_iterator(folder)) {
        add(entry.path());
    }
    return entries;
}

class StatusWithoutSideEffects : public StatusTest {
  protected:
    static std::vector<files::path> temporaryFiles() {
        std::vector<files::path> all;
        for (const auto& entry : files::directory_iterator("/tmp")) {
            all.push_back(entry.path());
        }
        std::sort(all.begin(), all.end());
        return all;
    }
    void expectNothingChanges(const Words& arguments = {}) {
        const auto before = snapshotOf(folder_.path());
        const std::vector<files::path> temporary = temporaryFiles();
        (void)status(arguments);
        (void)text(arguments);
        EXPECT_TRUE(before == snapshotOf(folder_.path()));
        EXPECT_TRUE(!rcp::test::hasPrivateTmp() || temporary == temporaryFiles());
    }
};

TEST_F(StatusWithoutSideEffects, NeitherAFreshNorAUsedAreaChanges) {
    expectNothingChanges();
    ASSERT_EQ(launch(), 0);
    expectNothingChanges();
    expectNothingChanges({"-debug"});
    expectNothingChanges({"-resetconfig"});
    expectNothingChanges({"-config", "sample"});
}

TEST_F(StatusWithoutSideEffects, NoOldAreaIsRenewedAndNoLevelProvisioned) {
    makeInstallation({"--provisioning", "2"});
    ASSERT_EQ(launch(), 0);
    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    expectNothingChanges();
}

// Whether a call in a trace of strace(1) may change something outside of the rehearsal's folder: one
// that opens for writing, makes, renames, removes or locks.
bool mayChange(const std::string& call) {
    static const std::regex writing("O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|F_SETLK");
    static const std::regex changing(
        "^[0-9]+ +(creat|mkdir|rename|unlink|rmdir|symlink|link|chmod|"
        "fchmod|chown|fchown|utime|truncate|ftruncate|flock|mknod)");
    static const std::regex allowed("/rcpinspect-|\"/dev/null\"");
    return (std::regex_search(call, writing) || std::regex_search(call, changing)) &&
           !std::regex_search(call, allowed);
}

TEST_F(StatusWithoutSideEffects, NoCallChangesAnythingAndOnlyTheProcessListingIsStarted) {
    const std::string tracer = "/usr/bin/strace";
    if (!files::exists(tracer)) {
        GTEST_SKIP() << "strace is not installed";
    }
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    Words traced = {tracer, "-f",
                    "-y",   "-qq",
                    "-e",   "trace=%file,%desc,%process",
                    "-o",   folder_.narrow("trace")};
    const Words program = words({});
    traced.insert(traced.end(), program.begin(), program.end());
    Words variables = environment();
    variables.emplace_back("ASAN_OPTIONS=detect_leaks=0");  // which cannot be traced
    Program tracing(traced, variables);
    (void)tracing.rest();
    ASSERT_EQ(tracing.wait(), 0);

    std::istringstream calls(folder_.read("trace"));
    std::size_t count = 0;
    for (std::string call; std::getline(calls, call); ++count) {
        EXPECT_FALSE(mayChange(call)) << call;
        if (call.find("execve(") != std::string::npos && call.ends_with(" = 0")) {
            EXPECT_TRUE(call.find("rcpinspect") != std::string::npos ||
                        call.find("/ps\"") != std::string::npos)
                << call;
        }
    }
    EXPECT_GT(count, 100U);
}

TEST_F(StatusWithoutSideEffects, NoInstallIdIsMade) {
    replaceIn(kProperties, "rcp.install.id=sample", "");
    replaceIn(kProperties, "install.configuration=user", "install.configuration=userpb");
    expectNothingChanges();
}

TEST_F(StatusWithoutSideEffects, WhatWouldEndTheLaunchLeavesNoRecord) {
    expectNothingChanges({"-name=\"x\""});
    folder_.write(area(".rcp.lock"), "nonsense");
    expectNothingChanges();
    files::remove(folder_.path() / kProperties);
    expectNothingChanges();
}

}  // namespace
}  // namespace rcp::inspect::test
