#include "launcher/command_line/vm_arguments.h"

#include "diagnostics/svc_debug.h"
#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::Pairs;
using test::propertyList;
using testing::HasSubstr;

class JvmSection : public test::CommandLineTest {
  protected:
    JvmSection() {
        inputs_.traits.eConfig = InstallConfiguration::kUser;
        inputs_.workspace = L"/ws";
        inputs_.installDir = L"/opt/x";
    }
    // What addVmargsToCommandLine appends for these options of the launcher.
    Arguments vmargs(const Arguments& options, JvmFile jvm = JvmFile::kProgram) {
        inputs_.arguments = options;
        inputs_.arguments.insert(inputs_.arguments.begin(), L"rcplauncher");
        line_ = CommandLine(start_);
        addVmargsToCommandLine(line_, inputs_, jvm);
        return line_.arguments();
    }
    void setFix(const std::wstring& value) {
        inputs_.properties = propertyList({{L"vmfix.noconsole", value}});
    }
};

TEST_F(JvmSection, SeparatorIsWrittenForTheLauncherLibraryOnly) {
    for (int code = 1; code <= 8; ++code) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(vmargs({}), code == 1 || code == 7 ? Arguments{} : Arguments{L"-vmargs"}) << code;
    }
}

TEST_F(JvmSection, UsersArgumentsAreCopiedWithoutTheVmPairs) {
    EXPECT_EQ(vmargs({L"-x", L"-vm", L"/y", L"-vmargs", L"-Xmx1g", L"-vm", L"/x/java", L"-Dy=1"}),
              (Arguments{L"-vmargs", L"-Xmx1g", L"-Dy=1"}));
    EXPECT_EQ(vmargs({L"-vmargs", L"-vm", L"-vm", L"-vm", L"/j", L"-a"}),
              (Arguments{L"-vmargs", L"-a"}));
    EXPECT_EQ(vmargs({L"-vmargs", L"-a", L"-vmargs", L"-b"}),
              (Arguments{L"-vmargs", L"-a", L"-vmargs", L"-b"}));
}

TEST_F(JvmSection, TrailingVmIsDroppedAlone) {
    EXPECT_EQ(vmargs({L"-vmargs", L"-a", L"-vm"}), (Arguments{L"-vmargs", L"-a"}));
}

TEST_F(JvmSection, RestartDropsTheDebugConsoleHereToo) {
    start_ = Start::kRestart;
    EXPECT_EQ(vmargs({L"-vmargs", L"-console", L"-debug", L"-consoleLog"}),
              (Arguments{L"-vmargs", L"-consoleLog"}));
}

TEST_F(JvmSection, ConsoleFixStandsBetweenTheUsersArgumentsAndTheMap) {
    setFix(L"-Dfix");
    inputs_.vmargMap = test::vmargMap({{L"vmarg.a", L"-Da"}});
    EXPECT_EQ(vmargs({L"-vmargs", L"-u"}), (Arguments{L"-vmargs", L"-u", L"-Dfix", L"-Da"}));
}

TEST_F(JvmSection, ConsoleFixNeedsNoConsoleOrARestart) {
    setFix(L"-Dfix");
    const Arguments with = {L"-vmargs", L"-Dfix"};
    const Arguments without = {L"-vmargs"};
    EXPECT_EQ(vmargs({}), with);
    EXPECT_EQ(vmargs({L"-console"}), without);
    EXPECT_EQ(vmargs({L"-consoleLog"}), with);
    EXPECT_EQ(vmargs({L"-console", L"-restart"}), with);
    EXPECT_EQ(vmargs({L"-restart"}), with);
}

TEST_F(JvmSection, ConsoleFixIsNotForDescriptionFilesAndLibraries) {
    setFix(L"-Dfix");
    EXPECT_EQ(vmargs({}, JvmFile::kEeOrDll), Arguments{L"-vmargs"});
    EXPECT_EQ(vmargs({L"-restart"}, JvmFile::kEeOrDll), Arguments{L"-vmargs"});
    EXPECT_EQ(vmargs({L"-console"}, JvmFile::kEeOrDll), Arguments{L"-vmargs"});
}

TEST_F(JvmSection, FirstPropertyThatBeginsWithItsNameIsTheConsoleFix) {
    inputs_.properties = propertyList(
        {{L"x.vmfix.noconsole", L"0"}, {L"vmfix.noconsole.2", L"1"}, {L"vmfix.noconsole", L"2"}});
    EXPECT_EQ(vmargs({}), (Arguments{L"-vmargs", L"1"}));
}

TEST_F(JvmSection, ConsoleFixGetsTheFirstWorkspaceAndTheSystemsSeparators) {
    setFix(L"-o\\${workspace.location}\\${workspace.location}:${rcp.home}");
    EXPECT_EQ(vmargs({}), (Arguments{L"-vmargs", L"-o//ws/${workspace.location}:${rcp.home}"}));
}

TEST_F(JvmSection, EmptyConsoleFixAddsNothing) {
    setFix(L"");
    EXPECT_EQ(vmargs({}), Arguments{L"-vmargs"});
}

TEST_F(JvmSection, MapIsWrittenInKeyOrderWithoutItsEmptyEntries) {
    inputs_.vmargMap = test::vmargMap(
        {{L"vmarg.b", L"-Db"}, {L"vmarg.a", L"-Da b"}, {L"vmarg.aa", L""}, {L"vmarg.c", L"-Da b"}});
    EXPECT_EQ(vmargs({}), (Arguments{L"-vmargs", L"-Da b", L"-Db", L"-Da b"}));
}

class SystemProperties : public JvmSection {
  protected:
    SystemProperties() { inputs_.properties = propertyList({{L"rcp.install.id", L"id"}}); }
    Arguments definitions() {
        line_ = CommandLine(start_);
        addDashDToCommandLine(line_, inputs_);
        return line_.arguments();
    }
};

TEST_F(SystemProperties, AreWrittenInTheirOrder) {
    inputs_.properties = propertyList({{L"-Db", L"2"},
                                       {L"osgi.splashPath", L"not this one"},
                                       {L"rcp.install.id", L"id"},
                                       {L"-Da", L""},
                                       {L"-d", L"x"},
                                       {L"-Dc=", L"=3"}});
    inputs_.userProperties = propertyList({{L"osgi.splashPath", L"/splash"}, {L"-Dnot", L"y"}});
    EXPECT_EQ(definitions(),
              (Arguments{L"-Drcp.home=/opt/x", L"-Drcp.data=/ws", L"-Dosgi.splashPath=/splash",
                         L"-Dcom.ovr.rcp.install.id=id", L"-Drcp.install.config=user", L"-Db=2",
                         L"-Da=", L"-Dc===3", L"-Drcp.osgi.install.area=/opt/x/rcp/eclipse"}));
}

TEST_F(SystemProperties, SplashIsLeftOutWhenTheUserHasNone) {
    EXPECT_EQ(
        definitions(),
        (Arguments{L"-Drcp.home=/opt/x", L"-Drcp.data=/ws", L"-Dcom.ovr.rcp.install.id=id",
                   L"-Drcp.install.config=user", L"-Drcp.osgi.install.area=/opt/x/rcp/eclipse"}));
}

TEST_F(SystemProperties, InstallAreaHasTheSystemsSeparators) {
    inputs_.installDir = L"C:\\x";
    EXPECT_EQ(definitions().front(), L"-Drcp.home=C:\\x");
    EXPECT_EQ(definitions().back(), L"-Drcp.osgi.install.area=C:/x/rcp/eclipse");
}

TEST_F(SystemProperties, NoTerminatorReachesTheList) {
    for (const Argument& argument : definitions()) {
        EXPECT_EQ(argument.text.find(L'\0'), std::wstring::npos) << argument.text;
    }
}

TEST_F(SystemProperties, EachConfigurationTellsItsName) {
    const std::pair<int, const wchar_t*> names[] = {
        {1, L"service"},   {2, L"lockdown"},  {3, L"user"},  {4, L"serial.multiuser"},
        {6, L"multiuser"}, {7, L"multiuser"}, {8, L"userpb"}};
    for (const auto& [code, name] : names) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(definitions()[3], L"-Drcp.install.config=" + std::wstring(name)) << code;
    }
}

TEST_F(SystemProperties, UnknownConfigurationIsFatal) {
    inputs_.traits.eConfig = InstallConfiguration::kUnknown;
    EXPECT_FATAL(definitions(), HasSubstr("ZYPRA0025E: The platform rcp.install.id must be "
                                          "provided for this configuration!"));
}

TEST_F(SystemProperties, MissingInstallIdIsFatalAndComesFirst) {
    inputs_.properties = {};
    inputs_.traits.eConfig = InstallConfiguration::kUnknown;
    EXPECT_FATAL(definitions(),
                 HasSubstr("ZYPRA0036E: Couldn't find the rcp.install.id property!"));
}

TEST_F(SystemProperties, PropertiesAreTracedAsTheyAreWritten) {
    inputs_.properties = propertyList({{L"rcp.install.id", L"id"}, {L"-Da", L"1"}});
    setDebug(true);
    const test::Records records(folder_);
    definitions();
    EXPECT_EQ(records.text(), "ZYPRA0075I: commandArg  = \"-Da=1\"\n");
}

TEST_F(JvmSection, XOptionsAreJoinedAndTheBootClassPathFollows) {
    addXargsToCommandLine(line_, propertyList({{L"Xbootclasspath.append", L"/a"},
                                               {L"-Xss", L""},
                                               {L"Xbootclasspath.prepend", L""},
                                               {L"-Xmx", L"512m"},
                                               {L"-x", L"1"},
                                               {L"-X", L"y"},
                                               {L"X-Xz", L"1"},
                                               {L"-Xss", L"2m"}}));
    EXPECT_EQ(line_.arguments(), (Arguments{L"-Xss", L"-Xmx512m", L"-Xy", L"-Xss2m",
                                            L"-Xbootclasspath/p:", L"-Xbootclasspath/a:/a"}));
}

TEST_F(JvmSection, NoXPropertyAddsNothing) {
    addXargsToCommandLine(line_, {});
    EXPECT_EQ(line_.arguments(), Arguments{});
}

TEST(Duplicates, SecondSingleIsRemovedAndTheThirdStays) {
    Arguments arguments = {L"-a", L"-o", L"-b", L"-o", L"-c", L"-o", L"-O"};
    removeDuplicateSingles(arguments, L"-o");
    EXPECT_EQ(arguments, (Arguments{L"-a", L"-o", L"-b", L"-c", L"-o", L"-O"}));
}

TEST(Duplicates, SecondPairIsRemovedAndTheThirdStays) {
    Arguments arguments = {L"-o", L"1", L"-o", L"2", L"-o", L"3"};
    removeDuplicatePairs(arguments, L"-o");
    EXPECT_EQ(arguments, (Arguments{L"-o", L"1", L"-o", L"3"}));
    removeDuplicatePairs(arguments, L"-o");
    removeDuplicatePairs(arguments, L"-o");
    EXPECT_EQ(arguments, (Arguments{L"-o", L"1"}));
}

TEST(Duplicates, SecondPairAtTheEndMayLackItsValue) {
    Arguments arguments = {L"-o", L"1", L"-o"};
    removeDuplicatePairs(arguments, L"-o");
    EXPECT_EQ(arguments, (Arguments{L"-o", L"1"}));
}

TEST(Duplicates, EndOfTheOptionsAndTheAppendedJvmAreNoValueOfARemovedPair) {
    Arguments arguments{L"-nl", L"de", L"-nl", L"-vmargs", L"-Dx=y"};
    removeDuplicatePairs(arguments, L"-nl");
    EXPECT_EQ(arguments, (Arguments{L"-nl", L"de", L"-vmargs", L"-Dx=y"}));
    arguments = {L"-nl", L"de", L"-nl", L"-vm", L"/j"};
    removeDuplicatePairs(arguments, L"-nl");
    EXPECT_EQ(arguments, (Arguments{L"-nl", L"de", L"-vm", L"/j"}));
}

TEST(Duplicates, NothingRepeatedIsRemoved) {
    Arguments arguments = {L"-o", L"-p"};
    removeDuplicateSingles(arguments, L"-o");
    removeDuplicatePairs(arguments, L"-p");
    removeDuplicatePairs(arguments, L"-q");
    EXPECT_EQ(arguments, (Arguments{L"-o", L"-p"}));
}

TEST_F(SystemProperties, HundredThousandPropertiesAndAMegabyteOfArgumentsArrive) {
    inputs_.properties = propertyList({{L"rcp.install.id", L"id"}});
    for (int i = 0; i < 50'000; ++i) {
        const std::wstring number = std::to_wstring(100'000 + i);
        inputs_.properties.append({L"-D" + number, number, {}});
        inputs_.properties.append({L"other" + number, number, {}});
    }
    Arguments options = {L"-vmargs"};
    for (int i = 0; i < 50'000; ++i) {
        options.push_back(L"-Dargument.of.the.user." + std::to_wstring(i));
    }
    EXPECT_EQ(vmargs(options), options);
    const Arguments all = definitions();
    ASSERT_EQ(all.size(), 50'005U);
    EXPECT_EQ(all[4], L"-D100000=100000");
    EXPECT_EQ(all[50'003], L"-D149999=149999");
}

TEST(ArgProperty, EndsInOneNulOfItsOwn) {
    const std::wstring result = setArgProperty(L"-Drcp.data", L"/x");
    EXPECT_EQ(result.size(), 14U);
    EXPECT_EQ(result, std::wstring(L"-Drcp.data=/x\0", 14));
    EXPECT_EQ(setArgProperty(L"", L""), std::wstring(L"=\0", 2));
}

}  // namespace
}  // namespace rcp
