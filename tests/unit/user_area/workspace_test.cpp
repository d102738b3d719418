#include "launcher/user_area/workspace.h"

#include "launcher/inputs/install_configuration.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

using test::Pairs;
using test::propertyList;
using test::ScopedVariable;
using testing::HasSubstr;

class Workspace : public test::LauncherTest {
  protected:
    Workspace() { inputs_.traits.eConfig = InstallConfiguration::kUser; }

    std::wstring of(const Arguments& options, const Pairs& properties = {},
                    const std::wstring& home = L"/Applications/X.app/rcp") {
        inputs_.arguments = {L"rcplauncher"};
        inputs_.arguments.insert(inputs_.arguments.end(), options.begin(), options.end());
        inputs_.properties = propertyList(properties);
        inputs_.installDir = home;
        inputs_.workspace = getWorkspaceLocation(inputs_).text;
        return inputs_.workspace;
    }
    std::wstring configuration(const Arguments& options, const Pairs& properties = {},
                               const std::wstring& home = L"/home") {
        of(options, properties, home);
        return getConfigurationLocation(inputs_);
    }
    std::wstring fromArgument(const std::wstring& value, const Pairs& properties = {}) {
        return of({L"-data", value}, properties);
    }
    std::wstring fromProperty(const std::wstring& value, Pairs properties = {}) {
        properties.emplace_back(L"rcp.data", value);
        return of({}, properties);
    }

    ScopedVariable home_{"HOME", "/Users/ann"};
    ScopedVariable user_{"USER", "ann"};
    LaunchInputs inputs_;
};

TEST_F(Workspace, KnowsWhatHasNamedIt) {
    const test::LoserNotes losers;
    of({L"-data", {L"/a", Origin{nullptr, 2}}}, {{L"rcp.data", L"/b"}});
    EXPECT_TRUE(getWorkspaceLocation(inputs_).origin == (Origin{nullptr, 2}));
    EXPECT_EQ(losers.notes.front(), L"/b: the command line wins (it, argument 2)");
    of({}, {{L"rcp.install.id", L"id"}});
    EXPECT_EQ(getWorkspaceLocation(inputs_).origin.line, Origin::kHome);
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_TRUE(getWorkspaceLocation(inputs_).origin.isComputed());
}

TEST_F(Workspace, OneTrailingSeparatorOfTheArgumentIsDropped) {
    EXPECT_EQ(fromArgument(L"/tmp/ws"), L"/tmp/ws");
    EXPECT_EQ(fromArgument(L"/tmp/ws/"), L"/tmp/ws");
    EXPECT_EQ(fromArgument(L"/tmp/ws//"), L"/tmp/ws/");
    EXPECT_EQ(fromArgument(L"/tmp/ws\\"), L"/tmp/ws");
    EXPECT_EQ(fromArgument(L"/tmp/ws/\\"), L"/tmp/ws/");
}

TEST_F(Workspace, FirstRcpHomeOfTheArgumentIsReplaced) {
    EXPECT_EQ(fromArgument(L"${rcp.home}/ws"), L"/Applications/X.app/rcp/ws");
    EXPECT_EQ(fromArgument(L"${rcp.home}/${rcp.home}"), L"/Applications/X.app/rcp/${rcp.home}");
    EXPECT_EQ(fromArgument(L"${rcp.home}/"), L"/Applications/X.app/rcp");
}

TEST_F(Workspace, UserPlaceholdersOfTheArgumentAreReplacedWithoutACheck) {
    EXPECT_EQ(fromArgument(L"${env.HOME}/${prop.a}", {{L"a", L"b"}}), L"/Users/ann/b");
    EXPECT_EQ(fromArgument(L"/x/${prop.nope}"), L"/x/${prop.nope}");
}

TEST_F(Workspace, ArgumentThatStillBeginsWithAPlaceholderIsFatal) {
    EXPECT_FATAL(fromArgument(L"${prop.nope}/ws"), HasSubstr("ZYPRA0301E"));
}

TEST_F(Workspace, RelativeArgumentIsResolvedAgainstTheWorkingDirectory) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    const std::wstring current = toWide(std::filesystem::current_path().string());
    EXPECT_EQ(fromArgument(L"ws"), current + L"/ws");
    EXPECT_EQ(fromArgument(L"a/../ws/"), current + L"/ws");
    std::filesystem::current_path(before);
}

TEST_F(Workspace, ArgumentWinsOverTheProperty) {
    EXPECT_EQ(of({L"-data", L"/a", L"-data", L"/b"}, {{L"rcp.data", L"/c"}}), L"/a");
}

TEST_F(Workspace, DataAsTheLastArgumentIsIgnored) {
    EXPECT_EQ(of({L"-x", L"-data"}, {{L"rcp.data", L"/c"}}), L"/c");
    EXPECT_EQ(of({L"-data"}, {{L"rcp.install.id", L"id"}}), L"/Users/ann/OVR/RCP/id/ann");
}

TEST_F(Workspace, PropertyIsTakenLikeTheArgument) {
    EXPECT_EQ(fromProperty(L"/tmp/ws"), L"/tmp/ws");
    EXPECT_EQ(fromProperty(L"/tmp/ws//"), L"/tmp/ws/");
    EXPECT_EQ(fromProperty(L"/tmp/ws\\"), L"/tmp/ws");
    EXPECT_EQ(fromProperty(L"${rcp.home}/ws"), L"/Applications/X.app/rcp/ws");
    EXPECT_EQ(fromProperty(L"${env.HOME}/${prop.a}/", {{L"a", L"b"}}), L"/Users/ann/b");
}

TEST_F(Workspace, RelativePropertyStaysRelative) {
    EXPECT_EQ(fromProperty(L"ws"), L"ws");
}

TEST_F(Workspace, FirstPropertyWins) {
    EXPECT_EQ(of({}, {{L"rcp.data", L"/a"}, {L"rcp.data", L"/b"}}), L"/a");
}

TEST_F(Workspace, SeparatorThatAPlaceholderBringsIsDroppedToo) {
    EXPECT_EQ(fromProperty(L"${prop.a}", {{L"a", L"/x/"}}), L"/x");
    EXPECT_EQ(fromArgument(L"${prop.a}", {{L"a", L"/x/"}}), L"/x/")
        << "the argument loses its separator before it is substituted";
}

TEST_F(Workspace, PropertyReplacesOnlyTheFirstRcpHome) {
    EXPECT_EQ(fromProperty(L"${rcp.home}/${rcp.home}"), L"/Applications/X.app/rcp/${rcp.home}");
    EXPECT_EQ(fromProperty(L"${prop.a}/${prop.b}", {{L"a", L"${rcp.home}"}, {L"b", L"c"}}),
              L"/Applications/X.app/rcp/c");
}

TEST_F(Workspace, UserPlaceholdersAreReplacedOnceMoreBehindRcpHome) {
    EXPECT_EQ(of({}, {{L"rcp.data", L"${rcp.home}/ws"}, {L"k", L"y"}}, L"/h/${prop.k}"),
              L"/h/y/ws");
}

TEST_F(Workspace, UnresolvedPropertyIsFatalAndNamed) {
    EXPECT_FATAL(fromProperty(L"${prop.a}/${prop.nope}", {{L"a", L"/x"}}),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid (/x/${prop.nope})"));
    EXPECT_FATAL(fromProperty(L"${rcp.home}/${env.RCP_TEST_NOPE}"),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid "
                           "(${rcp.home}/${env.RCP_TEST_NOPE})"));
    EXPECT_FATAL(fromProperty(L"${workspace.location}"),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid (${workspace.location})"));
    EXPECT_FATAL(fromProperty(L"/x/${prop.${rcp.home}}"), HasSubstr("ZYPRA0099E"))
        << "only a placeholder of its own is left for later";
    EXPECT_FATAL(fromProperty(L"${rcp.data}"),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid (${rcp.data})"));
}

TEST_F(Workspace, EmptyPropertyIsFatal) {
    EXPECT_FATAL(fromProperty(L""), HasSubstr("ZYPRA0099E: rcp.data property is invalid ()"));
    EXPECT_FATAL(fromProperty(L"/"), HasSubstr("ZYPRA0099E: rcp.data property is invalid (/)"));
    EXPECT_FATAL(fromProperty(L"${prop.e}", {{L"e", L""}}),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid ()"));
}

// Only the decision: nothing is made or looked for below "/".
TEST_F(Workspace, RootDirectoryIsFatalHoweverItIsNamed) {
    for (const wchar_t* root : {L"/", L"\\", L"//", L"/.", L"/..", L"/./", L"/../..",
                                L"/missing/..", L"/missing\\..\\"}) {
        const std::string record =
            "ZYPRA0099E: rcp.data property is invalid (" + toNarrow(root) + ")";
        EXPECT_FATAL(fromArgument(root), HasSubstr(record));
        EXPECT_FATAL(fromProperty(root), HasSubstr(record));
    }
    EXPECT_FATAL(fromArgument(L"${prop.e}/", {{L"e", L"/."}}),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid (${prop.e}/)"));
    EXPECT_FATAL(of({}, {{L"rcp.data", L"${rcp.home}/.."}}, L"/home"),
                 HasSubstr("ZYPRA0099E: rcp.data property is invalid (${rcp.home}/..)"));
    std::filesystem::create_directory_symlink("/", folder_.path() / "link");
    EXPECT_FATAL(fromArgument(folder_.wide("link")), HasSubstr("ZYPRA0099E"));
    EXPECT_EQ(fromArgument(L"/.ws"), L"/.ws");
    EXPECT_EQ(fromProperty(L"/a/../.ws"), L"/a/../.ws");
}

TEST_F(Workspace, DefaultIsBelowTheHomeDirectory) {
    const Pairs properties = {{L"rcp.install.id", L"abc123"}};
    EXPECT_EQ(of({}, properties), L"/Users/ann/OVR/RCP/abc123/ann");
    EXPECT_EQ(configuration({}, properties), L"/Users/ann/OVR/RCP/abc123/ann/.config");
}

TEST_F(Workspace, DefaultNeedsTheInstallIdAndTheUser) {
    EXPECT_FATAL(of({}), HasSubstr("ZYPRA0035E: Couldn't find the rcp.install.id property!"));
    const ScopedVariable nobody("USER");
    EXPECT_FATAL(of({}), HasSubstr("ZYPRA0035E")) << "the id is looked for first";
    EXPECT_FATAL(of({}, {{L"rcp.install.id", L"id"}}),
                 HasSubstr("ZYPRA0037E: Couldn't find the user name!"));
}

TEST_F(Workspace, DefaultNeverLandsBelowTheRootForWantOfAHome) {
    const ScopedVariable homeless("HOME");
    EXPECT_FATAL(of({}, {{L"rcp.install.id", L"id"}}), HasSubstr("HOME"));
}

TEST_F(Workspace, ServiceHasItsAreaInTheInstallation) {
    const ScopedVariable nobody("USER");
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_EQ(of({L"-data", L"/a"}, {{L"rcp.data", L"/b"}}, L"/h"), L"/h/eclipse/.workspace");
    EXPECT_EQ(configuration({L"-data", L"/a"}, {}, L"/h"), L"/h/eclipse/.config");
}

TEST_F(Workspace, MultiuserServiceInitialisationHasAFolderOfItsOwn) {
    const ScopedVariable nobody("USER");
    inputs_.traits.eConfig = InstallConfiguration::kMultiuserServiceInit;
    EXPECT_EQ(of({L"-data", L"/a"}, {{L"rcp.data", L"${nope}"}}, L"/h"), L"/h/eclipse/.muservice");
    EXPECT_EQ(configuration({}, {}, L"/h"), L"/h/eclipse/.muservice/.config");
}

TEST_F(Workspace, EveryOtherConfigurationFollowsTheGeneralRules) {
    for (const int code : {2, 3, 4, 5, 6, 8}) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(of({L"-data", L"/a"}), L"/a") << code;
        EXPECT_EQ(of({}, {{L"rcp.install.id", L"id"}}), L"/Users/ann/OVR/RCP/id/ann") << code;
        EXPECT_EQ(configuration({L"-data", L"/a"}), L"/a/.config") << code;
    }
}

TEST_F(Workspace, ConfigurationIsInsideWhateverTheConfigurationOptionSays) {
    EXPECT_EQ(configuration({L"-configuration", L"/c", L"-data", L"/a"}), L"/a/.config");
    EXPECT_EQ(configuration({}, {{L"rcp.data", L"b"}}), L"b/.config");
}

TEST(LogLocation, LiesInTheWorkspace) {
    EXPECT_EQ(getLogLocation(L"/Users/ann\\ws"), L"/Users/ann/ws/logs");
}

TEST_F(Workspace, NothingIsMade) {
    EXPECT_EQ(fromArgument(folder_.wide("ws")), folder_.wide("ws"));
    EXPECT_FALSE(folder_.has("ws"));
}

}  // namespace
}  // namespace rcp
