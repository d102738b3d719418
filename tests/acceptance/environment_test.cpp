// The environment that the JVM inherits, the library preload included.
#include "checks.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace acceptance {

namespace {

namespace files = std::filesystem;

TEST(Environment, IsTheUsersOwnButForTheFileDescriptorsOfTheZipReader) {
    Installation velmo;
    velmo.environment["SOME"] = "thing";
    auto expected = velmo.environment;
    expected["JAVA_HIGH_ZIPFDS"] = "500";
    EXPECT_EQ(velmo.start().environment, expected);
}

TEST(Environment, IsTheSameInTheLaunchersProcess) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", "1").set("env.set.FOO", "bar");
    auto expected = velmo.environment;
    expected["JAVA_HIGH_ZIPFDS"] = "500";
    expected["FOO"] = "bar";
    EXPECT_EQ(velmo.start().environment, expected);
}

TEST(Environment, ZipReaderValueOverwritesTheInheritedOne) {
    Installation velmo;
    velmo.environment["JAVA_HIGH_ZIPFDS"] = "7";
    EXPECT_EQ(velmo.start().variable("JAVA_HIGH_ZIPFDS"), "500");
    velmo.set("env.JAVA_HIGH_ZIPFDS", "900");
    EXPECT_EQ(velmo.start().variable("JAVA_HIGH_ZIPFDS"), "900");
    velmo.set("env.JAVA_HIGH_ZIPFDS", "");
    EXPECT_EQ(velmo.start().variable("JAVA_HIGH_ZIPFDS"), "");
}

TEST(Environment, ZipReaderValueComesAfterTheOtherSettings) {
    Installation velmo;
    velmo.set("env.set.JAVA_HIGH_ZIPFDS", "1");
    EXPECT_EQ(velmo.start().variable("JAVA_HIGH_ZIPFDS"), "500");
}

TEST(Environment, VariablesAreSetAndRemoved) {
    Installation velmo;
    velmo.environment["OLD"] = "1";
    velmo.environment["GONE"] = "1";
    velmo.set("env.set.OLD", "2").set("env.set.NEW", "a b").set("env.set.EMPTY", "");
    velmo.set("env.set.UMLAUT", "ä").set("env.unset.GONE", "ignored").set("env.unset.NEVER", "");
    const Report platform = velmo.start();
    EXPECT_EQ(platform.variable("OLD"), "2");
    EXPECT_EQ(platform.variable("NEW"), "a b");
    EXPECT_EQ(platform.variable("EMPTY"), "");
    EXPECT_EQ(platform.variable("UMLAUT"), "ä");
    EXPECT_EQ(platform.variable("GONE"), "(unset)");
    EXPECT_EQ(platform.variable("NEVER"), "(unset)");
}

TEST(Environment, VariableThatIsBothRemovedAndSetIsSet) {
    Installation velmo;
    velmo.environment["FOO"] = "old";
    velmo.set("env.set.FOO", "bar").set("env.unset.FOO", "");
    EXPECT_EQ(velmo.start().variable("FOO"), "bar");
}

TEST(Environment, LaterOfTwoSettingsOverwrites) {
    Installation velmo;
    velmo.addLine("env.set.FOO=one").addLine("env.set.FOO=two");
    EXPECT_EQ(velmo.start().variable("FOO"), "two");
}

TEST(Environment, KeysWithoutANameAreSkipped) {
    Installation velmo;
    velmo.set("env.set.", "x").set("env.set", "x").set("env.unset.", "x").set("env.unset", "x");
    auto expected = velmo.environment;
    expected["JAVA_HIGH_ZIPFDS"] = "500";
    EXPECT_EQ(velmo.start().environment, expected);
}

TEST(Environment, WithoutPropertiesTheLibraryPathIsLeftAlone) {
    Installation velmo;
    EXPECT_EQ(velmo.start().variable("DYLD_LIBRARY_PATH"), "(unset)");
    velmo.environment["DYLD_LIBRARY_PATH"] = "/inherited";
    EXPECT_EQ(velmo.start().variable("DYLD_LIBRARY_PATH"), "/inherited");
}

TEST(Environment, LibraryPathIsJoinedInOrder) {
    const char* const internal = "com.ovr.rcp.core.internal.librarypath";
    const struct {
        const char* prepend;
        const char* middle;
        const char* append;
        const char* path;
    } cases[] = {
        {"/p", "/i", "/a", "/p:/i:/a"},       {"/p", nullptr, "/a", "/p:/a"},
        {nullptr, nullptr, "/a", "/a"},       {"/p", nullptr, nullptr, "/p"},
        {nullptr, "/i", nullptr, "/i"},       {nullptr, "/i", "/a", "/i:/a"},
        {"", nullptr, "/a", ":/a"},           {"/p", "", "/a", "/p:/a"},
        {"/p:/q", "/i", nullptr, "/p:/q:/i"},
    };
    for (const auto& each : cases) {
        Installation velmo;
        if (each.prepend != nullptr) {
            velmo.set("library.path.prepend", each.prepend);
        }
        if (each.middle != nullptr) {
            velmo.set(internal, each.middle);
        }
        if (each.append != nullptr) {
            velmo.set("library.path.append", each.append);
        }
        EXPECT_EQ(velmo.start().variable("DYLD_LIBRARY_PATH"), each.path);
    }
}

TEST(Environment, RecordedLibraryPathStandsInTheMiddle) {
    Installation velmo;
    velmo.environment["DYLD_LIBRARY_PATH"] = "/one:/two";
    velmo.set("library.path.prepend", "/p").set("library.path.append", "/a");
    EXPECT_EQ(velmo.start().variable("DYLD_LIBRARY_PATH"), "/p:/one:/two:/a");
    EXPECT_TRUE(hasLine(readFile(velmo.configuration() + "/args.properties"),
                        "com.ovr.rcp.core.internal.librarypath=/one\\:/two"));
    velmo.environment["DYLD_LIBRARY_PATH"] = "/other";
    EXPECT_EQ(velmo.start({"-restart"}).variable("DYLD_LIBRARY_PATH"), "/p:/one:/two:/a");
}

#ifdef __linux__
TEST(Environment, FileSizeSignalIsThePlatformsAsItWasTheLaunchers) {
    for (const bool ignored : {false, true}) {
        Installation velmo;
        const std::string answer = velmo.path("answer");
        velmo.write(velmo.base + "/macosx/x86/eclipse",
                    "#!/bin/sh\ngrep SigIgn: /proc/$$/status >'" + answer + "'\n", 0755);
        velmo.wrapper = {"/bin/sh", "-c",
                         ignored ? "trap '' XFSZ; exec \"$0\" \"$@\"" : "exec \"$0\" \"$@\""};
        EXPECT_EQ(velmo.launch().status, 0);
        const std::string line = readFile(answer);
        ASSERT_TRUE(line.starts_with("SigIgn:")) << line;
        const auto mask =
            std::stoull(line.substr(line.find_first_of("0123456789abcdef", 7)), nullptr, 16);
        EXPECT_EQ((mask >> (SIGXFSZ - 1) & 1) != 0, ignored);
    }
}
#endif

class Preload : public testing::Test {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }

    std::string preloaded() { return velmo.start().variable("LD_PRELOAD"); }

    [[nodiscard]] bool madeALink() const {
        const auto entries = files::directory_iterator(velmo.tmp);
        return std::any_of(begin(entries), end(entries),
                           [](const files::directory_entry& entry) { return entry.is_symlink(); });
    }

    std::string library(const std::string& folder) {
        std::string name = velmo.write(folder + "/libhook.so", "");
        velmo.set("library.preload", name);
        return name;
    }

    Installation velmo;
    const std::string link = "/tmp/ovr.rcp.ann.abc123.libhook.so";
    const std::string realLink = velmo.tmp + "/ovr.rcp.ann.abc123.libhook.so";
};

TEST_F(Preload, NothingHappensWithoutTheProperty) {
    velmo.environment["LD_PRELOAD"] = "";
    EXPECT_EQ(preloaded(), "");
}

TEST_F(Preload, PathWithoutABlankIsUsedAsItIsEvenWhenNothingIsThere) {
    velmo.set("library.preload", "/not/there.so");
    EXPECT_EQ(preloaded(), "/not/there.so");
    EXPECT_FALSE(madeALink());
}

TEST_F(Preload, PathWithABlankGetsALink) {
    const std::string name = library("some folder");
    EXPECT_EQ(preloaded(), link);
    EXPECT_EQ(files::read_symlink(realLink), name);
}

TEST_F(Preload, LinkIsKeptWhileItPointsToTheLibraryAndReplacedOtherwise) {
    library("some folder");
    EXPECT_EQ(preloaded(), link);
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(lstat(realLink.c_str(), &before), 0);
    EXPECT_EQ(preloaded(), link);
    ASSERT_EQ(lstat(realLink.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    const std::string other = library("other folder");
    EXPECT_EQ(preloaded(), link);
    EXPECT_EQ(files::read_symlink(realLink), other);
}

TEST_F(Preload, DanglingLinkIsReplaced) {
    files::create_symlink("/not/there", realLink);
    const std::string name = library("some folder");
    EXPECT_EQ(preloaded(), link);
    EXPECT_EQ(files::read_symlink(realLink), name);
}

TEST_F(Preload, MissingLibraryWithABlankLeavesTheVariableAlone) {
    velmo.set("library.preload", "/not there/libhook.so");
    EXPECT_EQ(preloaded(), "(unset)");
    EXPECT_FALSE(madeALink());
}

TEST_F(Preload, LinkIsNamedForUserAndInstallation) {
    const std::string name = library("some folder");
    velmo.environment["USER"] = "bob";
    velmo.set("rcp.install.id", "other.id");
    EXPECT_EQ(preloaded(), "/tmp/ovr.rcp.bob.other.id.libhook.so");
    EXPECT_EQ(files::read_symlink(velmo.tmp + "/ovr.rcp.bob.other.id.libhook.so"), name);
}

TEST_F(Preload, LinkOfAnotherUserThatCannotBeRemovedIsNeverPreloaded) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can play two users";
    }
    library("some folder");
    velmo.giveTo(12345);
    ASSERT_EQ(chown(velmo.tmp.c_str(), 0, 0), 0);  // as /tmp: anyone's, with the sticky bit
    files::create_symlink("/evil.so", realLink);
    ASSERT_EQ(lchown(realLink.c_str(), 54321, 54321), 0);
    velmo.environment["LD_PRELOAD"] = "";
    const Launch launch = velmo.launch();
    ASSERT_TRUE(launch.platform.has_value()) << launch.log << launch.temporaryLog << launch.output;
    EXPECT_EQ(launch.platform->variable("LD_PRELOAD"), "");
    EXPECT_EQ(files::read_symlink(realLink), "/evil.so");
    EXPECT_NE(launch.log.find(link), std::string::npos) << "one record tells why";
}

TEST_F(Preload, OwnLinkIsReplacedAlsoInAFolderOfRoot) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can play two users";
    }
    const std::string name = library("some folder");
    velmo.giveTo(12345);
    ASSERT_EQ(chown(velmo.tmp.c_str(), 0, 0), 0);
    files::create_symlink("/old.so", realLink);
    ASSERT_EQ(lchown(realLink.c_str(), 12345, 12345), 0);
    EXPECT_EQ(preloaded(), link);
    EXPECT_EQ(files::read_symlink(realLink), name);
}

TEST_F(Preload, PathWithoutAFolderIsFatal) {
    velmo.write("folder/lib hook.so", "");
    velmo.set("library.preload", "lib hook.so");
    expectLateFatal(velmo.launch(),
                    "ZYPRA0189E: Couldn't find filename for library.preload property");
}

TEST_F(Preload, UserNameIsNeededAndIsNoPath) {
    library("some folder");
    velmo.workspace = velmo.path("ws");
    const Texts arguments = {"-data", velmo.workspace};
    velmo.environment["USER"] = "a/b";
    expectLateFatal(velmo.launch(arguments), "ZYPRA0006E: Couldn't find the user name!");
    velmo.environment.erase("USER");
    expectLateFatal(velmo.launch(arguments), "ZYPRA0006E: Couldn't find the user name!");
}

}  // namespace

}  // namespace acceptance
