// Launches in surroundings that nobody would choose: each either starts the platform as if nothing
// were wrong or ends with a record and status 255.
#include "checks.h"
#include "hostile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

const std::string kNoHome = "Error: getWorkspaceLocation: HOME does not name a directory (";
constexpr std::size_t kLongText = 4000;

std::string defaultWorkspace(const std::string& home, const std::string& user) {
    return home + "/OVR/RCP/abc123/" + user;
}

// A path of `length` characters below `folder`.
std::string longPath(const std::string& folder, std::size_t length) {
    std::string path = folder;
    while (path.size() < length) {
        path += "/" + std::string(std::min<std::size_t>(200, length - path.size() - 1), 'd');
    }
    path.resize(length, 'e');
    return path;
}

// --- HOME and USER ---

using HostileEnvironment = ShutIn;

TEST_F(HostileEnvironment, HomeThatIsMissingOrNoAbsolutePathIsRefused) {
    Installation velmo;
    velmo.environment.erase("HOME");
    expectEarlyFatal(velmo.launch(), kNoHome + ").");
    for (const char* home : {"", "   ", "home", "~", "../home"}) {
        velmo.environment["HOME"] = home;
        expectEarlyFatal(velmo.launch(), kNoHome + home + ").");
    }
}

TEST_F(HostileEnvironment, HomeThatIsNoTextIsRefused) {
    Installation velmo;
    velmo.environment["HOME"] = velmo.userHome + "/\xFF\xFE";
    expectEarlyFatal(velmo.launch(), kNoHome + ").");
    EXPECT_TRUE(files::is_empty(velmo.userHome));
}

TEST_F(HostileEnvironment, HomeMayHoldBlanksLineFeedsAndAnyCharacter) {
    Installation velmo;
    for (const char* name :
         {"/  two  ", "/Zo\xC3\xAB \xE6\x97\xA5", "/a\nb", "/%s%n", "/'\"$(x)`"}) {
        SCOPED_TRACE(name);
        velmo.environment["HOME"] = velmo.userHome + name;
        velmo.workspace = defaultWorkspace(velmo.userHome + name, velmo.userName);
        EXPECT_EQ(velmo.start().after("-data"), velmo.workspace);
    }
}

TEST_F(HostileEnvironment, HomeMayBeAsLongAsThePathsBelowItAllow) {
    Installation velmo;
    const std::string home = longPath(velmo.userHome, kLongText);
    velmo.environment["HOME"] = home;
    velmo.workspace = defaultWorkspace(home, velmo.userName);
    EXPECT_EQ(velmo.start().after("-data"), velmo.workspace);
}

TEST_F(HostileEnvironment, NamesLongerThanTheFileSystemAllowsAreRefused) {
    const std::string name(kLongText, 'n');
    Installation home;
    home.environment["HOME"] = home.userHome + "/" + name;
    const std::string start = "ZYPRA0083E: Unable to create ";
    const Launch first = home.launch();
    EXPECT_EQ(first.status, 255);
    EXPECT_TRUE(hasLineStart(first.temporaryLog, start)) << first.temporaryLog;

    Installation user;
    user.environment["USER"] = name;
    const Launch second = user.launch();
    EXPECT_EQ(second.status, 255);
    EXPECT_TRUE(hasLineStart(second.temporaryLog, start)) << second.temporaryLog;
}

TEST_F(HostileEnvironment, UserThatIsMissingIsRefused) {
    Installation velmo;
    velmo.environment.erase("USER");
    expectEarlyFatal(velmo.launch(), "ZYPRA0037E: Couldn't find the user name!");
}

TEST_F(HostileEnvironment, UserMayBeEmptyOrHoldAnyCharacter) {
    Installation velmo;
    for (const char* user : {"", "  ", "Zo\xC3\xAB", "a\nb", "%s%n", "a'b\""}) {
        SCOPED_TRACE(user);
        velmo.environment["USER"] = user;
        velmo.workspace = defaultWorkspace(velmo.userHome, user);
        EXPECT_EQ(velmo.start().after("-data"), velmo.workspace);
    }
}

// --- Locale ---

TEST_F(HostileEnvironment, WithoutALocaleTextIsUtf8) {
    Installation velmo;
    velmo.environment.erase("LANG");
    velmo.environment["HOME"] = velmo.userHome + "/Zo\xC3\xAB";
    velmo.workspace = defaultWorkspace(velmo.userHome + "/Zo\xC3\xAB", velmo.userName);
    EXPECT_EQ(velmo.start({"\xE6\x97\xA5"}).count("\xE6\x97\xA5"), 1);
    for (const char* name : {"C", "POSIX", ""}) {
        SCOPED_TRACE(name);
        velmo.environment["LC_ALL"] = name;
        EXPECT_EQ(velmo.start({"\xE6\x97\xA5"}).count("\xE6\x97\xA5"), 1);
    }
}

TEST_F(HostileEnvironment, LocaleOfOneByteCharactersKeepsTheBytesOfPaths) {
    Installation velmo;
    const std::string locales = velmo.path("locales");
    files::create_directories(locales);
    const std::string make =
        "localedef -i en_US -f ISO-8859-1 '" + locales + "/en_US.ISO-8859-1' >/dev/null 2>&1";
    (void)std::system(make.c_str());  // it warns, and its status says so
    if (!fileExists(locales + "/en_US.ISO-8859-1/LC_CTYPE")) {
        GTEST_SKIP() << "no such locale can be made (package locales)";
    }
    velmo.environment["LOCPATH"] = locales;
    velmo.environment["LC_ALL"] = "en_US.ISO-8859-1";
    for (const char* name : {"/Zo\xEB", "/Zo\xC3\xAB"}) {
        velmo.environment["HOME"] = velmo.userHome + name;
        velmo.workspace = defaultWorkspace(velmo.userHome + name, velmo.userName);
        EXPECT_EQ(velmo.start().after("-data"), velmo.workspace);
    }
}

TEST_F(HostileEnvironment, LocaleThatDoesNotExistIsRefused) {
    Installation velmo;
    for (const std::string& name :
         {std::string("xx_YY.nothing"), std::string("%s%n"), std::string(kLongText, 'x')}) {
        velmo.environment["LC_ALL"] = name;
        expectEarlyFatal(velmo.launch(), "ZYPRA0182E: Set locale error!");
    }
}

// --- Standard streams ---

TEST_F(HostileEnvironment, ClosedStandardStreamsBecomeTheNullDevice) {
    for (const bool inProcess : {false, true}) {
        Installation velmo;
        if (inProcess) {
            velmo.set("invoke.eclipse.dylib", "1");
        }
        for (int closed = 1; closed < 8; ++closed) {
            SCOPED_TRACE(closed);
            std::string script;
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed & (1 << descriptor)) != 0) {
                    script += "exec " + std::to_string(descriptor) + "<&-; ";
                }
            }
            velmo.wrapper = shell(script);
            const Report report = velmo.start();
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                ASSERT_EQ(report.descriptors.count(descriptor), 1U);
                const std::string& target = report.descriptors.at(descriptor);
                EXPECT_EQ(target.find("/OVR/RCP/"), std::string::npos) << target;
                if ((closed & (1 << descriptor)) != 0) {
                    EXPECT_EQ(target, "/dev/null");
                }
            }
        }
    }
}

// --- umask, working directory, limits ---

TEST_F(HostileEnvironment, AnyUmaskIsRespected) {
    Installation velmo;
    velmo.wrapper = shell("umask 0;");
    velmo.start();
    struct stat status {};
    ASSERT_EQ(stat(velmo.workspace.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0775U);
    ASSERT_EQ(stat((velmo.workspace + "/.rcp.lock").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    velmo.wrapper = shell("umask 0777;");
    velmo.start();
}

TEST_F(HostileEnvironment, UmaskThatForbidsEverythingIsRefusedWithARecord) {
    NEEDS_ROOT();
    Installation velmo;
    velmo.giveTo(kUser);
    velmo.wrapper = shell("umask 0777;");
    expectEarlyFatal(velmo.launch(),
                     "ZYPRA0083E: Unable to create " + velmo.workspace + " directory.");
}

TEST_F(HostileEnvironment, DeletedWorkingDirectoryHurtsOnlyRelativePaths) {
    Installation velmo;
    velmo.wrapper = shell("mkdir gone; cd gone; rmdir ../gone;");
    velmo.start();
    velmo.start({"-data", velmo.userHome + "/absolute"});
    const Launch relative = velmo.launch({"-data", "relative"});
    EXPECT_EQ(relative.status, 255);
    EXPECT_FALSE(relative.platform.has_value());
    EXPECT_TRUE(hasErrorRecord(relative.temporaryLog)) << relative.temporaryLog;
}

TEST_F(HostileEnvironment, EightDescriptorsAreEnough) {
    for (const char* inProcess : {"0", "1"}) {
        Installation velmo;
        velmo.set("invoke.eclipse.dylib", inProcess);
        velmo.wrapper = shell("ulimit -n 8;");
        velmo.start();
        velmo.start();
    }
}

// The sanitizers want descriptors and memory of their own.
#if !defined(__SANITIZE_ADDRESS__)
TEST_F(HostileEnvironment, TooFewDescriptorsEndWithARecordOrDoNotMatter) {
    Installation velmo;
    for (int limit = 5; limit < 8; ++limit) {
        SCOPED_TRACE(limit);
        velmo.wrapper = shell("ulimit -n " + std::to_string(limit) + ";");
        expectStartOrRecord(velmo.launch());
    }
}

TEST_F(HostileEnvironment, TooLittleMemoryEndsWithARecordOrDoesNotMatter) {
    Installation velmo;
    velmo.set("long", std::string(200000, 'x'));
    bool hasStarted = false;
    for (int kilobytes = 3000; kilobytes <= 14000; kilobytes += 500) {
        SCOPED_TRACE(kilobytes);
        velmo.wrapper = shell("ulimit -v " + std::to_string(kilobytes) + ";");
        const Launch launch = velmo.launch();
        if (launch.status == 127 || launch.output.find("shared libraries") != std::string::npos ||
            !launch.output.empty()) {
            continue;  // the system could not even load the program
        }
        expectStartOrRecord(launch);
        hasStarted |= launch.platform.has_value();
    }
    EXPECT_TRUE(hasStarted);
}
#endif

}  // namespace

}  // namespace acceptance
