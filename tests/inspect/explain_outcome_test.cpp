// How a launch ends, what it waits for and which files it changes; and how people are told.
#include "tests/inspect/explain_fixture.h"
#include "tests/inspect/paths.h"

#include <sys/file.h>

namespace rcp::inspect::test {
namespace {

class ExplainOutcome : public ExplainTest {};
class ExplainChanges : public ExplainTest {};
class ExplainWaits : public ExplainTest {};
class ExplainAsText : public ExplainTest {};

constexpr const char* kFirstChanges =
    "made directory home/workspace\n"
    "made directory home/workspace/ann\n"
    "made directory home/workspace/ann/.config\n"
    "made file home/workspace/ann/.config/args.properties\n"
    "made file home/workspace/ann/.config/config.ini\n"
    "made directory home/workspace/ann/.config/org.eclipse.update\n"
    "made file home/workspace/ann/.config/org.eclipse.update/platform.xml\n"
    "made file home/workspace/ann/.config/rcpinstall.properties\n"
    "made file home/workspace/ann/.rcp.lock\n"
    "made file home/workspace/ann/.rcp.main\n"
    "made directory home/workspace/ann/applications\n"
    "made directory home/workspace/ann/applications/eclipse\n"
    "made file home/workspace/ann/applications/eclipse/.eclipseextension\n"
    "made directory home/workspace/ann/applications/eclipse/features\n"
    "made directory home/workspace/ann/applications/eclipse/plugins\n"
    "made directory home/workspace/ann/logs\n";

bool hasLine(const std::string& text, const std::string& line) {
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST_F(ExplainOutcome, IsTheProgramThatTheLauncherBecomes) {
    const Json outcome = explain()["outcome"];
    EXPECT_EQ(outcome["kind"], "execv");
    EXPECT_EQ(outcome["role"], "main");
    EXPECT_TRUE(outcome["program"].get<std::string>().ends_with("/macosx/x86/eclipse"));
}

TEST_F(ExplainOutcome, IsTheLibraryOfAHandOffInProcess) {
    makeInstallation({"--mode", "in-process"});
    const Json outcome = explain()["outcome"];
    EXPECT_EQ(outcome["kind"], "in-process");
    EXPECT_TRUE(outcome["program"].get<std::string>().ends_with("/macosx/x86/eclipse_1615.so"));
}

TEST_F(ExplainOutcome, IsPlainJavaForAService) {
    makeInstallation({"--mode", "service"});
    const Json told = explain();
    EXPECT_EQ(told["outcome"]["kind"], "execv");
    EXPECT_EQ(told["outcome"]["program"], installation() + "/jre/bin/java");
    EXPECT_EQ(element(told, "-nosplash")["rule"],
              "a plain Java command line shows no splash screen");
    EXPECT_FALSE(hasElement(told, "-vmargs"));
}

TEST_F(ExplainOutcome, IsProvisioningAtANewLevel) {
    makeInstallation({"--provisioning", "2"});
    const Json told = explain();
    EXPECT_EQ(told["outcome"]["kind"], "provisioning");
    EXPECT_EQ(sourceOf(element(told, "sample.provisioning")),
              "rcplauncher.properties provisioning.application");
    EXPECT_TRUE(hasElement(told, "-userProvLaunch"));
}

TEST_F(ExplainOutcome, IsTheRecordOfALaunchThatCannotBe) {
    std::filesystem::remove(folder_.path() / "client/rcp/plugin_customization.ini");
    const Json told = explain();
    EXPECT_EQ(told["outcome"]["kind"], "fatal");
    EXPECT_EQ(told["outcome"]["status"], 255);
    EXPECT_TRUE(told["outcome"]["record"].get<std::string>().starts_with(
        "ZYPRA0050E:  plugin_customization.ini is missing from"));
    EXPECT_FALSE(told["outcome"]["cause"].get<std::string>().empty());
}

TEST_F(ExplainOutcome, OfAnEndNamesTheArgumentThatHasBroughtItAbout) {
    const std::pair<Words, const char*> ends[] = {
        {{"-clean", "-data", "${env.NOT_SET_HERE}"}, "argument 3"},
        {{"-data", ""}, "argument 2"},
        {{"-data", "/"}, "argument 2"},
        {{"-data", "/dev/null/ws"}, "argument 2"},
        {{"-clean", "-name=\"x\""}, "argument 2"},
        {{"-Djava.home=/x"}, "argument 1"},
        {{"-maxargcnt", "1"}, "argument 2"}};
    for (const auto& [arguments, source] : ends) {
        const Json outcome = explain(arguments)["outcome"];
        EXPECT_EQ(outcome["kind"], "fatal") << outcome;
        EXPECT_EQ(sourceOf(outcome), source) << outcome;
    }
}

TEST_F(ExplainOutcome, OfAnEndNamesTheEntryThatHasBroughtItAbout) {
    const std::string settings = folder_.read(kProperties);
    const std::pair<std::string, const char*> ends[] = {
        {"vmarg.x=${prop.NOT_SET_HERE}\n", "rcplauncher.properties vmarg.x"},
        {"eclipse.name=other\n", "rcplauncher.properties eclipse.name"},
        {"config.sample.5=vmarg.x\n", "rcplauncher.properties config.sample.5"}};
    for (const auto& [entry, source] : ends) {
        append(kProperties, entry);
        const Json outcome = explain({"-config", "sample"})["outcome"];
        EXPECT_EQ(outcome["kind"], "fatal") << outcome;
        EXPECT_EQ(sourceOf(outcome), source) << outcome;
        folder_.write(kProperties, settings);
    }
    const std::pair<const char*, const char*> changed[] = {
        {"rcp.base.location=", "rcplauncher.properties"},
        {"rcp.install.id=", "rcplauncher.properties"}};
    for (const auto& [key, source] : changed) {
        replaceIn(kProperties, key, "nothing=");
        EXPECT_EQ(sourceOf(explain()["outcome"]), source) << key;
        folder_.write(kProperties, settings);
    }
    std::filesystem::remove(folder_.path() / "client/rcp/plugin_customization.ini");
    EXPECT_EQ(sourceOf(explain()["outcome"]), "rcplauncher.properties plugincustomization");
    const std::string line =
        "\n  from           rcplauncher.properties:" + std::to_string(lineOf("plugincus")) + " ";
    EXPECT_NE(explainText({}, {}).find(line), std::string::npos);
}

TEST_F(ExplainOutcome, IsTheRecordOfALaunchThatEndsBeforeItHasAWorkspace) {
    replaceIn(kProperties, "rcp.base.location=", "rcp.base.place=");
    const Json told = explain();
    EXPECT_TRUE(told["outcome"]["record"].get<std::string>().starts_with(
        "ZYPRA0050E: rcp.base.location property is missing from"));
    EXPECT_EQ(told["outcome"]["role"], "undecided");
    EXPECT_EQ(told["elements"], Json::array());
    EXPECT_FALSE(told["facts"].contains("workspace"));
}

TEST_F(ExplainOutcome, IsADaemonBesideARunningPlatform) {
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    const Json told = explain();
    EXPECT_EQ(told["outcome"]["role"], "daemon");
    EXPECT_EQ(valueOf(told, "-useDaemon")["text"], std::to_string(platform->id()));
    EXPECT_EQ(changesOf(told), "") << "a daemon's launch writes its log only";
}

// --- Files --------------------------------------------------------------------------------------------

TEST_F(ExplainChanges, OfTheFirstLaunchMakeTheUsersArea) {
    const Json told = explain();
    EXPECT_EQ(changesOf(told), kFirstChanges);
    EXPECT_EQ(told["facts"]["area"], "new");
    EXPECT_EQ(told["facts"]["firstLaunch"], true);
}

TEST_F(ExplainChanges, OfALaterLaunchAreTheProcessIdAndTheLogAlone) {
    ASSERT_EQ(launch(), 0);
    const Json told = explain();
    EXPECT_EQ(changesOf(told),
              "replaced file home/workspace/ann/.rcp.lock\n"
              "replaced file home/workspace/ann/.rcp.main\n");
    EXPECT_EQ(told["facts"]["area"], "kept");
    EXPECT_EQ(told["facts"]["firstLaunch"], false);
}

TEST_F(ExplainChanges, OfAResetMoveTheAreaAndMakeANewOne) {
    ASSERT_EQ(launch(), 0);
    folder_.write(area(".metadata/.plugins/sample.report/state"), "");
    folder_.write(area(".config/org.eclipse.update/bookmarks.xml"), "");
    const Json told = explain({"-resetconfig"});
    const std::string changes = changesOf(told);
    EXPECT_TRUE(hasLine(changes,
                        "moved directory home/workspace/ann/.config -> "
                        "home/workspace/ann/.configbak"))
        << changes;
    EXPECT_TRUE(
        hasLine(changes, "removed directory home/workspace/ann/.metadata/.plugins/sample.report"))
        << changes;
    EXPECT_TRUE(hasLine(changes, "made file home/workspace/ann/.config/config.ini")) << changes;
    EXPECT_EQ(told["facts"]["area"], "reset");
}

TEST_F(ExplainChanges, OfAnotherInstallationsAreaMoveItToo) {
    ASSERT_EQ(launch(), 0);
    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    const Json told = explain();
    EXPECT_TRUE(hasLine(changesOf(told),
                        "moved directory home/workspace/ann/.config -> "
                        "home/workspace/ann/.configbak"))
        << changesOf(told);
    EXPECT_EQ(told["facts"]["area"], "reused");
}

TEST_F(ExplainChanges, OfAWorkspaceBehindALinkKeepTheLinksName) {
    std::filesystem::rename(folder_.path() / "home", folder_.path() / "disk");
    std::filesystem::create_symlink("disk", folder_.path() / "home");
    EXPECT_EQ(changesOf(explain()), kFirstChanges);
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(explain({"-resetconfig"})["facts"]["area"], "reset");
}

// --- Waiting ------------------------------------------------------------------------------------------

TEST_F(ExplainWaits, AreNoneInAnOrdinaryLaunch) {
    EXPECT_EQ(explain()["facts"]["waits"], Json::array());
}

TEST_F(ExplainWaits, ForTheDebugMarkerToGo) {
    folder_.write("client/rcp/rcplauncher.debug", "");
    const Json waits = explain()["facts"]["waits"];
    ASSERT_EQ(waits.size(), 1U);
    EXPECT_EQ(waits[0], "until " + folder_.narrow("client/rcp/rcplauncher.debug") + " is removed");
    EXPECT_TRUE(folder_.has("client/rcp/rcplauncher.debug"));
}

TEST_F(ExplainWaits, ForTheOldPlatformOfARestart) {
    EXPECT_EQ(explain({"-restart"})["facts"]["waits"],
              Json::array({"up to 21 seconds for the old platform to end"}));
}

TEST_F(ExplainWaits, ForTheLockThatAnotherProcessHolds) {
    ASSERT_EQ(launch(), 0);
    const int lock = ::open(folder_.narrow(area(".rcp.lock")).c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(lock, 0);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    const Json facts = explain()["facts"];
    close(lock);
    EXPECT_EQ(facts["waits"], Json::array({"until the lock of the workspace is free"}));
    EXPECT_EQ(facts["lockHolder"], getpid());
}

// --- Text ---------------------------------------------------------------------------------------------

TEST_F(ExplainAsText, TellsTheSameWithoutColours) {
    const std::string text = portable(explainText({"-config", "sample", "-application", "other"}));
    EXPECT_EQ(text.find('\033'), std::string::npos);
    const std::string loser = "        not sample.report (rcplauncher.properties:" +
                              std::to_string(lineOf("application=")) +
                              " application): the command line wins";
    for (const char* line : {"  role           main", "  workspace      home/workspace/ann",
                             loser.c_str(), "        names the configuration extension",
                             "  made directory home/workspace/ann/.config",
                             "  SAMPLE_SET: (not set) -> set by the launcher",
                             "        overridden: the command line"}) {
        EXPECT_TRUE(hasLine(text, line)) << line << " is not in\n" << text;
    }
}

TEST_F(ExplainAsText, TellsTheRecordAndTheRemedyOfALaunchThatCannotBe) {
    std::filesystem::remove(folder_.path() / "client/rcp/plugin_customization.ini");
    const std::string text = explainText();
    EXPECT_TRUE(hasLine(text, "  end            it would end with status 255")) << text;
    EXPECT_NE(text.find("\n  record         ZYPRA0050E"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  remedy         "), std::string::npos) << text;
}

TEST_F(ExplainAsText, FitsOneScreenUnlessAllIsAskedFor) {
    const std::string text = portable(explainText({"-application", "other"}, {}));
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 60) << text;
    const std::string place = std::to_string(lineOf("rcp.data="));
    for (const std::string& line :
         {"   4  -data home/workspace/ann    (rcplauncher.properties:" + place + " rcp.data)",
          std::string(
              "        ${env.SAMPLE_GREETING,hello} = hello: SAMPLE_GREETING is not set, its "
              "default is used"),
          "        not sample.report (rcplauncher.properties:" +
              std::to_string(lineOf("application=")) + " application): the command line wins",
          std::string("  made directory home/workspace and 8 more")}) {
        EXPECT_TRUE(hasLine(text, line)) << line << " is not in\n" << text;
    }
}

TEST_F(ExplainAsText, IsWrongUseWithoutAnInstallation) {
    Program program({seen(INSPECT_PROGRAM), "explain", "--install", folder_.narrow("nowhere")},
                    environment());
    EXPECT_EQ(program.rest(), "");
    EXPECT_EQ(program.wait(), 64);
}

}  // namespace
}  // namespace rcp::inspect::test
