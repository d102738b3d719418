// Files of the installation and of the user that are not what they should be. A pipe never makes a
// launch wait, and nothing of the user's is destroyed.
#include "checks.h"
#include "hostile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace acceptance {

namespace {

namespace files = std::filesystem;

void makeFifo(const std::string& path) {
    files::create_directories(files::path(path).parent_path());
    files::remove_all(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0) << path;
}

void makeFolder(const std::string& path) {
    files::remove_all(path);
    files::create_directories(path);
}

std::string randomBytes(std::size_t count) {
    std::minstd_rand random(17);
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 8U);
    }
    return bytes;
}

std::string notLoaded(const std::string& path) {
    return "ZYPRA0096E: Unable to load " + path + " file!";
}

// --- The installation's property file ---

class HostilePropertyFile : public ShutIn {
  protected:
    HostilePropertyFile() {
        velmo.start();  // the file stands as it will; a workspace is there
        files::remove_all(velmo.workspace);
    }
    Installation velmo;
    const std::string path = velmo.rcp + "/rcplauncher.properties";
};

TEST_F(HostilePropertyFile, DirectoryInItsPlaceIsRefused) {
    makeFolder(path);
    expectEarlyFatal(velmo.launch(), notLoaded(path));
}

TEST_F(HostilePropertyFile, PipeInItsPlaceIsRefusedAtOnce) {
    makeFifo(path);
    expectEarlyFatal(velmo.launch(), notLoaded(path));
}

TEST_F(HostilePropertyFile, FileThatMayNotBeReadIsRefused) {
    NEEDS_ROOT();
    velmo.giveTo(kUser);
    files::permissions(path, files::perms::none);
    expectEarlyFatal(velmo.launch(), notLoaded(path));
}

TEST_F(HostilePropertyFile, BinaryFileHoldsNoInstallation) {
    velmo.write(path, randomBytes(100000));
    expectEarlyFatal(velmo.launch(),
                     "ZYPRA0016E: rcp.install.id is required for this configuration!");
}

TEST_F(HostilePropertyFile, HundredMegabytesAreRead) {
    const std::string text = readFile(path);
    std::ofstream file(path);
    const std::string line = "# " + std::string(97, 'x') + "\n";
    for (int i = 0; i < 1000000; ++i) {
        file << line;
    }
    file << text;
    file.close();
    const Report report = velmo.start();
    EXPECT_EQ(report.after("-data"), velmo.workspace);
}

TEST_F(HostilePropertyFile, ByteOrderMarkAndCarriageReturnsAreNoPartOfIt) {
    std::string text = "\xEF\xBB\xBF";
    for (const char character : readFile(path)) {
        text += character == '\n' ? "\r\n" : std::string(1, character);
    }
    velmo.write(path, text + "product=p.q\r\n");
    const Report report = velmo.start();
    EXPECT_EQ(report.after("-data"), velmo.workspace);
    EXPECT_EQ(report.after("-product"), "p.q");
}

TEST_F(HostilePropertyFile, LineThatIsNoTextIsLeftOutWithARecord) {
    velmo.write(path, "x=\xFF\xFE\n" + readFile(path));
    const Launch launch = velmo.launch();
    EXPECT_TRUE(launch.platform.has_value());
    EXPECT_TRUE(hasLineStart(launch.log, "Error: readFile: " + path + ": line 1 ")) << launch.log;
}

// --- The user's area ---

class HostileUserArea : public ShutIn {
  protected:
    // A user's area from an earlier launch, in which `name` becomes what a test wants.
    HostileUserArea() { velmo.start(); }
    [[nodiscard]] std::string in(const std::string& name) const {
        return velmo.configuration() + "/" + name;
    }
    Installation velmo;
};

TEST_F(HostileUserArea, PropertyFileThatIsADirectoryOrAPipeIsRefused) {
    const std::string path = in("rcpinstall.properties");
    makeFolder(path);
    expectLateFatal(velmo.launch(), notLoaded(path));
    makeFifo(path);
    expectLateFatal(velmo.launch(), notLoaded(path));
}

TEST_F(HostileUserArea, PropertyFileOfGarbageDoesNotStopTheLaunch) {
    velmo.write(in("rcpinstall.properties"), randomBytes(50000));
    expectStartOrRecord(velmo.launch());
    velmo.write(in("rcpinstall.properties"), "");
    velmo.start();
}

TEST_F(HostileUserArea, FilesThatTheLauncherOnlyMakesMayBeAnything) {
    for (const char* name : {"config.ini", "org.eclipse.update/platform.xml"}) {
        SCOPED_TRACE(name);
        makeFolder(in(name));
        velmo.start();
        makeFifo(in(name));
        velmo.start();
    }
}

TEST_F(HostileUserArea, RecordedArgumentsReplaceAnythingButADirectory) {
    makeFifo(in("args.properties"));
    velmo.start();
    EXPECT_TRUE(files::is_regular_file(in("args.properties")));
    makeFolder(in("args.properties"));
    expectLateFatal(velmo.launch(),
                    "ZYPRA0097E: Could not open " + in("args.properties") + " for writing!");
}

TEST_F(HostileUserArea, LockFileMustBeAFile) {
    const std::string record = "ZYPRA0054E: Error locating platform lock file";
    for (const auto& make : {makeFolder, makeFifo}) {
        make(velmo.workspace + "/.rcp.lock");
        expectEarlyFatal(velmo.launch(), record);
    }
}

TEST_F(HostileUserArea, LogThatIsAPipeOrADirectoryEndsTheLaunchWithARecord) {
    const std::string path = velmo.workspace + "/logs/rcplauncher.log";
    for (const auto& make : {makeFolder, makeFifo}) {
        make(path);
        expectEarlyFatal(velmo.launch(), "ZYPRA0019E: Could not open " + path + " for writing!");
    }
}

TEST_F(HostileUserArea, TemporaryFilesThatAreNoFilesAreNotFollowed) {
    const std::string victim = velmo.write("victim", "precious\n");
    files::create_symlink(victim, in("args.properties.tmp"));
    expectStartOrRecord(velmo.launch());
    EXPECT_EQ(readFile(victim), "precious\n");
    makeFifo(in("args.properties.tmp"));
    expectStartOrRecord(velmo.launch());
}

using HostileWorkspace = ShutIn;

TEST_F(HostileWorkspace, FileInItsPlaceIsRefusedAndStays) {
    Installation velmo;
    const std::string file = velmo.write("home/file", "precious\n");
    for (const std::string& workspace : {file, file + "/below"}) {
        expectEarlyFatal(velmo.launch({"-data", workspace}),
                         "ZYPRA0083E: Unable to create " + workspace + " directory.");
    }
    EXPECT_EQ(readFile(file), "precious\n");
}

TEST_F(HostileWorkspace, HomeThatMayNotBeWrittenIsRefused) {
    NEEDS_ROOT();
    Installation velmo;
    velmo.giveTo(kUser);
    files::permissions(velmo.userHome, files::perms::owner_read | files::perms::owner_exec);
    const std::string record = "ZYPRA0083E: Unable to create " + velmo.workspace + " directory. (" +
                               velmo.userHome + "/OVR) : Permission denied";
    const Launch launch = velmo.launch();
    expectEarlyFatal(launch, record);
    expectBareRecord(launch.temporaryLog, record);
}

TEST_F(HostileWorkspace, AreaThatMayNotBeWrittenAnyMoreIsRefused) {
    NEEDS_ROOT();
    Installation velmo;
    velmo.giveTo(kUser);
    velmo.start();
    for (const char* name : {"/.config", "/logs", ""}) {
        const files::path folder = velmo.workspace + name;
        files::permissions(folder, files::perms::owner_read | files::perms::owner_exec);
        expectStartOrRecord(velmo.launch());
        files::permissions(folder, files::perms::owner_all);
    }
    velmo.start();
}

}  // namespace

}  // namespace acceptance
