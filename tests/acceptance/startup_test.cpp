// The order of the start-up: what a launch creates, repairs and waits for before the platform.
#include "checks.h"

#include <filesystem>
#include <map>
#include <thread>

namespace acceptance {

namespace {

namespace files = std::filesystem;

// Every file below `folder` with its bytes; folders with an empty text.
std::map<std::string, std::string> snapshot(const std::string& folder) {
    std::map<std::string, std::string> found;
    for (const auto& entry : files::recursive_directory_iterator(folder)) {
        found[entry.path().string().substr(folder.size() + 1)] =
            entry.is_regular_file() ? readFile(entry.path()) : "";
    }
    return found;
}

void waitForLog(const Installation& velmo) {
    const auto end = std::chrono::steady_clock::now() + Installation::kLimit;
    while (velmo.logNames().empty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

TEST(Startup, FirstLaunchMakesTheWholeUserArea) {
    Installation velmo;
    StayingLaunch launch = velmo.startStaying();
    launch.waitUntilRecorded();
    EXPECT_EQ(launch.finish().status, 0);
    for (const char* name : {"logs", ".config", "applications/eclipse/features",
                             "applications/eclipse/plugins", ".config/org.eclipse.update"}) {
        EXPECT_TRUE(files::is_directory(velmo.workspace + "/" + name)) << name;
    }
    for (const char* name : {".rcp.lock", ".rcp.main", ".config/config.ini",
                             ".config/args.properties", ".config/rcpinstall.properties",
                             ".config/org.eclipse.update/platform.xml", "logs/rcplauncher.log"}) {
        EXPECT_TRUE(files::is_regular_file(velmo.workspace + "/" + name)) << name;
    }
}

TEST(Startup, FirstLaunchNeverResets) {
    Installation velmo;
    EXPECT_FALSE(velmo.start({"-resetconfig"}).has("-resetconfig"));
    EXPECT_FALSE(fileExists(velmo.configuration() + "bak"));
}

TEST(Startup, SecondLaunchWithTheResetOptionResets) {
    Installation velmo;
    velmo.start();
    velmo.write(velmo.configuration() + "/mine", "");
    velmo.start({"-resetconfig"});
    EXPECT_TRUE(fileExists(velmo.configuration() + "bak/mine"));
    EXPECT_FALSE(fileExists(velmo.configuration() + "/mine"));
    EXPECT_TRUE(fileExists(velmo.configuration() + "/config.ini"));
}

TEST(Startup, MissingLogFolderCountsAsAFirstLaunch) {
    Installation velmo;
    velmo.start();
    files::remove_all(velmo.workspace + "/logs");
    velmo.start({"-resetconfig"});
    EXPECT_FALSE(fileExists(velmo.configuration() + "bak"));
}

TEST(Startup, SecondLaunchChangesNothingButLogAndProcessIds) {
    Installation velmo;
    velmo.start();
    auto before = snapshot(velmo.workspace);
    velmo.start();
    auto after = snapshot(velmo.workspace);
    for (const char* name : {".rcp.lock", ".rcp.main", "logs/rcplauncher.log"}) {
        before.erase(name);
        after.erase(name);
    }
    EXPECT_EQ(before, after);
}

TEST(Startup, TwoFirstLaunchesAtTheSameMomentMakeOnePlatform) {
    Installation velmo;
    StayingLaunch one = velmo.startStaying();
    StayingLaunch two = velmo.startStaying();
    const Report first = one.platform();
    const Report second = two.platform();
    EXPECT_NE(first.has("-useDaemon"), second.has("-useDaemon"));
    const Report& daemon = first.has("-useDaemon") ? first : second;
    const Report& main = first.has("-useDaemon") ? second : first;
    EXPECT_EQ(daemon.after("-useDaemon"), std::to_string(main.pid));
    EXPECT_EQ(one.finish().status, 0);
    EXPECT_EQ(two.finish().status, 0);
}

TEST(Startup, NoTemporaryFileIsLeftInTheUsersArea) {
    Installation velmo;
    StayingLaunch launch = velmo.startStaying();
    launch.waitUntilRecorded();
    EXPECT_EQ(launch.finish().status, 0);
    Texts names;
    for (const auto& [name, text] : snapshot(velmo.workspace)) {
        names.push_back(name);
    }
    expectList(
        {".config", ".config/args.properties", ".config/config.ini", ".config/org.eclipse.update",
         ".config/org.eclipse.update/platform.xml", ".config/rcpinstall.properties", ".rcp.lock",
         ".rcp.main", "applications", "applications/eclipse", "applications/eclipse/features",
         "applications/eclipse/plugins", "logs", "logs/rcplauncher.log"},
        names);
}

TEST(Startup, MissingBaseLocationEndsBeforeAnyFolderIsMade) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.base.location");
    expectEarlyFatal(velmo.launch(), "ZYPRA0050E: rcp.base.location property is missing from " +
                                         velmo.rcp + "/rcplauncher.properties");
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST(Startup, MissingInstallIdIsRefused) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.unset("rcp.install.id");
    expectEarlyFatal(velmo.launch(),
                     "ZYPRA0016E: rcp.install.id is required for this configuration!");
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST(Startup, FolderThatCannotBeMadeIsNamed) {
    NEEDS_PRIVATE_TMP();
    const struct {
        const char* inTheWay;
        const char* folder;
        const char* id;
        bool early;
    } cases[] = {
        {"", "", "ZYPRA0083E", true},
        {"/logs", "/logs", "ZYPRA0084E", true},
        {"/.config", "/.config", "ZYPRA0093E", false},
        {"/applications/eclipse/plugins", "/applications/eclipse/plugins", "ZYPRA0095E", false},
    };
    for (const auto& each : cases) {
        Installation velmo;
        velmo.write(velmo.workspace + each.inTheWay, "a file");
        const std::string record = std::string(each.id) + ": Unable to create " + velmo.workspace +
                                   each.folder + " directory.";
        const Launch launch = velmo.launch();
        const std::string& log = each.early ? launch.temporaryLog : launch.log;
        expectFatal(launch, log, record);
        expectBareRecord(log, record + " : File exists");
    }
}

TEST(Startup, FirstFolderOfAPathThatCannotBeMadeIsNamedWithItsReason) {
    Installation velmo;
    const std::string file = velmo.write(velmo.workspace + "/applications", "a file");
    const std::string record =
        "ZYPRA0094E: Unable to create " + file + "/eclipse/features directory.";
    const Launch launch = velmo.launch();
    expectLateFatal(launch, record);
    expectBareRecord(launch.log, record + " (" + file + "/eclipse) : Not a directory");
}

TEST(Startup, SymbolicLinkToAFolderIsNoneOfTheUsersFolders) {
    NEEDS_PRIVATE_TMP();
    for (const auto& [name, id] :
         {std::pair{"", "0083E"}, {"/logs", "0084E"}, {"/.config", "0093E"}}) {
        Installation velmo;
        const files::path link = velmo.workspace + name;
        files::create_directories(link.parent_path());
        files::create_directory(velmo.path("elsewhere"));
        files::create_directory_symlink(velmo.path("elsewhere"), link);
        const Launch launch = velmo.launch();
        EXPECT_EQ(launch.status, 255);
        expectBareRecord(launch.temporaryLog + launch.log,
                         "ZYPRA" + std::string(id) + ": Unable to create " + link.string() +
                             " directory. : it is a symbolic link");
        EXPECT_TRUE(files::is_empty(velmo.path("elsewhere")));
    }
}

TEST(Startup, SharedExtensionLinkAlwaysWins) {
    Installation velmo;
    const std::string shared = velmo.home + "/shared/eclipse/.eclipseextension";
    const std::string own = velmo.workspace + "/applications/eclipse/.eclipseextension";
    velmo.start();
    EXPECT_FALSE(fileExists(own));
    velmo.write(shared, "id=1\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "id=1\n");
    velmo.write(own, "changed by the user\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "id=1\n");
    files::remove(shared);
    velmo.write(own, "changed by the user\n");
    velmo.start();
    EXPECT_EQ(readFile(own), "changed by the user\n");
}

TEST(Startup, ArgumentsAreRecordedForARestart) {
    Installation velmo;
    velmo.start({"-resetconfig", "-rcp_old_pid", "4711", "-product", "a b", "-vmargs", "-Dx=ä"});
    expectList({"arg0=" + velmo.program, "arg1=-product", "arg2=a b", "arg3=-vmargs",
                "arg4=-Dx\\=\\u00e4", "arg5=-vm", std::string("arg6=") + kDefaultJvm, "argc=7",
                "com.ovr.rcp.core.internal.librarypath="},
               splitLines(readFile(velmo.configuration() + "/args.properties")));
}

TEST(Startup, RestartDoesNotRecordItsArguments) {
    Installation velmo;
    velmo.start({"-one"});
    const std::string recorded = readFile(velmo.configuration() + "/args.properties");
    velmo.start({"-restart", "-two"});
    EXPECT_EQ(readFile(velmo.configuration() + "/args.properties"), recorded);
}

TEST(Startup, RestartDropsTracingAndConsole) {
    Installation velmo;
    const Report platform = velmo.start({"-restart", "-debug", "-console", "-application", "-debug",
                                         "-vmargs", "-console", "-kept"});
    EXPECT_FALSE(platform.has("-debug"));
    EXPECT_FALSE(platform.has("-console"));
    EXPECT_FALSE(platform.has("-restart"));
    EXPECT_FALSE(platform.has("-vm"));
    EXPECT_EQ(platform.after("-vmargs"), "-kept");
    EXPECT_EQ(platform.after("-application"), "-data");
}

TEST(Startup, WaitsUntilTheDebugMarkerFileIsGone) {
    Installation velmo;
    const std::string marker = velmo.write(velmo.rcp + "/rcplauncher.debug", "");
    StayingLaunch launch = velmo.startStaying({"-one", "-vmargs", "-Dx=1"});
    waitForLog(velmo);
    EXPECT_TRUE(launch.running());
    EXPECT_FALSE(fileExists(velmo.configuration())) << "nothing goes on while the file is there";
    files::remove(marker);
    const Report platform = launch.platform();
    expectList({"-one", "-console", "-debug", "-pb4l", "-debugFile", marker},
               platform.between(velmo.base + "/macosx/x86/eclipse", "-data"));
    EXPECT_EQ(launch.finish().status, 0);
    EXPECT_TRUE(velmo.logNames().at(0).starts_with("rcplauncher_")) << "the run traces";
}

TEST(Startup, DebugMarkerFileRepeatsNoOption) {
    Installation velmo;
    const std::string marker = velmo.write(velmo.rcp + "/rcplauncher.debug", "");
    velmo.set("config.x.1", "-two");
    StayingLaunch launch = velmo.startStaying({"-config", "x", "-debug", "-console"});
    waitForLog(velmo);
    files::remove(marker);
    const Report platform = launch.platform();
    for (const char* option : {"-debug", "-console", "-pb4l", "-debugFile", "-two"}) {
        EXPECT_EQ(platform.count(option), 1) << option;
    }
    EXPECT_FALSE(platform.has("--launcher.suppressErrors"));
    EXPECT_EQ(launch.finish().status, 0);
}

}  // namespace

}  // namespace acceptance
