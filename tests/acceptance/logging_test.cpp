// The launcher's only voice: its log in the workspace and the temporary one in /tmp.
#include "checks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

namespace acceptance {

namespace {

namespace files = std::filesystem;

const std::regex kTimedName("rcplauncher_[0-9]{8}_[0-9]{6}_[0-9]{3}\\.log");

const char* const kNoJvmProperties =
    "ZYPRA0125I: No jvm.properties file was loaded. A default file should be at "
    "\"${rcp.home}/rcp/deploy\"";

std::string argumentDump(const Installation& velmo, const std::string& given = "") {
    return "ZYPRA0030I: rcplauncher main arguments=\"" + velmo.program + ", " + given + "-vm, " +
           kDefaultJvm + ", \"";
}

TEST(Logging, EarlyFatalErrorLeavesTheWholeQueueInTheTemporaryLog) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    const Launch launch = velmo.launch();
    const std::string record = "ZYPRA0050E: rcp.base.location property is missing from " +
                               velmo.rcp + "/rcplauncher.properties";
    expectEarlyFatal(launch, record);
    const Texts lines = splitLines(launch.temporaryLog);
    ASSERT_EQ(lines.size(), 4U) << launch.temporaryLog;
    EXPECT_EQ(lines[0], argumentDump(velmo));
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(lines[3], "") << "the queue is written with one more line feed";
    EXPECT_TRUE(launch.temporaryLog.ends_with("\n\n"));
}

TEST(Logging, WithoutTracingTheLogHoldsErrorsAndForcedRecordsOnly) {
    Installation velmo;
    const Launch launch = velmo.launch();
    ASSERT_TRUE(launch.platform.has_value());
    Texts expected = {
        argumentDump(velmo),
        "",
        "ZYPRA0303I: lock file captured @ ",
        "ZYPRA0090E: Existing platform lock file found - checking validity.",
        "ZYPRA0091E: No data in the platform lock file.",
        "ZYPRA0304I: We are main process",
        "",
        std::string("ZYPRA0021I: VM specified is \"") + kDefaultJvm + "\"",
        "ZYPRA0077I: loading jvm.properties at \"" + velmo.home + "/rcp/deploy/jvm.properties\"",
        kNoJvmProperties,
        "ZYPRA0132I: ===== Begin Launch Parameters =====",
    };
    expected.insert(expected.end(), launch.platform->arguments.begin(),
                    launch.platform->arguments.end());
    expected.emplace_back("ZYPRA0133I: ===== End Launch Parameters =====");
    Texts lines = splitLines(launch.log);
    for (std::string& line : lines) {
        if (line.starts_with(expected[2])) {
            EXPECT_TRUE(std::regex_match(line.substr(expected[2].size()),
                                         std::regex("[0-9]{8}_[0-9]{6}_[0-9]{3}")))
                << line;
            line = expected[2];
        }
    }
    expectList(expected, lines);
}

TEST(Logging, EveryRunEmptiesTheSameLog) {
    Installation velmo;
    velmo.start({"-first"});
    const Launch second = velmo.launch({"-second"});
    expectList({"rcplauncher.log"}, velmo.logNames());
    EXPECT_TRUE(hasLine(second.log, argumentDump(velmo, "-second, ")));
    EXPECT_EQ(second.log.find("-first"), std::string::npos);
    EXPECT_EQ(second.log.find('\0'), std::string::npos);
}

TEST(Logging, PercentSignsInTheArgumentDumpAreReadAsAFormatWithoutArguments) {
    Installation velmo;
    const Launch launch = velmo.launch({"50%%", "a%sb", "%n", "%5d", "%"});
    EXPECT_TRUE(hasLine(launch.log, argumentDump(velmo, "50%, a%sb, %n, %5d, %, "))) << launch.log;
    ASSERT_TRUE(launch.platform.has_value());
    EXPECT_TRUE(launch.platform->has("50%%"));
}

TEST(Logging, LongRecordsAreCutAt4095Bytes) {
    Installation velmo;
    const std::string longArgument(5000, 'a');
    const Launch launch = velmo.launch({longArgument});
    ASSERT_TRUE(launch.platform.has_value());
    EXPECT_TRUE(launch.platform->has(longArgument));
    EXPECT_EQ(splitLines(launch.log).at(0).size(), 4095U);
    EXPECT_TRUE(hasLine(launch.log, std::string(4095, 'a')));
}

TEST(Logging, RecordsAreWrittenAsUtf8) {
    Installation velmo;
    const Launch launch = velmo.launch({"-Größe", "日本"});
    EXPECT_TRUE(hasLine(launch.log, argumentDump(velmo, "-Größe, 日本, ")));
    EXPECT_TRUE(hasLine(launch.log, "日本"));
}

TEST(Logging, ArgumentThatIsNoTextLosesNoRecord) {
    Installation velmo;
    const Launch launch = velmo.launch({"-one", "\xff", "-two"});
    EXPECT_TRUE(hasLine(launch.log, argumentDump(velmo, "-one, , -two, "))) << launch.log;
}

TEST(Logging, TracingRunHasALogOfItsOwnNamedByItsStart) {
    Installation velmo;
    velmo.start();
    velmo.start({"-debug"});
    velmo.start({"-debug"});
    Texts timed = velmo.logNames();
    ASSERT_EQ(timed.size(), 3U);
    EXPECT_EQ(timed.front(), "rcplauncher.log");
    timed.erase(timed.begin());
    for (const std::string& name : timed) {
        EXPECT_TRUE(std::regex_match(name, kTimedName)) << name;
        const std::string log = readFile(velmo.workspace + "/logs/" + name);
        EXPECT_TRUE(hasLine(log, argumentDump(velmo, "-debug, ")));
        EXPECT_TRUE(hasLineStart(log, "ZYPRA0133I")) << name;
    }
}

TEST(Logging, TracingShowsWhatTheLauncherReads) {
    Installation velmo;
    velmo.set("-Dfoo", " bar ");
    velmo.start({"-debug"});
    const std::string log = readFile(velmo.workspace + "/logs/" + velmo.logNames().at(0));
    EXPECT_TRUE(hasLine(log, "ZYPRA0032I: Prop Line = \"-Dfoo= bar \""));
    EXPECT_TRUE(hasLine(log, "ZYPRA0023I:   attrib = \"-Dfoo\""));
    EXPECT_TRUE(hasLine(log, "ZYPRA0024I:   value  = \"bar\""));
    EXPECT_TRUE(hasLine(log,
                        "ZYPRA0041I: Missed install configuration in property file. Using "
                        "default setting!"));
    EXPECT_TRUE(
        hasLine(log, "ZYPRA0077I: Velmo workspaceLocation is -  \"" + velmo.workspace + "\""));
    EXPECT_TRUE(hasLine(log, "ZYPRA0075I: commandArg  = \"-Dfoo=bar\""));
}

#ifdef __linux__
TEST(Logging, LogIsOpenForAppendingSoThatASecondLauncherLeavesNoHole) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1");
    StayingLaunch launch = velmo.startStaying();
    const Report platform = launch.platform();
    std::string details;
    for (const auto& [descriptor, target] : platform.descriptors) {
        if (target == velmo.workspace + "/logs/rcplauncher.log") {
            std::ifstream file("/proc/" + std::to_string(platform.pid) + "/fdinfo/" +
                               std::to_string(descriptor));
            std::getline(file, details);  // pos:
            std::getline(file, details);
        }
    }
    ASSERT_TRUE(details.starts_with("flags:")) << details;
    const unsigned long flags = std::stoul(details.substr(6), nullptr, 8);
    EXPECT_NE(flags & static_cast<unsigned long>(O_APPEND), 0U) << details;
    EXPECT_NE(flags & static_cast<unsigned long>(O_CLOEXEC), 0U) << details;
    EXPECT_EQ(launch.finish().status, 0);
}
#endif

TEST(Logging, RestartNeverTraces) {
    Installation velmo;
    velmo.start({"-restart", "-debug"});
    expectList({"rcplauncher.log"}, velmo.logNames());
}

TEST(Logging, OpeningTheLogRemovesTheTemporaryOneOfAnEarlierRun) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    const std::string old = velmo.write(velmo.tmp + "/rcplauncher.log", "old\n");
    const std::string traced =
        velmo.write(velmo.tmp + "/rcplauncher_20200101_000000_000.log", "old\n");
    velmo.start();
    EXPECT_FALSE(fileExists(old));
    EXPECT_TRUE(fileExists(traced)) << "those of tracing runs are kept";
}

TEST(Logging, TracingRunLeavesATimedTemporaryLog) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    const Launch launch = velmo.launch({"-debug"});
    EXPECT_EQ(launch.status, 255);
    EXPECT_EQ(launch.temporaryLog, "");
    int found = 0;
    for (const auto& entry : files::directory_iterator(velmo.tmp)) {
        if (std::regex_match(entry.path().filename().string(), kTimedName)) {
            ++found;
            EXPECT_TRUE(hasLineStart(readFile(entry.path()), "ZYPRA0050E: rcp.base.location"));
        }
    }
    EXPECT_EQ(found, 1);
}

TEST(Logging, LogThatCannotBeOpenedEndsTheLaunch) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.write(velmo.workspace + "/logs/rcplauncher.log/in the way", "");
    const Launch launch = velmo.launch();
    expectEarlyFatal(launch, "ZYPRA0019E: Could not open " + velmo.workspace +
                                 "/logs/rcplauncher.log for writing!");
    EXPECT_TRUE(hasLineStart(launch.temporaryLog, argumentDump(velmo)));
}

TEST(Logging, TemporaryLogIsThePrivateFileOfItsUser) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    EXPECT_EQ(velmo.launch().status, 255);
    struct stat status = {};
    ASSERT_EQ(stat((velmo.tmp + "/rcplauncher.log").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST(Logging, TemporaryLogIsReplacedByTheNextOne) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    velmo.write(velmo.tmp + "/rcplauncher.log", std::string(10000, 'x'), 0600);
    const Launch launch = velmo.launch();
    expectEarlyFatal(launch, "ZYPRA0050E: rcp.base.location property is missing from " + velmo.rcp +
                                 "/rcplauncher.properties");
    EXPECT_EQ(launch.temporaryLog.find("xxx"), std::string::npos);
}

TEST(Logging, TemporaryLogNeverGoesThroughASymbolicLink) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    const std::string precious = velmo.write("home/precious", "mine\n");
    files::create_symlink(precious, velmo.tmp + "/rcplauncher.log");
    EXPECT_EQ(velmo.launch().status, 255);
    EXPECT_EQ(readFile(precious), "mine\n");
    files::remove(precious);
    EXPECT_EQ(velmo.launch().status, 255);
    EXPECT_FALSE(fileExists(precious)) << "a dangling link makes no file either";
}

TEST(Logging, PipeInThePlaceOfTheTemporaryLogBlocksNothing) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    ASSERT_EQ(mkfifo((velmo.tmp + "/rcplauncher.log").c_str(), 0600), 0);
    EXPECT_EQ(velmo.launch().status, 255);
}

TEST(Logging, FolderInThePlaceOfTheTemporaryLogLosesTheRecordOnly) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    files::create_directory(velmo.tmp + "/rcplauncher.log");
    EXPECT_EQ(velmo.launch().status, 255);
}

TEST(Logging, TemporaryLogOfAnotherUserIsLeftAlone) {
    NEEDS_PRIVATE_TMP();
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file to another user";
    }
    Installation velmo;
    velmo.unset("rcp.base.location");
    const std::string other = velmo.write(velmo.tmp + "/rcplauncher.log", "theirs\n", 0666);
    ASSERT_EQ(chown(other.c_str(), 12345, 12345), 0);
    EXPECT_EQ(velmo.launch().status, 255);
    EXPECT_EQ(readFile(other), "theirs\n");
}

}  // namespace

}  // namespace acceptance
