#include "launcher/instance/process_check.h"

#include "platform/environment.h"
#include "platform/install_location.h"
#include "platform/text.h"
#include "tests/unit/child_process.h"
#include "tests/unit/fixture.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

#include <errno.h>

#include <limits>

namespace rcp {
namespace {

using test::ChildProcess;

constexpr char kListing[] = "/opt/Velmo/com.ovr.rcp.base_1/macosx/x86/eclipse -data /ws\n";

enum HandOff { kInProcess, kExecuted };

bool shows(std::string_view listing, const std::string& name, HandOff handOff) {
    return listingShowsPlatform(listing, {.mainProcessName = toWide(name),
                                          .platformExecutable = {},
                                          .invokeDylib = handOff == kInProcess});
}

TEST(Listing, InProcessNeedsTheNameOnly) {
    EXPECT_TRUE(shows(kListing, "Velmo", kInProcess));
    EXPECT_FALSE(shows(kListing, "Vilma", kInProcess));
    EXPECT_FALSE(shows(kListing, "velmo", kInProcess)) << "letter case counts";
}

TEST(Listing, ExecutedPlatformNeedsItsBaseOnTheSameLine) {
    EXPECT_TRUE(shows(kListing, "eclipse", kExecuted));
    EXPECT_FALSE(shows("1 ? S 0:00 /usr/bin/eclipse\n", "eclipse", kExecuted));
    EXPECT_FALSE(shows("1 ? S 0:00 eclipse\n1 ? S 0:00 rcp.base\n", "eclipse", kExecuted));
    EXPECT_TRUE(shows("1 a\n1 ? S 0:00 rcp.base/eclipse", "eclipse", kExecuted))
        << "the last line needs no line feed";
}

TEST(Listing, DotInTheBaseIsAnyCharacterAsInGrep) {
    EXPECT_TRUE(shows("1 ? S 0:00 rcp-base/eclipse\n", "eclipse", kExecuted));
}

TEST(Listing, NothingListedIsNoPlatform) {
    EXPECT_FALSE(shows("", "Velmo", kInProcess));
    EXPECT_FALSE(shows("\n", "Velmo", kInProcess));
}

TEST(Listing, ProcessThatHasEndedIsNoPlatform) {
    EXPECT_FALSE(shows("1 ? Z 0:00 [Velmo] <defunct>\n", "Velmo", kInProcess));
    EXPECT_TRUE(shows("1 ? Z 0:00 [Velmo] <defunct>\n2 ? S 0:00 Velmo\n", "Velmo", kInProcess));
}

TEST(Listing, EmptyNameNeverMatches) {
    EXPECT_FALSE(shows(kListing, "", kInProcess));
    EXPECT_FALSE(shows(kListing, "", kExecuted));
}

TEST(Listing, NameThatBeginsWithAHyphenIsStillAName) {
    EXPECT_TRUE(shows("1 ? S 0:00 rcp.base/-v\n", "-v", kExecuted));
    EXPECT_FALSE(shows(kListing, "-v", kExecuted));
    EXPECT_FALSE(shows(kListing, "-e", kInProcess));
}

TEST(Listing, NameIsABasicRegularExpression) {
    EXPECT_TRUE(shows(kListing, "V.lmo", kInProcess));
    EXPECT_TRUE(shows(kListing, "ecl[a-z]*e -data", kInProcess));
    EXPECT_FALSE(shows(kListing, "Velmo+", kInProcess)) << "plus is ordinary";
    EXPECT_FALSE(shows(kListing, "Velmo|eclipse", kInProcess)) << "so is the bar";
    EXPECT_TRUE(shows("1 ? S 0:00 a+b(c)|d{2}\n", "a+b(c)|d{2}", kInProcess));
}

TEST(Listing, NameThatIsNoRegularExpressionNeverMatches) {
    for (const char* name : {"[", "\\(", "a\\", "[z-a]"}) {
        EXPECT_FALSE(shows("1 ? S 0:00 [ ( a\\ z\n", name, kInProcess)) << name;
    }
}

TEST(Listing, ShellCharactersInANameMeanNothing) {
    for (const char* name : {"x; true", "$(true)", "`true`", "x || true", "x > /dev/null"}) {
        EXPECT_FALSE(shows(kListing, name, kInProcess)) << name;
    }
    EXPECT_TRUE(shows("1 ? S 0:00 My Client; true\n", "My Client; true", kInProcess));
}

// A running process whose command line is `name` and a number.
class PlatformProcess : public test::LauncherTest {
  protected:
    // Until it has become the program, a child runs this one.
    PlatformProcess() { setLauncherExecutable("/no/such/launcher"); }
    ~PlatformProcess() override { setLauncherExecutable({}); }

    static ChildProcess start(const std::string& name) { return {"/bin/sleep", name, "1000"}; }
    bool isPlatform(long process, const std::wstring& name) const {
        return isPlatformProcess(process, {.mainProcessName = name,
                                           .platformExecutable = platformExecutable,
                                           .invokeDylib = invokeDylib});
    }
    // The child's listing changes when it becomes the program.
    bool becomes(const ChildProcess& child, const std::wstring& name) const {
        for (int round = 0; round < 400; ++round) {
            if (isPlatform(child.pid(), name)) {
                return true;
            }
            usleep(5000);
        }
        return false;
    }

    std::wstring platformExecutable;
    bool invokeDylib = false;
};

TEST_F(PlatformProcess, LiveProcessOfTheNameIsThePlatform) {
    invokeDylib = true;
    const ChildProcess child = start("/opt/Velmo/rcp/rcplauncher");
    EXPECT_TRUE(becomes(child, L"Velmo"));
    EXPECT_FALSE(isPlatform(child.pid(), L"Vilma"));
}

TEST_F(PlatformProcess, ExecutedOneNeedsTheBaseToo) {
    const ChildProcess platform = start("/opt/com.ovr.rcp.base/macosx/x86/eclipse");
    EXPECT_TRUE(becomes(platform, L"eclipse"));
    const ChildProcess other = start("/usr/bin/eclipse");
    invokeDylib = true;
    ASSERT_TRUE(becomes(other, L"eclipse"));
    invokeDylib = false;
    EXPECT_FALSE(isPlatform(other.pid(), L"eclipse"));
}

TEST_F(PlatformProcess, ExecutableOfTheLauncherOrThePlatformIsEnough) {
    setLauncherExecutable({});
    const ChildProcess inProcess([] { return pause(); });
    EXPECT_TRUE(isPlatform(inProcess.pid(), L"nobody's name"));
    setLauncherExecutable("/no/such/launcher");
    EXPECT_FALSE(isPlatform(inProcess.pid(), L"nobody's name"));
    std::filesystem::copy_file("/bin/sleep", folder_.path() / "eclipse");
    std::filesystem::create_symlink(folder_.path() / "eclipse", folder_.path() / "link");
    platformExecutable = folder_.wide("link");
    const ChildProcess executed(folder_.narrow("eclipse"), "no name", "1000");
    EXPECT_TRUE(becomes(executed, L"nobody's name"));
    platformExecutable = folder_.wide("another");
    EXPECT_FALSE(isPlatform(executed.pid(), L"nobody's name"));
    platformExecutable = folder_.wide("eclipse");
    std::filesystem::remove(folder_.path() / "eclipse");
    EXPECT_TRUE(isPlatform(executed.pid(), L"nobody's name")) << "replaced by an upgrade";
}

TEST_F(PlatformProcess, DeadProcessIsNot) {
    invokeDylib = true;
    EXPECT_FALSE(isPlatform(test::deadProcessId(), L"."));
}

TEST_F(PlatformProcess, DeadProcessIsNotLookedUp) {
    const test::ScopedVariable noPs("PATH", folder_.narrow());
    const test::Records records(folder_);
    EXPECT_FALSE(isPlatform(test::deadProcessId(), L"."));
    EXPECT_EQ(records.text(), "");
}

TEST_F(PlatformProcess, EarlierErrorMakesNoLiveProcessDead) {
    setLauncherExecutable({});
    const ChildProcess child([] { return pause(); });
    errno = ESRCH;
    EXPECT_TRUE(isPlatform(child.pid(), L"nobody's name"));
}

TEST_F(PlatformProcess, IdsThatAreNoProcessIdsAreNot) {
    invokeDylib = true;
    const long ids[] = {0,
                        -1,
                        -getpid(),
                        std::numeric_limits<pid_t>::max() + 1L,
                        (1L << 32) + getpid(),
                        std::numeric_limits<long>::max(),
                        std::numeric_limits<long>::min()};
    for (const long id : ids) {
        EXPECT_FALSE(isPlatform(id, L".")) << id;
    }
}

TEST_F(PlatformProcess, LauncherIsNotThePlatformItLooksFor) {
    invokeDylib = true;
    EXPECT_FALSE(isPlatform(getpid(), L"unit_instance"));
}

TEST_F(PlatformProcess, NameOutsideAsciiIsFoundWhateverLocaleTheEnvironmentAsksFor) {
    invokeDylib = true;
    const ChildProcess child = start("/opt/V\u00e9lmo/eclipse");
    setenv("LC_ALL", "C", 1);
    EXPECT_TRUE(becomes(child, L"V\u00e9lmo"));
    unsetenv("LC_ALL");
}

// "UTF-8" is a locale of macOS for characters alone: in LC_ALL it is none, and every letter outside
// ASCII of the listing would be escaped.
TEST_F(PlatformProcess, ListingIsAskedForInAFormOfBothSystems) {
    folder_.write("ps", "#!/bin/sh\necho \"${LC_ALL-no} $LC_CTYPE $*\" >asked\n");
    std::filesystem::permissions(folder_.path() / "ps", std::filesystem::perms::owner_all);
    const ChildProcess child = start("/opt/Velmo");
    const std::string before = getenv("PATH");
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    setenv("PATH", folder_.narrow().c_str(), 1);
    setenv("LC_ALL", "C", 1);
    setenv("LC_CTYPE", "C", 1);
    isPlatform(child.pid(), L"Velmo");
    unsetenv("LC_CTYPE");
    unsetenv("LC_ALL");
    setenv("PATH", before.c_str(), 1);
    std::filesystem::current_path(here);
    EXPECT_EQ(folder_.read("asked"), std::string("no ") + setlocale(LC_CTYPE, nullptr) +
                                         " -ww -o command= -p " + std::to_string(child.pid()) +
                                         "\n");
}

TEST_F(PlatformProcess, ChildSignalThatIsIgnoredChangesNothing) {
    invokeDylib = true;
    const ChildProcess child = start("/opt/Velmo/rcp/rcplauncher");
    ASSERT_TRUE(becomes(child, L"Velmo"));
    (void)signal(SIGCHLD, SIG_IGN);
    EXPECT_TRUE(isPlatform(child.pid(), L"Velmo"));
    EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN) << "given back as it was";
}

TEST_F(PlatformProcess, EmptyNameIsNobodys) {
    invokeDylib = true;
    const ChildProcess platform = start("/opt/Velmo/rcp/rcplauncher");
    ASSERT_TRUE(becomes(platform, L"Velmo"));
    EXPECT_FALSE(isPlatform(platform.pid(), L""));
}

TEST_F(PlatformProcess, TerminalWidthNeverCutsTheLine) {
    invokeDylib = true;
    const ChildProcess child = start("/" + std::string(3000, 'x') + "/TheEnd");
    const std::string before = getenv("COLUMNS") == nullptr ? "" : getenv("COLUMNS");
    setenv("COLUMNS", "40", 1);
    EXPECT_TRUE(becomes(child, L"TheEnd"));
    before.empty() ? unsetenv("COLUMNS") : setenv("COLUMNS", before.c_str(), 1);
}

TEST_F(PlatformProcess, ListingIsThePlainOneWhateverTheEnvironmentAsksFor) {
    invokeDylib = true;
    const ChildProcess child = start("/opt/Velmo/rcp/rcplauncher");
    setenv("PS_FORMAT", "pid", 1);
    EXPECT_TRUE(becomes(child, L"Velmo"));
    unsetenv("PS_FORMAT");
}

TEST_F(PlatformProcess, ProcessThatCannotBeListedIsNot) {
    invokeDylib = true;
    const ChildProcess child = start("/opt/Velmo/rcp/rcplauncher");
    ASSERT_TRUE(becomes(child, L"Velmo"));
    const std::string before = getenv("PATH");
    setenv("PATH", folder_.narrow().c_str(), 1);
    const test::Records records(folder_);
    EXPECT_FALSE(isPlatform(child.pid(), L"Velmo")) << "there is no ps";
    EXPECT_EQ(records.text(),
              "Error: process check: ps cannot be started; only executables tell a platform.\n");
    setenv("PATH", before.c_str(), 1);
}

TEST_F(PlatformProcess, NameFromAPropertyNeverReachesAShell) {
    invokeDylib = true;
    const ChildProcess platform = start("/opt/Velmo/rcp/rcplauncher");
    ASSERT_TRUE(becomes(platform, L"Velmo"));
    const std::wstring touch = L"x; touch " + folder_.wide("touched");
    EXPECT_FALSE(isPlatform(platform.pid(), touch));
    EXPECT_FALSE(isPlatform(platform.pid(), L"$(touch " + folder_.wide("touched") + L")"));
    EXPECT_FALSE(folder_.has("touched"));
}

}  // namespace
}  // namespace rcp
