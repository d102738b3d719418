#include "launcher/command_line/main_options.h"

#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"

#include <algorithm>
#include <limits>

namespace rcp {
namespace {

using test::Pairs;
using test::propertyList;
using testing::HasSubstr;

constexpr wchar_t kSuppress[] = L"--launcher.suppressErrors";

class MainOptions : public test::CommandLineTest {
  protected:
    MainOptions() {
        inputs_.traits.eConfig = InstallConfiguration::kUser;
        folder_.write("c.ini", "");
        custom_ = folder_.wide("c.ini");
        inputs_.workspace = L"/ws";
        inputs_.configuration = L"/ws/.config";
        inputs_.installDir = L"/opt/x";
        setProperties({});
    }
    void setProperties(Pairs properties) {
        properties.emplace_back(L"rcp.install.id", L"id");
        properties.emplace_back(L"plugincustomization", custom_);
        inputs_.properties = propertyList(properties);
    }
    Arguments all(const Arguments& options) {
        inputs_.arguments = options;
        inputs_.arguments.insert(inputs_.arguments.begin(), L"rcplauncher");
        line_ = CommandLine(start_);
        addMainOptionsToCommandLine(line_, inputs_);
        return line_.arguments();
    }
    // The copied options: what stands between the two that are always written.
    Arguments copied(const Arguments& options) {
        const Arguments written = all(options);
        const auto data = std::find(written.rbegin(), written.rend(), L"-data").base() - 1;
        return {written.begin() + 1, data};
    }
    // What follows "-configuration" and its value.
    Arguments added(const Arguments& options) {
        const Arguments written = all(options);
        const auto found = std::find(written.rbegin(), written.rend(), L"-configuration").base();
        return {found + 1, written.end()};
    }
    std::wstring custom_;
};

TEST_F(MainOptions, TellWhatTheyKeepOutAndWhatIsTheLaunchersOwn) {
    setProperties({{L"application", L"mine"}, {L"product", L"theirs"}});
    inputs_.userProperties = propertyList({{L"product", L"users"}});
    const test::LoserNotes losers;
    all({L"-data",
         {L"/a", Origin{nullptr, 2}},
         L"-data",
         {L"/b", Origin{nullptr, 4}},
         L"-application",
         {L"given", Origin{nullptr, 6}},
         L"-vm",
         L"-vmargs"});
    EXPECT_EQ(
        losers.notes,
        (std::vector<std::wstring>{
            L"-data: becomes the launcher's own -data", L"/a: becomes the launcher's own -data",
            L"-data: repeats an option; the first one counts (it)",
            L"/b: repeats an option; the first one counts (it, argument 2)", L"-vm: has no value",
            L"mine: the command line wins (it, argument 6)",
            L"theirs: the user's file wins (it)"}));
}

TEST_F(MainOptions, WithoutAnythingAreTheAreasAndTheCustomization) {
    EXPECT_EQ(all({}), (Arguments{kSuppress, L"-data", L"/ws", L"-configuration", L"/ws/.config",
                                  L"-plugincustomization", custom_}));
}

TEST_F(MainOptions, EverythingFromPropertiesComesInItsOrder) {
    setProperties({{L"personality", L"per"}, {L"product", L"pro"}, {L"application", L"app"}});
    EXPECT_EQ(all({L"-x"}),
              (Arguments{kSuppress, L"-x", L"-data", L"/ws", L"-configuration", L"/ws/.config",
                         L"-application", L"app", L"-plugincustomization", custom_, L"-product",
                         L"pro", L"-personality", L"per"}));
}

TEST_F(MainOptions, NoSplashComesFirstInTheDirectJavaShape) {
    for (int code = 1; code <= 8; ++code) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(all({}).front(), code == 1 || code == 7 ? L"-nosplash" : kSuppress) << code;
    }
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_EQ(all({})[1], kSuppress);
}

TEST_F(MainOptions, ErrorsAreShownOnlyWhileDebugging) {
    EXPECT_EQ(all({L"-debug"}).front(), L"-debug");
    EXPECT_EQ(all({L"-debug", L"-restart"}).front(), kSuppress);
}

TEST_F(MainOptions, LaunchersOwnOptionsAreDroppedWithTheirValues) {
    for (const wchar_t* option : {L"-data", L"-configuration", L"-vm", L"-rcp_old_pid"}) {
        EXPECT_EQ(copied({L"-a", option, L"v", L"-b", option, L"w", L"c"}),
                  (Arguments{L"-a", L"-b", L"c"}))
            << option;
        EXPECT_EQ(copied({L"-a", option}), Arguments{L"-a"}) << option;
    }
}

TEST_F(MainOptions, WhatIsDroppedIsToldInItsOrderWithTheReason) {
    const test::LoserNotes losers;
    all({L"-a", L"-restart", L"-b", L"-rcp_old_pid"});
    EXPECT_EQ(losers.notes, (std::vector<std::wstring>{
                                L"-restart: tells the launcher that its platform is started anew",
                                L"-rcp_old_pid: has no value"}));
}

TEST_F(MainOptions, RestartAndResetAreDroppedAlone) {
    EXPECT_EQ(copied({L"-restart", L"-a", L"-resetconfig", L"-restart", L"-b"}),
              (Arguments{L"-a", L"-b"}));
}

TEST_F(MainOptions, ValuesOfCopiedOptionsAreNotOptions) {
    for (const wchar_t* option :
         {L"-plugincustomization", L"-application", L"-product", L"-personality"}) {
        EXPECT_EQ(copied({option, L"-restart", L"-x"}), (Arguments{option, L"-restart", L"-x"}))
            << option;
        EXPECT_EQ(copied({L"-x", option}), (Arguments{L"-x", option})) << option;
    }
}

TEST_F(MainOptions, EveryOtherArgumentIsCopiedAsItStands) {
    const Arguments options = {L"file.txt",    L"",      L"-nl",     L"de",
                               L"vmarg.a=-Xa", L"-DATA", L"-config", L"-Dx=${env.HOME}",
                               L"-nl",         L"de"};
    EXPECT_EQ(copied(options), options);
}

TEST_F(MainOptions, CopyEndsAtTheJvmArguments) {
    EXPECT_EQ(copied({L"-a", L"-vmargs", L"-b", L"-vmargs"}), Arguments{L"-a"});
}

TEST_F(MainOptions, NoOptionTakesTheSeparatorForItsValue) {
    for (const wchar_t* option : {L"-data", L"-vm"}) {
        EXPECT_EQ(copied({L"-a", option, L"-vmargs", L"-b"}), Arguments{L"-a"}) << option;
    }
    EXPECT_EQ(copied({L"-application", L"-vmargs", L"-b"}), Arguments{L"-application"});
}

TEST_F(MainOptions, RestartDropsTheDebugConsole) {
    start_ = Start::kRestart;
    EXPECT_EQ(copied({L"-restart", L"-console", L"-debug", L"-consoleLog"}),
              Arguments{L"-consoleLog"});
}

TEST_F(MainOptions, OptionsGivenAnywhereSuppressTheirProperties) {
    setProperties({{L"personality", L"per"}, {L"product", L"pro"}, {L"application", L"app"}});
    EXPECT_EQ(added({L"-application", L"mine"}),
              (Arguments{L"-plugincustomization", custom_, L"-product", L"pro", L"-personality",
                         L"per"}));
    EXPECT_EQ(added({L"-plugincustomization", L"/none"}),
              (Arguments{L"-application", L"app", L"-product", L"pro", L"-personality", L"per"}));
    EXPECT_EQ(
        added({L"-vmargs", L"-product", L"-personality", L"-application", L"-plugincustomization"}),
        Arguments{});
}

TEST_F(MainOptions, UsersProductWins) {
    setProperties({{L"product", L"launchers"}});
    inputs_.userProperties = propertyList({{L"product", L"users"}, {L"application", L"never"}});
    EXPECT_EQ(added({}), (Arguments{L"-plugincustomization", custom_, L"-product", L"users"}));
}

TEST_F(MainOptions, EmptyPropertiesArePresent) {
    setProperties({{L"application", L""}, {L"personality", L""}});
    inputs_.userProperties = propertyList({{L"product", L""}});
    EXPECT_EQ(added({}), (Arguments{L"-application", L"", L"-plugincustomization", custom_,
                                    L"-product", L"", L"-personality", L""}));
}

TEST_F(MainOptions, CustomizationIsWrittenWithTheSystemsSeparators) {
    custom_ = folder_.wide() + L"\\c.ini";
    setProperties({});
    EXPECT_EQ(added({}), (Arguments{L"-plugincustomization", folder_.wide("c.ini")}));
}

TEST_F(MainOptions, MissingCustomizationFileIsFatalAndNamedByTheProperty) {
    custom_ = L"\\no\\file";
    setProperties({});
    EXPECT_FATAL(all({}),
                 HasSubstr("ZYPRA0050E:  plugin_customization.ini is missing from \\no\\file"));
}

TEST_F(MainOptions, MissingCustomizationPropertyIsFatalToo) {
    inputs_.properties = propertyList({{L"rcp.install.id", L"id"}});
    EXPECT_FATAL(all({}), HasSubstr("ZYPRA0050E:  plugin_customization.ini is missing from "));
}

TEST_F(MainOptions, MissingInstallIdIsFatalAndComesFirst) {
    inputs_.properties = {};
    EXPECT_FATAL(all({}), HasSubstr("ZYPRA0005E: Couldn't find the rcp.install.id property!"));
}

TEST_F(MainOptions, PreparedAreasAreWrittenWhateverTheArgumentsSay) {
    inputs_.workspace = L"/prepared";
    inputs_.configuration = L"/elsewhere";
    EXPECT_EQ(all({L"-data", L"${rcp.home}/${rcp.home}", L"-configuration", L"/c"}),
              (Arguments{kSuppress, L"-data", L"/prepared", L"-configuration", L"/elsewhere",
                         L"-plugincustomization", custom_}));
}

TEST_F(MainOptions, MegabyteOfArgumentsIsCopied) {
    Arguments options;
    Arguments expected;
    for (int i = 0; i < 100'000; ++i) {
        options.push_back(L"-argument" + std::to_wstring(i));
        expected.push_back(options.back());
        options.insert(options.end(), {L"-data", L"/d", L"-restart"});
    }
    EXPECT_EQ(copied(options), expected);
}

using Daemon = test::CommandLineTest;

TEST_F(Daemon, NamesTheMainProcess) {
    inputs_.runningPlatform = 4711;
    addUseDaemonToCommandLine(line_, inputs_);
    EXPECT_EQ(line_.arguments(), (Arguments{L"-useDaemon", L"4711"}));
}

TEST_F(Daemon, IdIsPrintedWhole) {
    inputs_.runningPlatform = std::numeric_limits<long>::max();
    addUseDaemonToCommandLine(line_, inputs_);
    EXPECT_EQ(line_.arguments().back(), std::to_wstring(std::numeric_limits<long>::max()));
    inputs_.runningPlatform = -1;
    addUseDaemonToCommandLine(line_, inputs_);
    EXPECT_EQ(line_.arguments().back(), L"-1");
}

TEST_F(Daemon, MainProcessIsNone) {
    addUseDaemonToCommandLine(line_, inputs_);
    EXPECT_EQ(line_.arguments(), Arguments{});
}

using ProvisioningApplication = test::CommandLineTest;

TEST_F(ProvisioningApplication, IsNamedAndKnowsWhoAskedForIt) {
    inputs_.properties = propertyList({{L"provisioning.application", L"com.ovr.provision"}});
    line_.setProgram(L"program", whys::kPlatformProgram);
    addProvisioningApplication(line_, inputs_.properties, LaunchKind::kUserProvisioning);
    EXPECT_EQ(line_.arguments(),
              (Arguments{L"program", L"-application", L"com.ovr.provision", L"-userProvLaunch"}));
    line_.setProgram(L"program", whys::kPlatformProgram);
    addProvisioningApplication(line_, inputs_.properties, LaunchKind::kInstallerProvisioning);
    EXPECT_EQ(line_.arguments(), (Arguments{L"program", L"-application", L"com.ovr.provision"}));
}

TEST_F(ProvisioningApplication, MissingOneIsFatal) {
    EXPECT_FATAL(addProvisioningApplication(line_, {}, LaunchKind::kUserProvisioning),
                 HasSubstr("provisioning is due, but the provisioning.application property is "
                           "missing"));
}

}  // namespace
}  // namespace rcp
