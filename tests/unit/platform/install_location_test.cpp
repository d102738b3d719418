// Where the installation is, asked by a process whose executable lies where a test put it.
#include "platform/install_location.h"

#include "platform/files.h"
#include "platform/platform.h"
#include "platform/text.h"
#include "tests/unit/probe.h"
#include "tests/unit/records.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <locale.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rcp {
namespace {

namespace fs = std::filesystem;

using test::Probe;
using test::runProbe;

void print(const std::string& text) {
    (void)fwrite(text.data(), 1, text.size(), stdout);
}

const Probe kExecutable("executable path", [](const std::vector<std::string>&) {
    print(read_executable_path());
    return 0;
});

const Probe kAsStarted("executable as started", [](const std::vector<std::string>&) {
    print(platform::executablePathAsStarted());
    return 0;
});

const Probe kLauncherPath("launcher path", [](const std::vector<std::string>&) {
    const std::string path = toNarrow(getLauncherPath());
    print(path);
    return path == read_mlauncher_path() ? 0 : 1;
});

const Probe kInstallDir("install dir", [](const std::vector<std::string>&) {
    print(toNarrow(getInstallDir()));
    return 0;
});

const Probe kCommand("find command", [](const std::vector<std::string>&) {
    const std::wstring folder = findCommand();
    print(toNarrow(folder));
    return getRCPDirectory() == folder ? 0 : 1;
});

// Of the program that is named; the log goes to the folder that is named behind it.
const Probe kNamed("install dir of", [](const std::vector<std::string>& arguments) {
    setLauncherExecutable(arguments.at(0));
    enableLogging(toWide(arguments.at(1)));
    return test::statusOf([] { (void)getInstallDir(); });
});

const Probe kPlainLocale("install dir in the plain locale",
                         [](const std::vector<std::string>& arguments) {
                             (void)setlocale(LC_CTYPE, "C");
                             enableLogging(toWide(arguments.at(0)));
                             return test::statusOf([] { (void)getInstallDir(); });
                         });

class InstallLocation : public test::LauncherTest {
  protected:
    void SetUp() override { root_ = fs::canonical(folder_.path()); }
    /// A name of this program in the test's folder.
    std::string program(const std::string& name) const {
        test::linkProgram(root_ + "/" + name);
        return root_ + "/" + name;
    }
    static std::string ask(const std::string& probe, const std::string& program) {
        const test::ProbeResult result = runProbe(probe, {}, program);
        EXPECT_EQ(result.status, 0);
        return result.output;
    }
    void writePlist(const std::string& name, const std::string& path) const {
        folder_.write(name, "<plist version=\"1.0\"><dict><key>mlauncher.path</key><string>" +
                                path + "</string></dict></plist>");
    }
    std::string root_;
};

// --- The executable -----------------------------------------------------------------------------

TEST_F(InstallLocation, ExecutablesPathIsAbsoluteWithoutLinks) {
    const std::string real = program("real/prog \u00FC");
    EXPECT_EQ(ask("executable path", real), real);
    fs::create_symlink(real, root_ + "/link");
    EXPECT_EQ(ask("executable path", root_ + "/link"), real);
    fs::create_directory_symlink(root_ + "/real", root_ + "/linked");
    EXPECT_EQ(ask("executable path", root_ + "/linked/../linked/./prog \u00FC"), real);
}

#ifdef __linux__
TEST_F(InstallLocation, ExecutableStartedFromADescriptorIsTheFileBehindIt) {
    const std::string real = program("real/prog");
    const int file =
        open(real.c_str(), O_RDONLY);  // NOLINT(*-cloexec-*): the name of the new process
    ASSERT_GE(file, 0);
    const std::string name = "/dev/fd/" + std::to_string(file);  // what fexecve(3) gives the kernel
    EXPECT_EQ(ask("executable path", name), real);
    EXPECT_EQ(ask("executable as started", name), real);
    EXPECT_EQ(ask("find command", name), root_ + "/real");
    close(file);
}
#endif

TEST_F(InstallLocation, ExecutableStartedByARelativeNameKeepsThatName) {
    const std::string real = program("real/prog");
    fs::create_directory(root_ + "/links");
    fs::create_symlink(real, root_ + "/links/client");
    const fs::path before = fs::current_path();
    fs::current_path(root_);
    EXPECT_EQ(ask("executable as started", "links/client"), root_ + "/links/client");
    fs::current_path(before);
}

TEST_F(InstallLocation, ExecutableStartedThroughALinkReportsTheTargetsDirectory) {
    const std::string real = program("real/prog");
    fs::create_symlink(real, root_ + "/link");
    EXPECT_EQ(ask("find command", root_ + "/link"), root_ + "/real");
}

TEST_F(InstallLocation, PathLongerThanAnyFixedBufferWorks) {
    const fs::path before = fs::current_path();
    std::string name;
    for (int i = 0; i < 8; ++i) {
        name += std::string(200, 'd') + "/";
    }
    const std::string real = program(name + "prog");
    ASSERT_GT(real.size(), 1600U);
    EXPECT_EQ(ask("executable path", real), real);
    EXPECT_EQ(ask("install dir", real), fs::path(real).parent_path().string());
    EXPECT_EQ(ask("launcher path", real), real);
}

TEST_F(InstallLocation, ExecutableInTheRootHasNone) {
    folder_.write("log/file", "");
    EXPECT_EQ(runProbe("install dir of", {"/usr", root_ + "/log"}).status, 255);
    EXPECT_THAT(folder_.read("log/rcplauncher.log"),
                testing::EndsWith(
                    "ZYPRA0049E: Unable to locate the platform's installation directory : the "
                    "executable lies in the root directory\n"));
}

#ifdef __linux__
// A Mac's plain locale has a character for every byte.
TEST_F(InstallLocation, FolderThatIsNoTextOfTheLocaleIsNone) {
    folder_.write("log/file", "");
    const std::string real = program("\u00FC/prog");
    EXPECT_EQ(runProbe("install dir in the plain locale", {root_ + "/log"}, real).status, 255);
    EXPECT_THAT(folder_.read("log/rcplauncher.log"),
                testing::EndsWith(
                    "ZYPRA0049E: Unable to locate the platform's installation directory : its "
                    "folder's name is no text of this locale\n"));
}
#endif

TEST_F(InstallLocation, ExecutablesPathIsTraced) {
    const test::Records records(folder_);
    setDebug(true);
    const std::string path = read_executable_path();
    setDebug(false);
    EXPECT_EQ(records.text(), path + "\n");
}

const Probe kRemoved("removed executable", [](const std::vector<std::string>& arguments) {
    EXPECT_EQ(unlink(platform::executablePathAsStarted().c_str()), 0);
    enableLogging(toWide(arguments.at(0)));
    (void)read_executable_path();
    return 0;
});

TEST_F(InstallLocation, ExecutableThatIsGoneEndsTheLaunch) {
    EXPECT_EQ(runProbe("removed executable", {root_}, program("prog")).status, 255);
    EXPECT_EQ(folder_.read("rcplauncher.log"),
              "\nZYPRA0184E: Getting executable path failed! errno = 2 : "
              "No such file or directory\n");
}

// --- The configured launcher path ---------------------------------------------------------------

TEST_F(InstallLocation, LauncherIsTheExecutableUnlessConfigured) {
    const std::string real = program("prog");
    EXPECT_EQ(ask("launcher path", real), real);
}

TEST_F(InstallLocation, ConfiguredLauncherIsTakenWhenItIsExecutable) {
    const std::string real = program("prog");
    folder_.write("other \u00FC", "");
    const std::string other = root_ + "/other \u00FC";
    writePlist("rcplauncher.plist", other);
    ASSERT_EQ(chmod(other.c_str(), 0655), 0);
    EXPECT_EQ(ask("launcher path", real), real) << "the owner may not execute it";
    ASSERT_EQ(chmod(other.c_str(), 0744), 0);
    EXPECT_EQ(ask("launcher path", real), other);
    fs::remove(other);
    EXPECT_EQ(ask("launcher path", real), real);
}

TEST_F(InstallLocation, ConfigurationLiesBesideTheExecutableAsItWasStarted) {
    const std::string real = program("real/prog");
    fs::create_symlink(real, root_ + "/link");
    folder_.write("one", "");
    folder_.write("two", "");
    ASSERT_EQ(chmod((root_ + "/one").c_str(), 0700), 0);
    ASSERT_EQ(chmod((root_ + "/two").c_str(), 0700), 0);
    writePlist("rcplauncher.plist", root_ + "/one");
    writePlist("real/rcplauncher.plist", root_ + "/two");
    EXPECT_EQ(ask("launcher path", root_ + "/link"), root_ + "/one");
    EXPECT_EQ(ask("launcher path", real), root_ + "/two");
}

TEST_F(InstallLocation, ConfigurationThatIsNoneIsNoError) {
    const std::string real = program("prog");
    for (const char* content :
         {"", "no list", "<plist version=\"1.0\"><dict/></plist>",
          "<plist version=\"1.0\"><array><string>/bin/sh</string></array></plist>",
          "<plist version=\"1.0\"><dict><key>mlauncher.path</key><true/></dict></plist>",
          "<plist version=\"1.0\"><dict><key>mlauncher.path</key><string/></dict></plist>"}) {
        folder_.write("rcplauncher.plist", content);
        EXPECT_EQ(ask("launcher path", real), real) << content;
    }
    fs::remove(root_ + "/rcplauncher.plist");
    fs::create_directory(root_ + "/rcplauncher.plist");
    EXPECT_EQ(ask("launcher path", real), real);
}

// --- The installation directory -----------------------------------------------------------------

TEST_F(InstallLocation, InstallationIsTheExecutablesDirectory) {
    EXPECT_EQ(ask("install dir", program("Velmo/prog")), root_ + "/Velmo");
}

TEST_F(InstallLocation, InstallationIsTheParentOfADirectoryNamedRcp) {
    EXPECT_EQ(ask("install dir", program("Velmo/rcp/prog")), root_ + "/Velmo");
    EXPECT_EQ(ask("install dir", program("Velmo/RCP/prog")), root_ + "/Velmo/RCP");
    EXPECT_EQ(ask("install dir", program("Velmo/xrcp/prog")), root_ + "/Velmo/xrcp");
    EXPECT_EQ(ask("install dir", program("Velmo/rcpx/prog")), root_ + "/Velmo/rcpx");
}

TEST_F(InstallLocation, SiblingFolderEclipseIsWrittenOutInFull) {
    fs::create_directories(root_ + "/Contents/Eclipse");
    EXPECT_EQ(ask("install dir", program("Contents/MacOS/prog")),
              root_ + "/Contents/MacOS/../Eclipse");
}

TEST_F(InstallLocation, SiblingOfTheParentCountsForADirectoryNamedRcp) {
    const std::string real = program("Contents/MacOS/rcp/prog");
    fs::create_directories(root_ + "/Contents/MacOS/Eclipse");
    EXPECT_EQ(ask("install dir", real), root_ + "/Contents/MacOS");
    fs::create_directories(root_ + "/Contents/Eclipse");
    EXPECT_EQ(ask("install dir", real), root_ + "/Contents/MacOS/../Eclipse");
}

TEST_F(InstallLocation, ArgumentsAreNotLookedAt) {
    const std::string real = program("Velmo/prog");
    EXPECT_EQ(runProbe("install dir", {"/elsewhere/rcp/prog", "-data", "x"}, real).output,
              root_ + "/Velmo");
    EXPECT_EQ(runProbe("install dir", {}, real).output, root_ + "/Velmo");
}

// --- Absolute paths -----------------------------------------------------------------------------

/// In the test's folder, which is the working directory until the test ends.
class RelativeLocation : public InstallLocation {
  protected:
    void SetUp() override {
        InstallLocation::SetUp();
        fs::current_path(root_);
    }
    void TearDown() override { fs::current_path(before_); }
    static std::string absolute(const std::wstring& path) {
        return toNarrow(convert_from_relative_location(path));
    }

  private:
    fs::path before_ = fs::current_path();
};

TEST_F(RelativeLocation, PathIsTakenFromTheWorkingDirectory) {
    EXPECT_EQ(absolute(L"ws"), root_ + "/ws");
    EXPECT_EQ(absolute(L"./ws/"), root_ + "/ws");
    EXPECT_EQ(absolute(L"a/../b \u00FC"), root_ + "/b \u00FC");
    EXPECT_EQ(absolute(L"../x"), fs::path(root_).parent_path().string() + "/x");
    EXPECT_EQ(absolute(L"."), root_);
}

TEST_F(RelativeLocation, CharactersSpecialInUrlsStay) {
    EXPECT_EQ(absolute(L"a b#c?d%20e"), root_ + "/a b#c?d%20e");
}

TEST_F(RelativeLocation, AbsolutePathIsUntouched) {
    for (const char* path : {"/", "/a/../b", "/a b/", "\\\\?\\C:\\x", "\\\\server\\share"}) {
        EXPECT_EQ(absolute(toWide(path)), path);
    }
}

TEST_F(RelativeLocation, OneBackslashIsRelative) {
    EXPECT_EQ(absolute(L"\\a"), root_ + "/\\a");
}

TEST_F(RelativeLocation, DollarAloneIsAName) {
    EXPECT_EQ(absolute(L"$x"), root_ + "/$x");
    EXPECT_EQ(absolute(L"a${x}"), root_ + "/a${x}");
}

TEST_F(RelativeLocation, PlaceholderThatWasNotReplacedEndsTheLaunch) {
    EXPECT_FATAL(absolute(L"${rcp.home}/ws"),
                 "ZYPRA0301E: Starts with placeholder. This should be translated");
    EXPECT_FATAL(absolute(L"${"), "ZYPRA0301E");
}

TEST_F(RelativeLocation, MissingWorkingDirectoryEndsTheLaunch) {
    EXPECT_FATAL(
        {
            fs::create_directory("gone");
            fs::current_path("gone");
            fs::remove(root_ + "/gone");
            absolute(L"ws");
        },
        "ZYPRA0800E: Unable to get working directory. : No such file or directory\n");
}

TEST_F(RelativeLocation, WorkingDirectoryThatIsNoTextEndsTheLaunch) {
    EXPECT_FATAL(
        {
            fs::create_directory("\xFF");
            fs::current_path("\xFF");
            absolute(L"ws");
        },
        "ZYPRA0801E: Getting file system representation for rcplauncher URL failed! : the working "
        "directory's path is no text of this locale\n");
}

TEST_F(RelativeLocation, PathThatIsNoTextEndsTheLaunch) {
    EXPECT_FATAL(absolute(std::wstring(1, static_cast<wchar_t>(0xD800))),
                 "ZYPRA0302E: Unable to convert relative workspace path to a full path");
}

TEST_F(RelativeLocation, WorkingDirectoryMayHaveAnyLength) {
    std::string name = root_;
    for (int i = 0; i < 8; ++i) {
        name += "/" + std::string(200, 'd');
        fs::create_directory(name);
    }
    fs::current_path(name);
    EXPECT_EQ(absolute(L"ws"), name + "/ws");
}

}  // namespace
}  // namespace rcp
