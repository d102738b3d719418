// The start-up sequence as a whole: what it makes in the user's area and what comes of its steps
// together. Each runs in a process of its own.
#include "launcher/launch.h"

#include "base/system_calls.h"
#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/probe.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>

namespace rcp {
namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::optional<Plan> planOf(const std::vector<std::string>& texts) {
    Launch launch;
    for (const std::string& text : texts) {
        launch.arguments.emplace_back(toWide(text));
    }
    const Start start = isRestart(launch.arguments) ? Start::kRestart : Start::kOrdinary;
    return startup(launch, readInstallation(), start);
}

// The launch arguments that come of it, one a line.
const test::Probe kStartup("start-up sequence", [](const std::vector<std::string>& texts) {
    const std::optional<Plan> plan = planOf(texts);
    if (!plan) {
        return 1;
    }
    for (const Argument& argument : plan->line.arguments()) {
        (void)printf("%s\n", toNarrow(argument.text).c_str());
    }
    return 0;
});

std::string namedLast;

// The same where the file that is named last cannot be removed.
const test::Probe kHeld("start-up sequence with a held file",
                        [](const std::vector<std::string>& texts) {
                            namedLast = texts.back();
                            systemCalls.unlink = [](const char* path) {
                                errno = EBUSY;
                                return path == namedLast ? -1 : kSystemsOwnCalls.unlink(path);
                            };
                            return planOf({texts.begin(), texts.end() - 1}) ? 0 : 1;
                        });

using Texts = std::vector<std::string>;

class Startup : public test::LauncherTest {
  protected:
    void SetUp() override {
        root_ = fs::canonical(folder_.path());
        program_ = root_ + "/rcp/rcplauncher";
        test::linkProgram(program_);
        for (const char* platform : {"eclipse", "eclipse_1615.so"}) {
            test::linkProgram(root_ + "/base/macosx/x86/" + platform);
        }
        folder_.write("base/plugin_customization.ini", "");
        writeProperties();
        for (const std::string core : {"base", "base/config/user"}) {
            folder_.write(core + "/config.ini", "osgi.bundles=\n");
            folder_.write(core + "/platform.xml", "<config>\n</config>\n");
            folder_.write(core + "/rcpinstall.properties", "values=1\n");
        }
    }
    void writeProperties(const std::string& more = {}) const {
        folder_.write("rcp/rcplauncher.properties",
                      "rcp.install.id=abc123\nrcp.base.location=${rcp.home}/base\n"
                      "plugincustomization=" +
                          root_ + "/base/plugin_customization.ini\n" + more);
    }
    [[nodiscard]] test::ProbeResult run(const Texts& options,
                                        const std::string& probe = "start-up sequence") const {
        const test::ScopedVariable home("HOME", root_ + "/home");
        const test::ScopedVariable user("USER", "ann");
        Texts arguments = {program_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return test::runProbe(probe, arguments, program_);
    }
    /// The launch arguments of a sequence that comes to its end.
    [[nodiscard]] Texts start(const Texts& options = {}) const {
        const test::ProbeResult result = run(options);
        EXPECT_EQ(result.status, 0) << log();
        Texts arguments;
        for (std::size_t at = 0; at < result.output.size();) {
            const std::size_t end = result.output.find('\n', at);
            arguments.push_back(result.output.substr(at, end - at));
            at = end + 1;
        }
        return arguments;
    }
    /// The record that ends a sequence for which a file stands where it needs a directory.
    void expectEndAt(const std::string& file, const std::string& record) const {
        folder_.write(kWorkspace + file, "");
        EXPECT_EQ(run({}).status, 255) << file;
        const std::string path = root_ + "/" + kWorkspace + file;
        EXPECT_THAT(log(), HasSubstr(record + ": Unable to create " + path + " directory."))
            << file;
        fs::remove_all(root_ + "/home");
    }
    [[nodiscard]] std::string log() const { return own("logs/rcplauncher.log"); }
    [[nodiscard]] std::string own(const std::string& name) const {
        return folder_.read(kWorkspace + name);
    }
    [[nodiscard]] bool hasOwn(const std::string& name) const {
        return folder_.has(kWorkspace + name);
    }

    const std::string kWorkspace = "home/OVR/RCP/abc123/ann/";
    std::string root_;
    std::string program_;
};

TEST_F(Startup, FirstOneMakesTheUsersArea) {
    static_cast<void>(start());
    for (const char* name :
         {"logs/rcplauncher.log", ".config/config.ini", ".config/rcpinstall.properties",
          ".config/args.properties", ".config/org.eclipse.update/platform.xml",
          "applications/eclipse/features", "applications/eclipse/plugins"}) {
        EXPECT_TRUE(hasOwn(name)) << name;
    }
}

TEST_F(Startup, LaterOneKeepsTheUsersFiles) {
    static_cast<void>(start());
    folder_.write(kWorkspace + ".config/org.eclipse.update/bookmarks.xml", "mine");
    static_cast<void>(start());
    EXPECT_EQ(own(".config/org.eclipse.update/bookmarks.xml"), "mine");
    EXPECT_FALSE(hasOwn(".configbak"));
}

TEST_F(Startup, NoteOfAKilledOneStaysUntilAllThatItLeftIsGone) {
    static_cast<void>(start());
    const std::string bundle = "base/macosx/x86/Info.plist.tmp";
    const std::string users = kWorkspace + ".config/config.ini.tmp";
    for (const std::string& held : {bundle, users}) {
        for (const std::string& left : {bundle, users, kWorkspace + ".rcp.unfinished"}) {
            folder_.write(left, "");
        }
        EXPECT_EQ(run({root_ + "/" + held}, "start-up sequence with a held file").status, 0);
        EXPECT_EQ(folder_.has(bundle), held == bundle);
        EXPECT_EQ(folder_.has(users), held == users);
        EXPECT_TRUE(hasOwn(".rcp.unfinished")) << held;
        static_cast<void>(start());
        EXPECT_FALSE(folder_.has(held));
        EXPECT_FALSE(hasOwn(".rcp.unfinished")) << held;
    }
}

TEST_F(Startup, ResetMovesTheConfigurationAwayButNotThatOfAFirstLaunch) {
    static_cast<void>(start({"-resetconfig"}));
    EXPECT_FALSE(hasOwn(".configbak"));
    static_cast<void>(start({"-resetconfig"}));
    EXPECT_TRUE(hasOwn(".configbak/config.ini"));
    EXPECT_TRUE(hasOwn(".config/config.ini"));
}

TEST_F(Startup, AreaOfAnotherInstallationIsRenewedUnasked) {
    static_cast<void>(start());
    folder_.write(kWorkspace + ".config/rcpinstall.properties", "rcp.install.id=other\n");
    static_cast<void>(start());
    EXPECT_EQ(own(".configbak/rcpinstall.properties"), "rcp.install.id=other\n");
    EXPECT_THAT(own(".config/rcpinstall.properties"), HasSubstr("rcp.install.id=abc123"));
}

TEST_F(Startup, BaseLocationMayLieInTheInstallation) {
    const std::string jar = root_ + "/base/launcher.jar";
    EXPECT_THAT(start(), Contains(HasSubstr(jar)));
    folder_.write("rcp/rcplauncher.properties", "rcp.install.id=abc123\n");
    EXPECT_EQ(run({}).status, 255);
}

TEST_F(Startup, VmArgumentsComeFromEveryFileWithoutJvmPropertiesToo) {
    writeProperties("vmarg.a=-Da=launcher\n");
    folder_.write("base/config/user/rcpinstall.properties", "vmarg.b=-Db=user\n");
    static_cast<void>(start());
    // On a restart the recorded arguments are not written anew.
    folder_.write(kWorkspace + ".config/args.properties", "vmarg.c=-Dc=recorded\n");
    const Texts arguments = start({"-restart", "vmarg.d=-Dd=option"});
    for (const char* expected : {"-Da=launcher", "-Db=user", "-Dc=recorded", "-Dd=option"}) {
        EXPECT_THAT(arguments, Contains(expected));
    }
}

TEST_F(Startup, ArgumentsAreRecordedExceptOnARestart) {
    static_cast<void>(start({"-one"}));
    const std::string recorded = own(".config/args.properties");
    EXPECT_THAT(recorded, HasSubstr("-one"));
    static_cast<void>(start({"-restart", "-two"}));
    EXPECT_EQ(own(".config/args.properties"), recorded);
}

TEST_F(Startup, ExtensionLinkOfTheInstallationReplacesTheUsers) {
    const std::string link = "applications/eclipse/.eclipseextension";
    static_cast<void>(start());
    EXPECT_FALSE(hasOwn(link));
    folder_.write("shared/eclipse/.eclipseextension", "installation's");
    folder_.write(kWorkspace + link, "user's");
    static_cast<void>(start());
    EXPECT_EQ(own(link), "installation's");
}

TEST_F(Startup, BundleGetsItsIdentifierOnlyWhenOneIsNamed) {
    const std::string bundle = "base/macosx/x86/Info.plist";
    folder_.write(bundle,
                  "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
                  "<string>old</string></dict></plist>");
    static_cast<void>(start());
    EXPECT_THAT(folder_.read(bundle), HasSubstr("<string>old</string>"));
    static_cast<void>(start({"-bundleIdentifier", "org.example"}));
    EXPECT_THAT(folder_.read(bundle), HasSubstr("<string>org.example</string>"));
}

TEST_F(Startup, InitialConfigurationIsUsedUntilItIsComplete) {
    writeProperties(
        "config.initial.1=-initialCompleteFlag\nconfig.initial.2=done\nconfig.initial.3=-setup\n");
    EXPECT_THAT(start({"-usual"}), Contains("-setup"));
    folder_.write("base/config/user/rcpinstall.properties", "done=true\n");
    fs::remove_all(root_ + "/home");
    EXPECT_THAT(start({"-usual"}), Not(Contains("-setup")));
}

TEST_F(Startup, TraceShowsWhatWasReadBeforeTheLaunchWasKnownToBeTraced) {
    static_cast<void>(start({"-debug"}));
    std::string trace;
    for (const auto& entry : fs::directory_iterator(root_ + "/" + kWorkspace + "logs")) {
        trace += folder_.read(kWorkspace + "logs/" + entry.path().filename().string());
    }
    EXPECT_THAT(trace, HasSubstr("ZYPRA0032I: Prop Line = \"rcp.install.id=abc123\""));
}

TEST_F(Startup, DirectoryThatCannotBeMadeEndsTheLaunchWithARecordOfItsOwn) {
    expectEndAt(".config", "ZYPRA0093E");
    expectEndAt("applications/eclipse/features", "ZYPRA0094E");
    expectEndAt("applications/eclipse/plugins", "ZYPRA0095E");
}

}  // namespace
}  // namespace rcp
