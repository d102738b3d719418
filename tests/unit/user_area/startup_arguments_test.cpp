#include "launcher/user_area/startup_arguments.h"

#include "launcher/properties/java_properties.h"
#include "tests/unit/user_area/user_area_fixture.h"

#include <stdlib.h>

#include <vector>

namespace rcp::test {
namespace {

class StartupArguments : public UserAreaTest {
  protected:
    StartupArguments() { unsetenv("DYLD_LIBRARY_PATH"); }
    ~StartupArguments() override { unsetenv("DYLD_LIBRARY_PATH"); }

    void write(const Arguments& arguments, const std::wstring& restartExe = L"/r/exe") const {
        writeStartupArgs(arguments, configuration(), restartExe, properties, L"/opt/i");
    }
    [[nodiscard]] std::string written() const { return own("args.properties"); }

    // What is written for arguments behind the program's path.
    [[nodiscard]] std::string record(Arguments arguments) const {
        arguments.insert(arguments.begin(), L"rcplauncher");
        write(arguments);
        const std::string begin = "arg0=/r/exe\n";
        const std::string end = "com.ovr.rcp.core.internal.librarypath=\n";
        const std::string text = written();
        EXPECT_TRUE(text.starts_with(begin) && text.ends_with(end)) << text;
        return text.substr(begin.size(), text.size() - begin.size() - end.size());
    }

    PropertyList properties;
};

TEST_F(StartupArguments, ArgumentsOfThisOneStartAreLeftOutAndTheRestIsNumberedWithoutGaps) {
    write({L"rcplauncher", L"-restart", L"-data", L"${rcp.home}/ws", L"-rcp_old_pid", L"4711",
           L"-product", L"x"});
    EXPECT_EQ(written(),
              "arg0=/r/exe\narg1=-data\narg2=/opt/i/ws\narg3=-product\narg4=x\nargc=5\n"
              "com.ovr.rcp.core.internal.librarypath=\n");
}

TEST_F(StartupArguments, ResetIsNotRepeatedByARestart) {
    EXPECT_EQ(record({L"-resetconfig", L"-a"}), "arg1=-a\nargc=2\n");
}

TEST_F(StartupArguments, OnlyTheFirstOfAnOptionIsLeftOut) {
    EXPECT_EQ(record({L"-restart", L"-restart", L"-resetconfig", L"-resetconfig"}),
              "arg1=-restart\narg2=-resetconfig\nargc=3\n");
}

TEST_F(StartupArguments, OptionsInOtherCaseAreArguments) {
    EXPECT_EQ(record({L"-Restart", L"-DATA", L"${rcp.home}"}),
              "arg1=-Restart\narg2=-DATA\narg3=${rcp.home}\nargc=4\n");
}

TEST_F(StartupArguments, OldProcessIdAtTheEndHasNoValueToLeaveOut) {
    EXPECT_EQ(record({L"-a", L"-rcp_old_pid"}), "arg1=-a\nargc=2\n");
}

TEST_F(StartupArguments, EndOfTheOptionsIsNoOldProcessId) {
    EXPECT_EQ(record({L"-rcp_old_pid", L"-vmargs", L"-Da"}), "arg1=-vmargs\narg2=-Da\nargc=3\n");
}

// Recorded, it would have the launcher's own "-vm" for its value after a restart.
TEST_F(StartupArguments, OptionThatStandsLastIsLeftOutInFrontOfTheAppendedJvm) {
    EXPECT_EQ(record({L"-a", L"-data", L"-vm", L"/j"}), "arg1=-a\narg2=-vm\narg3=/j\nargc=4\n");
}

TEST_F(StartupArguments, ProgramAloneIsOneArgument) {
    EXPECT_EQ(record({}), "argc=1\n");
}

TEST_F(StartupArguments, WithoutRestartProgramTheLauncherItselfIsRecorded) {
    write({L"/opt/rcp/rcplauncher"}, L"");
    const std::string withEmpty = written();
    EXPECT_FALSE(withEmpty.starts_with("arg0=\n")) << withEmpty;
    EXPECT_TRUE(withEmpty.starts_with("arg0=/")) << withEmpty;
    writeStartupArgs({L"/opt/rcp/rcplauncher"}, configuration(), std::nullopt, properties,
                     L"/opt/i");
    EXPECT_EQ(written(), withEmpty);
}

TEST_F(StartupArguments, WorkspaceIsRecordedAbsolute) {
    const std::string here = std::filesystem::current_path();
    EXPECT_EQ(record({L"-data", L"ws"}), "arg1=-data\narg2=" + here + "/ws\nargc=3\n");
}

TEST_F(StartupArguments, FirstInstallationPlaceholderOfTheWorkspaceIsReplaced) {
    EXPECT_EQ(record({L"-data", L"${rcp.home}/a b:c"}),
              "arg1=-data\narg2=/opt/i/a b\\:c\nargc=3\n");
}

TEST_F(StartupArguments, UserPlaceholdersOfTheWorkspaceAreResolved) {
    properties = listOf({{L"where", L"/some/place"}});
    EXPECT_EQ(record({L"-data", L"${prop.where}/ws"}), "arg1=-data\narg2=/some/place/ws\nargc=3\n");
}

TEST_F(StartupArguments, OnlyTheFirstWorkspaceIsRewritten) {
    EXPECT_EQ(record({L"-data", L"${rcp.home}/1", L"-data", L"${rcp.home}/2"}),
              "arg1=-data\narg2=/opt/i/1\narg3=-data\narg4=${rcp.home}/2\nargc=5\n");
}

TEST_F(StartupArguments, WorkspaceOptionAtTheEndIsAnArgument) {
    EXPECT_EQ(record({L"-data"}), "arg1=-data\nargc=2\n");
}

TEST_F(StartupArguments, OtherArgumentsKeepTheirPlaceholders) {
    EXPECT_EQ(record({L"${rcp.home}", L"${env.NO_SUCH_VARIABLE}"}),
              "arg1=${rcp.home}\narg2=${env.NO_SUCH_VARIABLE}\nargc=3\n");
}

TEST_F(StartupArguments, ArgumentsAreEscapedForTheJavaReader) {
    EXPECT_EQ(record({L" a\tb\n", L"é", L"\U0001F600", L"k=v:#!\\", L"100%d %s"}),
              "arg1= a\\u0009b\\u000a\narg2=\\u00e9\narg3=\\uf600\narg4=k\\=v\\:\\#\\!\\\\\n"
              "arg5=100%d %s\nargc=6\n");
}

TEST_F(StartupArguments, ManyArgumentsAreNumberedOn) {
    const std::string text = record(Arguments(12345, L"a"));
    EXPECT_NE(text.find("\narg12345=a\nargc=12346\n"), std::string::npos);
}

TEST_F(StartupArguments, LibraryPathOfThisLaunchIsRecordedLast) {
    setenv("DYLD_LIBRARY_PATH", "/a b:/c", 1);
    write({L"rcplauncher"});
    EXPECT_EQ(written(), "arg0=/r/exe\nargc=1\ncom.ovr.rcp.core.internal.librarypath=/a b\\:/c\n");
}

TEST_F(StartupArguments, OlderFileIsReplaced) {
    folder_.write("ws/.config/args.properties", std::string(5000, 'x'));
    EXPECT_EQ(record({}), "argc=1\n");
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(StartupArguments, BackslashesOfTheConfigurationAreTurned) {
    const std::wstring exe = L"/r/exe";
    writeStartupArgs({L"x"}, folder_.wide() + L"\\ws\\.config", exe, properties, L"/opt/i");
    EXPECT_TRUE(hasOwn("args.properties"));
}

TEST_F(StartupArguments, MissingConfigurationDirectoryIsFatal) {
    const std::wstring exe = L"/r/exe";
    EXPECT_FATAL(writeStartupArgs({L"x"}, folder_.wide("none"), exe, properties, L"/opt/i"),
                 "ZYPRA0097E: Could not open .*/none/args.properties for writing! : No such file");
}

TEST_F(StartupArguments, DirectoryOfThatNameIsFatal) {
    std::filesystem::create_directory(folder_.path() / "ws/.config/args.properties");
    EXPECT_FATAL(write({L"x"}), "ZYPRA0097E: Could not open " +
                                    folder_.narrow("ws/.config/args.properties") +
                                    " for writing! : Is a directory");
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(StartupArguments, WorkspaceThatCannotBeResolvedIsFatalAndLeavesTheOlderFile) {
    folder_.write("ws/.config/args.properties", "older\n");
    EXPECT_FATAL(write({L"x", L"-data", L"/a/${env.NO_SUCH_VARIABLE}"}),
                 "ZYPRA0088E: property substitution is invalid "
                 "\\(/a/\\$\\{env.NO_SUCH_VARIABLE\\}\\) \\(-data\\)\n");
    EXPECT_EQ(written(), "older\n");
    EXPECT_FALSE(hasTemporaryName());
}

// How much the file takes before its content is handed to the system.
constexpr std::size_t kBuffered = 65536;

TEST_F(StartupArguments, FullDiskNamesTheLineThatFailed) {
    folder_.write("ws/.config/args.properties", "older\n");
    const auto writeLimited = [this](std::size_t length) {
        const FileSizeLimit limit(30'000);
        write({L"x", std::wstring(length, L'a')});
    };
    const std::string file = "Error writing to .*/args.properties file. : File too large";
    EXPECT_FATAL(writeLimited(kBuffered), "ZYPRA0020E: " + file);
    // "arg0=/r/exe\n" and the argument's lines leave less than "argc=2\n" needs.
    std::size_t length = kBuffered;
    while (propertyLines("arg1", std::string(length, 'a')).size() + 12 + 4 > kBuffered) {
        --length;
    }
    EXPECT_FATAL(writeLimited(length), "ZYPRA0116E: " + file);
    EXPECT_FATAL(writeLimited(40'000), "ZYPRA0117E: " + file);
    EXPECT_EQ(written(), "older\n");
    EXPECT_FALSE(hasTemporaryName());
}

}  // namespace
}  // namespace rcp::test
