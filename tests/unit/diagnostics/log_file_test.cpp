// The log file, the queue in front of it and the temporary log.
#include "diagnostics/log_file.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "platform/text.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/probe.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

namespace rcp {
namespace {

using test::Probe;
using test::ProbeResult;
using test::runProbe;
using testing::MatchesRegex;

class LogFile : public test::LauncherTest {
  protected:
    ~LogFile() override { setDebug(false); }
    [[nodiscard]] std::string log() const { return folder_.read("rcplauncher.log"); }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
            found.push_back(entry.path().filename());
        }
        return found;
    }
};

// --- The queue: a process that has not opened a log yet ------------------------------------------

const Probe kQueueThenLog("queue then log", [](const std::vector<std::string>& arguments) {
    setDebug(true);
    SvcDebugOutA("ZYPRA0000I: traced");
    setDebug(false);
    SvcDebugOutA("ZYPRA0000I: not traced");
    reportRecord(noReason(), "ZYPRA0000E: error", {});
    const std::string queued = logQueue();
    const bool wasOpen = logIsOpen();
    const bool opened = enableLogging(toWide(arguments.at(0)));
    reportRecord(noReason(), "ZYPRA0000E: behind", {});
    printf("%s|%d|%d|%d|%s", queued.c_str(), wasOpen, opened, logIsOpen(), logQueue().c_str());
    return 0;
});

TEST_F(LogFile, QueueIsEmptiedIntoTheFileWithAnEmptyLineBehindIt) {
    const ProbeResult result = runProbe("queue then log", {folder_.narrow()});
    EXPECT_EQ(result.output, "ZYPRA0000I: traced\nZYPRA0000E: error\n|0|1|1|");
    EXPECT_EQ(log(), "ZYPRA0000I: traced\nZYPRA0000E: error\n\nZYPRA0000E: behind\n");
}

TEST_F(LogFile, FailedOpenIsOneQueuedRecordAndTheLaunchGoesOn) {
    const ProbeResult result = runProbe("queue then log", {folder_.narrow("missing")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "ZYPRA0000I: traced\nZYPRA0000E: error\n|0|0|0|"
              "ZYPRA0000I: traced\nZYPRA0000E: error\n"
              "ZYPRA0019E: Could not open " +
                  folder_.narrow("missing/rcplauncher.log") +
                  " for writing! : No such file or directory\nZYPRA0000E: behind\n");
}

// --- The file -----------------------------------------------------------------------------------

TEST_F(LogFile, FileOfWhichNothingCanBeToldIsRefused) {
    SystemCalls calls = systemCalls;
    calls.fstat = [](int, struct stat*) {
        errno = EIO;
        return -1;
    };
    const InstalledCalls installed(calls);
    EXPECT_FALSE(enableLogging(folder_.wide()));
}

TEST_F(LogFile, ExistingFileIsEmptied) {
    folder_.write("rcplauncher.log", "of an earlier run\n");
    ASSERT_TRUE(enableLogging(folder_.wide()));
    EXPECT_EQ(log().find("earlier"), std::string::npos);
}

TEST_F(LogFile, RecordReachesTheFileAtOnce) {
    ASSERT_TRUE(enableLogging(folder_.wide()));
    reportRecord(noReason(), "ZYPRA0000E: error", {});
    EXPECT_TRUE(log().ends_with("\nZYPRA0000E: error\n")) << log();
}

TEST_F(LogFile, BackslashesInTheFolderAreSlashes) {
    std::filesystem::create_directories(folder_.path() / "a/b");
    ASSERT_TRUE(enableLogging(folder_.wide() + L"\\a\\b"));
    EXPECT_TRUE(folder_.has("a/b/rcplauncher.log"));
}

TEST_F(LogFile, SecondLauncherThatEmptiesTheFileLeavesNoHole) {
    ASSERT_TRUE(enableLogging(folder_.wide()));
    reportRecord(noReason(), std::string(500, 'x'), {});
    ASSERT_EQ(truncate(folder_.narrow("rcplauncher.log").c_str(), 0), 0);
    reportRecord(noReason(), "ZYPRA0000E: behind", {});
    EXPECT_EQ(log(), "ZYPRA0000E: behind\n");
}

TEST_F(LogFile, ExecutedProgramDoesNotInheritIt) {
    ASSERT_TRUE(enableLogging(folder_.wide()));
    struct stat wanted {};
    ASSERT_EQ(stat(folder_.narrow("rcplauncher.log").c_str(), &wanted), 0);
    int found = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        struct stat status {};
        if (fstat(descriptor, &status) == 0 && status.st_ino == wanted.st_ino &&
            status.st_dev == wanted.st_dev) {
            ++found;
            EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
        }
    }
    EXPECT_EQ(found, 1);
}

TEST_F(LogFile, WhatIsNoRegularFileIsRefusedWithoutAWait) {
    ASSERT_EQ(mkfifo(folder_.narrow("rcplauncher.log").c_str(), 0600), 0);
    EXPECT_FALSE(enableLogging(folder_.wide()));
    std::filesystem::create_directories(folder_.path() / "a/rcplauncher.log");
    EXPECT_FALSE(enableLogging(folder_.wide("a")));
}

TEST_F(LogFile, TracedRunHasALogOfItsOwnNamedByItsTime) {
    setDebug(true);
    ASSERT_TRUE(enableLogging(folder_.wide()));
    ASSERT_EQ(names().size(), 1U);
    EXPECT_THAT(names()[0], MatchesRegex("rcplauncher_[0-9]+_[0-9]+_[0-9][0-9][0-9]\\.log"));
}

TEST_F(LogFile, TracedRunsNeverShareALog) {
    setDebug(true);
    ASSERT_TRUE(enableLogging(folder_.wide()));
    reportRecord(noReason(), "first", {});
    ASSERT_TRUE(enableLogging(folder_.wide()));
    reportRecord(noReason(), "second", {});
    ASSERT_EQ(names().size(), 2U);
    for (const std::string& name : names()) {
        const std::string text = folder_.read(name);
        EXPECT_NE(text.find("first") == std::string::npos, text.find("second") == std::string::npos)
            << text;
    }
}

// --- The temporary log --------------------------------------------------------------------------

const Probe kFatal("fatal", [](const std::vector<std::string>& arguments) {
    setDebug(arguments.at(0) == "traced");
    std::optional<ForcedTracing> forced;
    if (arguments.at(0) == "forced") {
        forced.emplace();
    }
    reportRecord(noReason(), "ZYPRA0000E: queued", {});
    fatal(because(ENOENT), messages.fileNotLoaded, L"/x");
    return 0;
});

/// Everything in /tmp is the test's own.
class TemporaryLog : public LogFile {
  protected:
    static constexpr char kPath[] = "/tmp/rcplauncher.log";
    static constexpr char kRecords[] =
        "ZYPRA0000E: queued\nZYPRA0096E: Unable to load /x file! : No such file or directory\n\n";

    void SetUp() override {
        if (!test::hasPrivateTmp()) {
            GTEST_SKIP() << "the system gives this process no /tmp of its own";
        }
        test::emptyOwnTmp();
    }
    void TearDown() override {
        if (test::hasPrivateTmp()) {
            test::emptyOwnTmp();
        }
    }
    static std::string text(const std::string& path = kPath) {
        std::string bytes;
        if (FILE* file = fopen(path.c_str(), "rb")) {
            char buffer[4096];
            bytes.assign(buffer, fread(buffer, 1, sizeof buffer, file));
            (void)fclose(file);
        }
        return bytes;
    }
    static bool isThere() {
        return std::filesystem::exists(std::filesystem::symlink_status(kPath));
    }
};

TEST_F(TemporaryLog, FatalErrorBeforeTheLogIsKnownDumpsTheWholeQueue) {
    EXPECT_EQ(runProbe("fatal", {""}).status, 255);
    EXPECT_EQ(text(), kRecords);
    struct stat status {};
    ASSERT_EQ(stat(kPath, &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(TemporaryLog, LogOfAnEarlierLaunchIsEmptied) {
    ASSERT_EQ(runProbe("fatal", {""}).status, 255);
    EXPECT_EQ(runProbe("fatal", {""}).status, 255);
    EXPECT_EQ(text(), kRecords);
}

const Probe kFullLog("full log", [](const std::vector<std::string>& arguments) {
    (void)signal(SIGXFSZ, SIG_IGN);
    rlimit room{};
    getrlimit(RLIMIT_FSIZE, &room);
    const rlimit none{0, room.rlim_max};
    reportRecord(noReason(), "ZYPRA0000E: queued", {});
    setrlimit(RLIMIT_FSIZE, arguments.at(1) == "from the start" ? &none : &room);
    enableLogging(toWide(arguments.at(0)));
    setrlimit(RLIMIT_FSIZE, &none);
    reportRecord(noReason(), "ZYPRA0000E: refused", {});
    setrlimit(RLIMIT_FSIZE, &room);
    endWithRecord(noReason(), "ZYPRA0000E: last", {});
    return 0;
});

TEST_F(TemporaryLog, TakesWhatALogThatOpensRefuses) {
    EXPECT_EQ(runProbe("full log", {folder_.narrow(), "from the start"}).status, 255);
    EXPECT_EQ(text(), "ZYPRA0000E: queued\nZYPRA0000E: refused\nZYPRA0000E: last\n\n");
    EXPECT_EQ(runProbe("full log", {folder_.narrow(), "later"}).status, 255);
    EXPECT_EQ(text(), "ZYPRA0000E: refused\nZYPRA0000E: last\n\n");
    EXPECT_EQ(log(), "ZYPRA0000E: queued\n\nZYPRA0000E: last\n");
}

TEST_F(TemporaryLog, TracingThatTheLauncherForcesChangesNoName) {
    EXPECT_EQ(runProbe("fatal", {"forced"}).status, 255);
    EXPECT_EQ(text(), kRecords);
}

TEST_F(TemporaryLog, TracedLaunchHasOneOfItsOwnThatIsNeverRemoved) {
    EXPECT_EQ(runProbe("fatal", {"traced"}).status, 255);
    EXPECT_FALSE(isThere());
    deleteTempLog();
    const std::filesystem::directory_iterator first("/tmp");
    ASSERT_NE(first, std::filesystem::directory_iterator());
    EXPECT_THAT(first->path().string(), MatchesRegex("/tmp/rcplauncher_[0-9_]+\\.log"));
    EXPECT_EQ(text(first->path()), kRecords);
}

TEST_F(TemporaryLog, LinkIsNeverFollowed) {
    folder_.write("target", "untouched");
    ASSERT_EQ(symlink(folder_.narrow("target").c_str(), kPath), 0);
    EXPECT_EQ(runProbe("fatal", {""}).status, 255) << "the record is lost, the status stays";
    EXPECT_EQ(folder_.read("target"), "untouched");
    deleteTempLog();
    EXPECT_TRUE(isThere()) << "somebody else's name";
}

TEST_F(TemporaryLog, SecondNameOfAFileIsRefused) {
    std::filesystem::path other = "/tmp/other";
    ASSERT_EQ(close(open(other.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)), 0);
    std::filesystem::create_hard_link(other, kPath);
    EXPECT_EQ(runProbe("fatal", {""}).status, 255);
    EXPECT_EQ(text(other), "");
}

TEST_F(TemporaryLog, FileOfAnotherUserIsNeitherUsedNorRemoved) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    ASSERT_EQ(close(open(kPath, O_CREAT | O_WRONLY | O_CLOEXEC, 0666)), 0);
    ASSERT_EQ(chown(kPath, 12345, 12345), 0);
    EXPECT_EQ(runProbe("fatal", {""}).status, 255);
    EXPECT_EQ(text(), "");
    deleteTempLog();
    EXPECT_TRUE(isThere());
}

TEST_F(TemporaryLog, PipeStopsNobody) {
    ASSERT_EQ(mkfifo(kPath, 0600), 0);
    EXPECT_EQ(runProbe("fatal", {""}).status, 255);
}

TEST_F(TemporaryLog, IsRemovedOnceTheRealLogIsOpen) {
    ASSERT_EQ(runProbe("fatal", {""}).status, 255);
    ASSERT_TRUE(isThere());
    deleteTempLog();
    EXPECT_FALSE(isThere());
    deleteTempLog();
}

}  // namespace
}  // namespace rcp
