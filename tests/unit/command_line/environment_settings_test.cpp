#include "launcher/command_line/environment_settings.h"

#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

using test::Pairs;
using test::propertyList;
using test::ScopedVariable;
using test::variable;
using testing::HasSubstr;

class Environment : public test::LauncherTest {
  protected:
    using Piece = void (*)(EnvironmentChanges& changes, const PropertyList& properties);

    static void make(Piece piece, const PropertyList& properties) {
        EnvironmentChanges changes;
        piece(changes, properties);
        applyEnvironment(changes);
    }
    static std::string libraryPath(const Pairs& properties) {
        setenv("DYLD_LIBRARY_PATH", "inherited", 1);
        make(&addLibpathToCommandLine, propertyList(properties));
        return variable("DYLD_LIBRARY_PATH").value_or("(not set)");
    }

    ScopedVariable a_{"RCP_TEST_A", "inherited"};
    ScopedVariable b_{"RCP_TEST_B"};
    ScopedVariable libraryPath_{"DYLD_LIBRARY_PATH"};
    ScopedVariable zip_{"JAVA_HIGH_ZIPFDS", "42"};
    ScopedVariable preload_{"LD_PRELOAD"};
};

TEST_F(Environment, VariablesAreSetAndRemoved) {
    make(&addEnvSetToCommandLine, propertyList({{L"env.set.RCP_TEST_B", L"x=\u00e4 y"},
                                                {L"env.unset.RCP_TEST_A", L"ignored"}}));
    EXPECT_EQ(variable("RCP_TEST_A"), std::nullopt);
    EXPECT_EQ(variable("RCP_TEST_B"), "x=\xc3\xa4 y");
}

TEST_F(Environment, InheritedValueIsOverwritten) {
    make(&addEnvSetToCommandLine, propertyList({{L"env.set.RCP_TEST_A", L""}}));
    EXPECT_EQ(variable("RCP_TEST_A"), "");
}

TEST_F(Environment, VariableThatIsRemovedAndSetIsSet) {
    make(&addEnvSetToCommandLine,
         propertyList({{L"env.set.RCP_TEST_A", L"bar"}, {L"env.unset.RCP_TEST_A", L""}}));
    EXPECT_EQ(variable("RCP_TEST_A"), "bar");
}

TEST_F(Environment, LastOfTwoSettingsStays) {
    make(&addEnvSetToCommandLine,
         propertyList({{L"env.set.RCP_TEST_A", L"1"}, {L"env.set.RCP_TEST_A", L"2"}}));
    EXPECT_EQ(variable("RCP_TEST_A"), "2");
}

TEST_F(Environment, PlaceholdersAreNotReplaced) {
    make(&addEnvSetToCommandLine, propertyList({{L"env.set.RCP_TEST_A", L"${rcp.home}"}}));
    EXPECT_EQ(variable("RCP_TEST_A"), "${rcp.home}");
}

TEST_F(Environment, KeysWithoutANameAreSkipped) {
    const ScopedVariable cut("CP_TEST_A");
    make(&addEnvSetToCommandLine, propertyList({{L"env.set", L"1"},
                                                {L"env.set.", L"1"},
                                                {L"env.setRCP_TEST_A", L"1"},
                                                {L"env.unset", L"1"},
                                                {L"env.unset.", L"1"},
                                                {L"env.unsetXRCP_TEST_A", L"1"},
                                                {L"xenv.set.RCP_TEST_A", L"1"}}));
    EXPECT_EQ(variable("RCP_TEST_A"), "inherited");
    EXPECT_EQ(variable("CP_TEST_A"), std::nullopt);
}

TEST_F(Environment, LibraryPathIsLeftAloneWithoutItsProperties) {
    EXPECT_EQ(libraryPath({{L"library.path", L"/x"}}), "inherited");
}

TEST_F(Environment, LibraryPathIsJoinedFromItsPartsAndKeepsNothingInherited) {
    EXPECT_EQ(libraryPath({{L"library.path.append", L"/c"},
                           {L"com.ovr.rcp.core.internal.librarypath", L"/b"},
                           {L"library.path.prepend", L"/a1:/a2"}}),
              "/a1:/a2:/b:/c");
}

TEST_F(Environment, EachPartOfTheLibraryPathMayStandAlone) {
    EXPECT_EQ(libraryPath({{L"library.path.append", L"/c"}}), "/c");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L"/a"}}), "/a");
    EXPECT_EQ(libraryPath({{L"com.ovr.rcp.core.internal.librarypath", L"/b"}}), "/b");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L"/a"}, {L"library.path.append", L"/c"}}),
              "/a:/c");
    EXPECT_EQ(libraryPath({{L"com.ovr.rcp.core.internal.librarypath", L"/b"},
                           {L"library.path.append", L"/c"}}),
              "/b:/c");
}

TEST_F(Environment, EmptyPartIsPresent) {
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L""}, {L"library.path.append", L"/c"}}),
              ":/c");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L""}}), "");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L"/a"}, {L"library.path.append", L""}}),
              "/a:");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L""},
                           {L"com.ovr.rcp.core.internal.librarypath", L"/b"},
                           {L"library.path.append", L"/c"}}),
              ":/b:/c");
}

TEST_F(Environment, EmptyInternalPartIsAbsent) {
    EXPECT_EQ(libraryPath({{L"com.ovr.rcp.core.internal.librarypath", L""}}), "inherited");
    EXPECT_EQ(libraryPath({{L"library.path.prepend", L"/a"},
                           {L"com.ovr.rcp.core.internal.librarypath", L""},
                           {L"library.path.append", L"/c"}}),
              "/a:/c");
}

TEST_F(Environment, FirstEntryOfAPartCounts) {
    EXPECT_EQ(libraryPath({{L"library.path.append", L"/1"}, {L"library.path.append", L"/2"}}),
              "/1");
}

TEST_F(Environment, PreloadNeedsTheInstallId) {
    EXPECT_FATAL(make(&addLdPreloadToCommandLine, propertyList({{L"library.preload", L"/l.so"}})),
                 HasSubstr("ZYPRA0034E: Couldn't find the rcp.install.id property!"));
}

TEST_F(Environment, PreloadIsSetFromItsProperty) {
    make(&addLdPreloadToCommandLine,
         propertyList({{L"rcp.install.id", L"id"}, {L"library.preload", L"/x/l.so"}}));
    EXPECT_EQ(variable("LD_PRELOAD"), "/x/l.so");
}

TEST_F(Environment, PreloadStaysWithoutItsProperty) {
    setenv("LD_PRELOAD", "", 1);
    make(&addLdPreloadToCommandLine, propertyList({}));
    EXPECT_EQ(variable("LD_PRELOAD"), "");
}

TEST_F(Environment, PreloadLinkOfABlankPathIsNamedByTheInstallId) {
    if (!test::hasPrivateTmp()) {
        GTEST_SKIP() << "the link would land in the real /tmp";
    }
    const ScopedVariable user("USER", "ann");
    folder_.write("a b/l.so", "");
    make(&addLdPreloadToCommandLine,
         propertyList(
             {{L"rcp.install.id", L"id1"}, {L"library.preload", folder_.wide("a b/l.so")}}));
    EXPECT_EQ(variable("LD_PRELOAD"), "/tmp/ovr.rcp.ann.id1.l.so");
    EXPECT_EQ(std::filesystem::read_symlink("/tmp/ovr.rcp.ann.id1.l.so"),
              folder_.narrow("a b/l.so"));
    std::filesystem::remove("/tmp/ovr.rcp.ann.id1.l.so");
}

TEST_F(Environment, SettingsComeBehindTheLibraryPathAndInFrontOfThePreloadedLibrary) {
    const EnvironmentChanges changes =
        environmentOf(propertyList({{L"rcp.install.id", L"id1"},
                                    {L"library.preload", L"/l.so"},
                                    {L"env.set.DYLD_LIBRARY_PATH", L"/set"},
                                    {L"env.unset.RCP_TEST_A", L""},
                                    {L"library.path.append", L"/appended"}}));
    std::vector<std::wstring> steps;
    for (const EnvironmentChange& change : changes) {
        steps.push_back((change.kind == EnvironmentChange::kUnset     ? L"-"
                         : change.kind == EnvironmentChange::kPreload ? L"preload "
                                                                      : L"") +
                        change.name + L"=" + change.value);
    }
    EXPECT_EQ(steps, (std::vector<std::wstring>{L"DYLD_LIBRARY_PATH=/appended", L"-RCP_TEST_A=",
                                                L"DYLD_LIBRARY_PATH=/set", L"preload id1=/l.so",
                                                L"JAVA_HIGH_ZIPFDS=500"}));
}

TEST_F(Environment, ZipDescriptorsAreFiveHundredUnlessThePropertySaysOtherwise) {
    make(&addEnvJavaHighZipfds, propertyList({}));
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "500");
    make(&addEnvJavaHighZipfds, propertyList({{L"env.JAVA_HIGH_ZIPFDS", L"7"}}));
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "7");
    make(&addEnvJavaHighZipfds, propertyList({{L"env.JAVA_HIGH_ZIPFDS", L""}}));
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "");
    unsetenv("JAVA_HIGH_ZIPFDS");
    make(&addEnvJavaHighZipfds, propertyList({{L"JAVA_HIGH_ZIPFDS", L"7"}}));
    EXPECT_EQ(variable("JAVA_HIGH_ZIPFDS"), "500");
}

}  // namespace
}  // namespace rcp
