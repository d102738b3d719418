#include "launcher/command_line/vm_choice.h"

#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::Pairs;
using test::pairsOf;
using test::propertyList;
using testing::HasSubstr;

TEST(EndsIn, ComparesTheEnd) {
    EXPECT_TRUE(endsIn(L"/jre/java.ee", L".ee"));
    EXPECT_TRUE(endsIn(L".ee", L".ee"));
    EXPECT_FALSE(endsIn(L"/jre/java.eex", L".ee"));
    EXPECT_FALSE(endsIn(L"/jre/java.EE", L".ee"));
    EXPECT_TRUE(endsIn(L"a.ee.ee", L".ee"));
    EXPECT_TRUE(endsIn(L"jvm.dll", L".dll"));
}

TEST(EndsIn, HoldsForATextOneCharacterShorterThanTheSuffix) {
    EXPECT_TRUE(endsIn(L"xy", L".ee"));
    EXPECT_TRUE(endsIn(L"xyz", L".dll"));
    EXPECT_FALSE(endsIn(L"x", L".ee"));
    EXPECT_FALSE(endsIn(L"", L".ee"));
    EXPECT_FALSE(endsIn(L"xy", L".dll"));
    EXPECT_FALSE(endsIn(L"x", L".dll"));
}

class VmPiece : public test::CommandLineTest {
  protected:
    VmPiece() { inputs_.traits.eConfig = InstallConfiguration::kUser; }
    JvmFile add(const Arguments& options, const Pairs& properties = {}) {
        inputs_.arguments = options;
        inputs_.arguments.insert(inputs_.arguments.begin(), L"rcplauncher");
        inputs_.properties = propertyList(properties);
        inputs_.installDir = L"/opt/i";
        line_.setProgram(L"first", whys::kPlatformProgram);
        return addVmToCommandLine(line_, inputs_);
    }
};

TEST_F(VmPiece, TellsThatTheOptionKeepsThePropertyOut) {
    const auto file = std::make_shared<const std::wstring>(L"p");
    const test::LoserNotes losers;
    add({L"-vm", {L"/a", Origin{nullptr, 2}}}, {{L"vm", L"/b"}});
    add({L"-vm", {L"/c", Origin{file, 3}}}, {{L"vm", L"/b"}});
    add({}, {{L"vm", L"/b"}});
    EXPECT_EQ(losers.notes,
              (std::vector<std::wstring>{L"/b: the command line wins (it, argument 2)",
                                         L"/b: the JVM of the installation wins (it, p, line 3)"}));
}

TEST_F(VmPiece, NamesTheJvmOfTheCommandLine) {
    EXPECT_EQ(add({L"-vm", L"/j/java", L"-vm", L"/k/java"}, {{L"vm", L"/p/java"}}),
              JvmFile::kProgram);
    EXPECT_EQ(line_.arguments(), (Arguments{L"first", L"-vm", L"/j/java"}));
}

TEST_F(VmPiece, TellsWhoseChoiceItIs) {
    const auto why = [this](const Origin& origin) {
        add({L"-vm", Argument(L"/j/java", origin)});
        return line_.arguments().back().why;
    };
    EXPECT_EQ(why({nullptr, 2}), &whys::kUsersJvm);
    EXPECT_EQ(why({}), &whys::kJvm) << "the installation names none";
    const auto file = std::make_shared<const std::wstring>(L"/p/rcplauncher.properties");
    EXPECT_EQ(why({file, 7}), nullptr) << "the property says it";
}

TEST_F(VmPiece, NamesTheJvmOfTheProperty) {
    EXPECT_EQ(add({}, {{L"vm", L"/p/java"}, {L"vm", L"/q/java"}}), JvmFile::kProgram);
    EXPECT_EQ(line_.arguments(), (Arguments{L"first", L"-vm", L"/p/java"}));
}

TEST_F(VmPiece, FirstRcpHomeOfThePropertyIsReplacedInWhatIsHandedOver) {
    add({}, {{L"vm", L"${rcp.home}/jre/bin/java"}});
    EXPECT_EQ(line_.arguments(), (Arguments{L"first", L"-vm", L"/opt/i/jre/bin/java"}));
}

TEST_F(VmPiece, IsMissingForTheExternalJvm) {
    EXPECT_EQ(add({L"-console", L"-consoleLog"}), JvmFile::kProgram);
    EXPECT_EQ(line_.arguments(), (Arguments{L"first"}));
}

TEST_F(VmPiece, IsTheProgramInTheDirectJavaShape) {
    for (const int code : {1, 7}) {
        inputs_.traits.eConfig = static_cast<InstallConfiguration>(code);
        EXPECT_EQ(add({L"-vm", L"/j/java"}), JvmFile::kProgram);
        EXPECT_EQ(line_.arguments(), (Arguments{L"/j/java"}));
    }
}

TEST_F(VmPiece, IsNeededInTheDirectJavaShape) {
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_FATAL(add({}), HasSubstr("ZYPRA0002E: vm must be specified with -vm argument!"));
    EXPECT_FATAL(add({}, {{L"vm", L""}}), HasSubstr("ZYPRA0002E"));
}

TEST_F(VmPiece, OptionWithoutValueIsFatalEvenWithTheProperty) {
    EXPECT_FATAL(add({L"-vm"}, {{L"vm", L"/p/java"}}),
                 HasSubstr("ZYPRA0002E: vm must be specified with -vm argument!"));
    EXPECT_FATAL(add({L"-vm", L""}, {{L"vm", L"/p/java"}}), HasSubstr("ZYPRA0002E"));
}

TEST_F(VmPiece, TellsDescriptionFilesAndLibraries) {
    EXPECT_EQ(add({L"-vm", L"/j/default.ee"}), JvmFile::kEeOrDll);
    EXPECT_EQ(add({}, {{L"vm", L"C:/j/jvm.dll"}}), JvmFile::kEeOrDll);
    EXPECT_EQ(add({L"-vm", L"xy"}), JvmFile::kEeOrDll);
    EXPECT_EQ(add({L"-vm", L"/j/libjvm.so"}), JvmFile::kProgram);
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_EQ(add({L"-vm", L"/j/default.ee"}), JvmFile::kEeOrDll);
}

class JvmProperties : public test::LauncherTest {
  protected:
    JvmPropertyLocation locate(const Arguments& options, const Pairs& properties = {}) {
        Arguments arguments = options;
        arguments.insert(arguments.begin(), L"rcplauncher");
        properties_ = propertyList(properties);
        JvmPropertyLocation location =
            getJvmPropertyLocation(properties_, arguments, folder_.wide("x"));
        EXPECT_EQ(*findProperty(Key(L"jvm.root"), properties_) + L"jvm.properties", location.file);
        return location;
    }
    // The folder of the file, below the test's folder; "*" in front when it is the default.
    std::wstring root(const Arguments& options, const Pairs& properties = {}) {
        const JvmPropertyLocation location = locate(options, properties);
        const std::size_t front = folder_.wide().size() + 1;
        const std::wstring folder = location.file.substr(front);
        return (location.isDefault ? L"*" : L"") +
               folder.substr(0, folder.size() - std::wstring(L"jvm.properties").size());
    }
    PropertyList properties_;
};

TEST_F(JvmProperties, DefaultRootIsTheDeployFolder) {
    EXPECT_EQ(root({}), L"*x/rcp/deploy/");
    EXPECT_EQ(root({}, {{L"vm", L""}}), L"*x/rcp/deploy/");
    EXPECT_EQ(locate({}).jvm, L"");
}

TEST_F(JvmProperties, DefaultRootHasNoBackslashes) {
    PropertyList properties;
    EXPECT_EQ(getJvmPropertyLocation(properties, {L"rcplauncher"}, L"C:\\x").file,
              L"C:/x/rcp/deploy/jvm.properties");
    EXPECT_EQ(*findProperty(Key(L"jvm.root"), properties), L"C:/x/rcp/deploy/");
}

TEST_F(JvmProperties, PluginThatHoldsTheJvmIsTheRoot) {
    folder_.write("P/eclipse/plugins/N/jvm.properties", "");
    folder_.write("P/eclipse/plugins/N/jre/jvm.properties", "");
    const std::wstring java = folder_.wide("P/eclipse/plugins/N/jre/bin/java");
    EXPECT_EQ(root({L"-vm", java}), L"P/eclipse/plugins/N/");
}

TEST_F(JvmProperties, FirstPluginFolderOfThePathCounts) {
    folder_.write("P/eclipse/plugins/N/eclipse/plugins/M/jvm.properties", "");
    folder_.write("P/eclipse/plugins/N/jvm.properties", "");
    EXPECT_EQ(root({L"-vm", folder_.wide("P/eclipse/plugins/N/eclipse/plugins/M/java")}),
              L"P/eclipse/plugins/N/");
}

TEST_F(JvmProperties, HomeOfTheJvmIsTheRoot) {
    folder_.write("H/jvm.properties", "");
    EXPECT_EQ(root({L"-vm", folder_.wide("H/bin/java")}), L"H/");
    EXPECT_EQ(root({L"-vm", folder_.wide("H/lib/server/libjvm.so")}), L"*x/rcp/deploy/");
}

TEST_F(JvmProperties, HomeInsideAPluginWithoutTheFileIsTheRoot) {
    folder_.write("P/eclipse/plugins/N/jre/jvm.properties", "");
    EXPECT_EQ(root({L"-vm", folder_.wide("P/eclipse/plugins/N/jre/bin/java")}),
              L"P/eclipse/plugins/N/jre/");
}

TEST_F(JvmProperties, OptionWinsOverTheProperty) {
    folder_.write("H/jvm.properties", "");
    folder_.write("G/jvm.properties", "");
    const Pairs property = {{L"vm", folder_.wide("G/bin/java")}};
    EXPECT_EQ(root({L"-vm", folder_.wide("H/bin/java")}, property), L"H/");
    EXPECT_EQ(root({}, property), L"G/");
}

TEST_F(JvmProperties, FirstRcpHomeOfTheJvmIsReplacedAndSlashesAreTurned) {
    folder_.write("x/H/jvm.properties", "");
    EXPECT_EQ(root({L"-vm", L"${rcp.home}\\H\\bin\\java"}), L"x/H/");
    EXPECT_EQ(locate({}, {{L"vm", L"${rcp.home}/${rcp.home}"}}).jvm,
              folder_.wide("x") + L"/${rcp.home}");
}

TEST_F(JvmProperties, OptionNeedsAValue) {
    const char* message = "ZYPRA0079E: -vm on command line must be followed by a valid jvm path.";
    EXPECT_FATAL(locate({L"-vm"}, {{L"vm", L"/p"}}), HasSubstr(message));
    EXPECT_FATAL(locate({L"-vm", L""}, {{L"vm", L"/p"}}), HasSubstr(message));
}

TEST_F(JvmProperties, ChoiceIsRecordedWithTracingOff) {
    const test::Records records(folder_);
    locate({});
    EXPECT_TRUE(records.has("ZYPRA0119I: VM specified is \"external JVM\"\n"));
    locate({L"-vm", L"${rcp.home}\\java"});
    EXPECT_TRUE(records.has("ZYPRA0021I: VM specified is \"" + folder_.narrow("x") + "/java\"\n"));
    EXPECT_FALSE(debug);
}

TEST_F(JvmProperties, RootsFailWithoutEnoughFolders) {
    for (const wchar_t* jvm : {L"", L"/eclipse/plugins", L"/x/eclipse/plugins/java", L"/x/java"}) {
        EXPECT_FALSE(getStandardJvmPropertyRoot(jvm)) << jvm;
    }
    for (const wchar_t* jvm : {L"", L"java", L"/java", L"bin/java", L"/"}) {
        EXPECT_FALSE(getInstallJvmPropertyRoot(jvm)) << jvm;
    }
}

TEST_F(JvmProperties, StandardRootTellsWhetherThePluginHasTheFile) {
    const std::wstring java = folder_.wide("eclipse/plugins/N/java");
    EXPECT_FALSE(getStandardJvmPropertyRoot(java));
    folder_.write("eclipse/plugins/N/jvm.properties", "");
    const auto root = getStandardJvmPropertyRoot(java);
    ASSERT_TRUE(root);
    EXPECT_EQ(root->path, folder_.wide("eclipse/plugins/N/"));
    EXPECT_TRUE(root->properties);
    EXPECT_TRUE(jvmPropExists(folder_.wide("eclipse/plugins/N\\")));
    EXPECT_FALSE(jvmPropExists(folder_.wide("eclipse/")));
}

class JvmLoading : public test::LauncherTest {
  protected:
    void load(const std::wstring& jvm, bool isDefault) {
        loadJvmProperties(inputs_, {folder_.wide("jvm.properties"), isDefault, jvm, {}});
    }
    JvmPropertyLocation locationIn(const std::wstring& folder) {
        return getJvmPropertyLocation(inputs_.properties,
                                      {L"rcplauncher", L"-vm", folder + L"/lib/java"}, L"/x");
    }
    std::wstring property(const std::wstring& key) const {
        const std::wstring* value = findProperty(key, inputs_.properties);
        return value == nullptr ? L"(none)" : *value;
    }
    LaunchInputs inputs_;
};

// The file that was found is the one that is read, whatever has its name by then.
TEST_F(JvmLoading, FileIsOpenedOnce) {
    folder_.write("jre/jvm.properties", "a=found\n");
    const JvmPropertyLocation location = locationIn(folder_.wide("jre"));
    std::filesystem::rename(folder_.path() / "jre/jvm.properties", folder_.path() / "jre/other");
    loadJvmProperties(inputs_, location);
    EXPECT_EQ(property(L"a"), L"found");
}

TEST_F(JvmLoading, FoundOneThatIsNoFileEndsTheLaunch) {
    std::filesystem::create_directories(folder_.path() / "jre/jvm.properties");
    const JvmPropertyLocation location = locationIn(folder_.wide("jre"));
    EXPECT_FATAL(loadJvmProperties(inputs_, location), "ZYPRA0096E: Unable to load " +
                                                           folder_.narrow("jre/jvm.properties") +
                                                           " file! : Is a directory\n");
}

TEST_F(JvmLoading, EntriesGoBehindTheLaunchersOwn) {
    folder_.write("jvm.properties", "a=file\nvmarg.a=-Xfile\nvmarg.b=-Xb\nb=2\n");
    inputs_.properties = propertyList({{L"a", L"own"}});
    inputs_.vmargMap = test::vmargMap({{L"vmarg.a", L"-Xown"}});
    const test::Records records(folder_);
    load(L"/j", false);
    EXPECT_EQ(pairsOf(inputs_.properties), (Pairs{{L"a", L"own"}, {L"a", L"file"}, {L"b", L"2"}}));
    EXPECT_EQ(pairsOf(inputs_.vmargMap), (Pairs{{L"vmarg.a", L"-Xown"}, {L"vmarg.b", L"-Xb"}}));
    EXPECT_TRUE(records.has("ZYPRA0077I: loading jvm.properties at \"" +
                            folder_.narrow("jvm.properties") + "\"\n"));
    EXPECT_FALSE(records.has("ZYPRA0125I"));
    EXPECT_FALSE(debug);
}

TEST_F(JvmLoading, MissingFileIsOnlyRecorded) {
    const test::Records records(folder_);
    load(L"/j", true);
    EXPECT_EQ(records.text(),
              "ZYPRA0077I: loading jvm.properties at \"" + folder_.narrow("jvm.properties") +
                  "\"\nZYPRA0125I: No jvm.properties file was loaded. A default file should be at "
                  "\"${rcp.home}/rcp/deploy\"\n");
    EXPECT_TRUE(inputs_.properties.entries().empty());
}

TEST_F(JvmLoading, GivenJavaHomeGivesWayToTheOneOfTheJvm) {
    folder_.write("jvm.properties", "java.home=/given\n");
    load(L"/j/jvm/bin/java", false);
    EXPECT_EQ(property(L"java.home"), L"/j");
    EXPECT_EQ(inputs_.properties.entries().size(), 1U);
}

TEST_F(JvmLoading, GivenJavaHomeStaysWhenTheJvmTellsNone) {
    folder_.write("jvm.properties", "java.home=/given\n");
    load(L"/j/bin/java", true);
    EXPECT_EQ(pairsOf(inputs_.properties), (Pairs{{L"java.home", L"/given"}}));
}

TEST_F(JvmLoading, MissingJavaHomeIsAddedForTheDefaultRootOnly) {
    load(L"/j/jvm/bin/java", false);
    EXPECT_EQ(property(L"java.home"), L"(none)");
    load(L"/j/bin/java", true);
    EXPECT_EQ(property(L"java.home"), L"(none)");
    load(L"/j/jvm/bin/java", true);
    EXPECT_EQ(property(L"java.home"), L"/j");
}

TEST_F(JvmLoading, LibraryPathIsRewrittenInPlace) {
    folder_.write("jvm.properties", "jvm.library.path=lib\\\\x:${prop.java.home}/y\nz=1\n");
    load(L"/j", false);
    EXPECT_EQ(pairsOf(inputs_.properties),
              (Pairs{{L"jvm.library.path", L"${prop.java.home}/lib/x:${prop.java.home}/y"},
                     {L"z", L"1"}}));
}

TEST_F(JvmLoading, EmptyLibraryPathStays) {
    inputs_.properties = propertyList({{L"jvm.library.path", L""}});
    load(L"/j", false);
    EXPECT_EQ(property(L"jvm.library.path"), L"");
}

std::wstring javaHome(const wchar_t* jvm) {
    return getJvmHome(jvm).value_or(L"(same)");
}

TEST(JvmHome, StandsInFrontOfTheJvmsFolder) {
    EXPECT_EQ(javaHome(L"/a/b/jvm/bin/java"), L"/a/b");
    EXPECT_EQ(javaHome(L"/a/jvm/bin/x/jvm/bin"), L"/a");
    EXPECT_EQ(javaHome(L"/jvm/bin/java"), L"");
    EXPECT_EQ(javaHome(L"jvm/bin/java"), L"(same)");
    EXPECT_EQ(javaHome(L"/a/bin/java"), L"(same)");
    EXPECT_EQ(javaHome(L""), L"(same)");
}

TEST(JvmLibraryPath, EveryElementIsBelowTheJavaHome) {
    EXPECT_EQ(fixUpJvmLibPath(L"lib:${prop.java.home}/x"),
              L"${prop.java.home}/lib:${prop.java.home}/x");
    EXPECT_EQ(fixUpJvmLibPath(L"a\\b"), L"${prop.java.home}/a/b");
    EXPECT_EQ(fixUpJvmLibPath(L"x/${prop.java.home}"), L"x/${prop.java.home}");
    EXPECT_EQ(fixUpJvmLibPath(L"/abs"), L"${prop.java.home}//abs");
}

TEST(JvmLibraryPath, EmptyElementsAreDropped) {
    EXPECT_EQ(fixUpJvmLibPath(L":a::b:"), L"${prop.java.home}/a:${prop.java.home}/b");
    EXPECT_EQ(fixUpJvmLibPath(L""), L"");
    EXPECT_EQ(fixUpJvmLibPath(L"::"), L"");
}

TEST(VmOverride, IsTheExactOption) {
    EXPECT_TRUE(isVmOverride({L"p", L"-vm"}));
    EXPECT_FALSE(isVmOverride({L"-vm", L"-vmargs", L"-VM"}));
}

}  // namespace
}  // namespace rcp
