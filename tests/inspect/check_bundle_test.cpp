// check over application bundles: a good one, and one for everything that can be wrong with one.
#include "inspect/bundle/bundle.h"
#include "inspect/check/examination.h"
#include "inspect/check/groups.h"
#include "inspect/commands.h"
#include "mach_o_fixture.h"
#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>

namespace rcp::inspect {
namespace {

namespace fs = std::filesystem;

const std::string kContents = "Velmo.app/Contents";
const std::string kProgram = kContents + "/MacOS/rcplauncher";
const std::string kInfo = kContents + "/Info.plist";
const std::string kRestart = kContents + "/MacOS/rcplauncher.plist";
const std::string kSeal = kContents + "/_CodeSignature/CodeResources";
const std::string kProperties = kContents + "/Eclipse/rcp/rcplauncher.properties";
const std::string kBase = kContents + "/Eclipse/rcp/eclipse/plugins/com.ovr.rcp.base";
const std::string kEclipse = kBase + "/macosx/x86/eclipse";
const std::string kLibrary = kBase + "/macosx/x86/eclipse_1615.so";
const std::string kJvm = kContents + "/jre/Contents/Home/lib/server/libjvm.dylib";

std::string list(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
           "</dict></plist>\n";
}

std::string text(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
}

MachO code(std::uint32_t type, std::uint32_t processor = 0x01000007) {
    MachO file;
    file.type = type;
    file.processor = processor;
    file.oldestSystem = processor == kArm64 ? kSystem11 : file.oldestSystem;
    return file;
}

std::string forBoth(MachO file) {
    MachO other = file;
    other.processor = kArm64;
    other.oldestSystem = kSystem11;
    return universal({std::move(file), std::move(other)});
}

class AppBundle {
  public:
    AppBundle() {
        debug = false;
        writeProgram(kProgram, forBoth(code(2)));
        writeProgram(kEclipse, code(2).bytes());
        writeProgram(kLibrary, code(6).bytes());
        writeProgram(kJvm, code(6).bytes());
        write(kBase + "/launcher.jar", "");
        for (const char* name : {"config.ini", "platform.xml", "rcpinstall.properties"}) {
            write(kBase + "/config/user/" + name, "");
        }
        write(kInfo,
              list(text("CFBundleExecutable", "rcplauncher") +
                   text("CFBundleIdentifier", "com.example.velmo") +
                   text("CFBundlePackageType", "APPL") + text("LSMinimumSystemVersion", "10.13") +
                   "<key>LSArchitecturePriority</key><array><string>x86_64</string>"
                   "<string>arm64</string></array>"));
        write(kBase + "/macosx/x86/Info.plist",
              list(text("CFBundleIdentifier", "com.example.velmo")));
        write(kRestart,
              list(text("mlauncher.path", "/Applications/Velmo.app/Contents/MacOS/rcplauncher")));
        write(kSeal, list("<key>files2</key><dict>" + sealed("rcp/rcplauncher.properties") +
                          sealed("rcp/eclipse/plugins/com.ovr.rcp.base/macosx/x86/Info.plist") +
                          "</dict>"));
        write(kContents + "/Eclipse/rcp/plugins.ini", "");
        write(kProperties,
              "rcp.install.id=velmo\n"
              "plugincustomization=" +
                  folder_.narrow(kContents + "/Eclipse/rcp/plugins.ini") +
                  "\n"
                  "rcp.base.location=${rcp.home}/rcp/eclipse/plugins/com.ovr.rcp.base\n"
                  "rcp.data=" +
                  folder_.narrow("home/workspace") +
                  "\njvm.location=" + folder_.narrow(kContents + "/jre/Contents/Home") +
                  "\njvm.libpath=/lib/server/libjvm.dylib\n");
    }

    void write(const std::string& name, const std::string& content) const {
        folder_.write(name, content);
    }
    void writeProgram(const std::string& name, const std::string& content) const {
        write(name, content);
        fs::permissions(folder_.path() / name, fs::perms::owner_exec, fs::perm_options::add);
    }
    void replace(const std::string& name, const std::string& from, const std::string& to) const {
        std::string content = folder_.read(name);
        const std::size_t at = content.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        write(name, content.replace(at, from.size(), to));
    }
    void remove(const std::string& name) const { fs::remove_all(folder_.path() / name); }
    void forbidExecution(const std::string& name) const {
        fs::permissions(folder_.path() / name, fs::perms::owner_exec, fs::perm_options::remove);
    }

    [[nodiscard]] std::vector<Finding> check() const {
        Options options;
        options.launcher = folder_.narrow(kProgram);
        options.installation = folder_.narrow(kContents);
        return findEverything(examine(options)).sorted();
    }
    [[nodiscard]] const test::TestFolder& folder() const { return folder_; }

  private:
    static std::string sealed(const std::string& name) {
        return "<key>Eclipse/" + name + "</key><dict><key>hash2</key><data>AAAA</data></dict>";
    }
    test::TestFolder folder_;
};

std::string shown(const std::vector<Finding>& findings) {
    std::string result;
    for (const Finding& finding : findings) {
        result +=
            std::string(finding.rule->code) + " " + finding.file + " " + finding.message + "\n";
    }
    return result;
}

TEST(CheckBundle, FindsNothingInAGoodOne) {
    EXPECT_EQ(shown(AppBundle().check()), "");
}

struct BadBundle {
    const char* name;
    const char* code;
    std::string file;  // where the finding is
    const char* message;
    std::function<void(const AppBundle&)> change;
};

void PrintTo(const BadBundle& one, std::ostream* stream) {
    *stream << one.name;
}

// Where a finding is: in the installation, or anywhere in the bundle.
std::string placeOf(const Finding& finding) {
    return finding.file.starts_with('/') ? finding.file : kContents + "/Eclipse/" + finding.file;
}

class CheckBadBundle : public ::testing::TestWithParam<BadBundle> {};

TEST_P(CheckBadBundle, IsReportedAndNothingElse) {
    const AppBundle bundle;
    GetParam().change(bundle);
    const std::vector<Finding> findings = bundle.check();
    bool isFound = false;
    for (const Finding& finding : findings) {
        const bool isBundles = std::string_view(finding.rule->code).starts_with("RI7");
        EXPECT_TRUE(!isBundles || finding.rule->code == std::string_view(GetParam().code))
            << shown(findings);
        isFound |= finding.rule->code == std::string_view(GetParam().code) &&
                   placeOf(finding).ends_with(GetParam().file) &&
                   finding.message.find(GetParam().message) != std::string::npos;
    }
    EXPECT_TRUE(isFound) << shown(findings);
}

std::function<void(const AppBundle&)> holds(const std::string& name, const std::string& content) {
    return [=](const AppBundle& bundle) { bundle.writeProgram(name, content); };
}

std::function<void(const AppBundle&)> infoHas(const std::string& from, const std::string& to) {
    return [=](const AppBundle& bundle) { bundle.replace(kInfo, from, to); };
}

std::function<void(const AppBundle&)> lacksFile(const std::string& name) {
    return [=](const AppBundle& bundle) { bundle.remove(name); };
}

std::vector<BadBundle> structureCases() {
    return {
        {"NoInfo", "RI701", kInfo, "description", lacksFile(kInfo)},
        {"NoPlatform", "RI701", kContents + "/Eclipse", "folder",
         lacksFile(kContents + "/Eclipse")},
        {"InfoThatIsNoList", "RI702", kInfo, "no property list", holds(kInfo, "<plist>")},
        {"NoExecutableKey", "RI702", kInfo, "CFBundleExecutable is missing",
         infoHas("CFBundleExecutable", "Other")},
        {"AnotherExecutable", "RI702", kInfo, "not the launcher", infoHas("rcplauncher", "velmo")},
        {"IdentifierWithABlank", "RI702", kInfo, "CFBundleIdentifier holds",
         [](const AppBundle& bundle) {
             bundle.replace(kInfo, "com.example.velmo", "com example");
             bundle.replace(kBase + "/macosx/x86/Info.plist", "com.example.velmo", "com example");
         }},
        {"NoApplication", "RI702", kInfo, "APPL", infoHas("APPL", "BNDL")},
        {"NoSystemVersion", "RI702", kInfo, "LSMinimumSystemVersion",
         infoHas("10.13", "High Sierra")},
        {"RestartPathOfAnotherBundle", "RI707", kRestart, "no executable of this bundle",
         [](const AppBundle& bundle) { bundle.replace(kRestart, "Velmo.app", "Old.app"); }},
        {"RestartPathWithoutKey", "RI707", kRestart, "no mlauncher.path",
         [](const AppBundle& bundle) { bundle.replace(kRestart, "mlauncher.path", "path"); }},
        {"ScriptForAProgram", "RI710", kEclipse, "/bin/sh", holds(kEclipse, "#!/bin/sh\nexec x\n")},
    };
}

std::vector<BadBundle> codeCases() {
    MachO newer = code(6);
    newer.oldestSystem = kSystem11;
    MachO lost = code(6);
    lost.libraries = {"@rpath/libgone.dylib"};
    MachO homebrew = code(6);
    homebrew.libraries = {"/usr/local/lib/libfoo.dylib"};
    MachO pathless = code(6);
    pathless.searchPaths = {"@loader_path/../nowhere"};
    return {
        {"LauncherOfAnotherSystem", "RI703", kProgram, "no program of macOS",
         holds(kProgram,
               "\x7F"
               "ELF")},
        {"DamagedLibrary", "RI703", kJvm, "damaged", holds(kJvm, code(6).bytes().substr(0, 60))},
        {"JvmOfTheOtherProcessor", "RI704", kJvm, "x86_64", holds(kJvm, code(6, kArm64).bytes())},
        {"LauncherThatPrefersTheOther", "RI704", kJvm, "arm64",
         infoHas("<string>x86_64</string>", "")},
        {"LibraryOfANewerSystem", "RI705", kLibrary, "wants macOS 11.0",
         holds(kLibrary, newer.bytes())},
        {"LibraryThatIsNotThere", "RI706", kLibrary, "@rpath/libgone.dylib",
         holds(kLibrary, lost.bytes())},
        {"LibraryOutsideOfTheBundle", "RI706", kLibrary, "/usr/local/lib/libfoo.dylib",
         holds(kLibrary, homebrew.bytes())},
        {"SearchPathToNowhere", "RI706", kLibrary, "search path",
         holds(kLibrary, pathless.bytes())},
    };
}

std::vector<BadBundle> sealCases() {
    MachO loose = code(6);
    loose.isSigned = false;
    MachO hardened = code(2);
    hardened.signatureFlags = 0x10000;
    const std::string platformInfo = kBase + "/macosx/x86/Info.plist";
    return {
        {"LibraryWithoutSignature", "RI708", kLibrary, "not signed",
         holds(kLibrary, loose.bytes())},
        {"NoSeal", "RI708", kSeal, "not sealed", lacksFile(kSeal)},
        {"IdentifierThatALaunchWrites", "RI709", platformInfo,
         "-bundleIdentifier com.example.velmo",
         [=](const AppBundle& bundle) {
             bundle.replace(platformInfo, "com.example.velmo", "com.example.other");
         }},
        {"InstallIdThatALaunchWrites", "RI709", kProperties, "rcp.install.id",
         [](const AppBundle& bundle) {
             bundle.replace(kProperties, "rcp.install.id=velmo", "install.configuration=userpb");
         }},
        {"WorkspaceInside", "RI709", kProperties, "workspace lies in the bundle",
         [](const AppBundle& bundle) {
             bundle.replace(kProperties, bundle.folder().narrow("home/workspace"),
                            "${rcp.home}/workspace");
         }},
        {"HardenedWithoutEntitlements", "RI711", kProgram, "allow-jit",
         holds(kProgram, forBoth(hardened))},
    };
}

const auto nameOfCase = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Structure, CheckBadBundle, ::testing::ValuesIn(structureCases()),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(Code, CheckBadBundle, ::testing::ValuesIn(codeCases()), nameOfCase);
INSTANTIATE_TEST_SUITE_P(Seal, CheckBadBundle, ::testing::ValuesIn(sealCases()), nameOfCase);

TEST(CheckBundle, HasACaseForEveryFinding) {
    std::set<std::string> tested;
    for (const auto& group : {structureCases(), codeCases(), sealCases()}) {
        for (const BadBundle& one : group) {
            tested.insert(one.code);
        }
    }
    for (const FindingRule& rule : findingRules()) {
        const bool isBundles = std::string_view(rule.code).starts_with("RI7");
        EXPECT_TRUE(!isBundles || tested.contains(rule.code)) << rule.code;
    }
}

TEST(CheckBundle, TellsOfAMissingLauncherAndPermission) {
    const AppBundle without;
    without.remove(kProgram);
    EXPECT_NE(shown(without.check()).find("RI701"), std::string::npos) << shown(without.check());
    const AppBundle forbidden;
    forbidden.forbidExecution(kProgram);
    forbidden.forbidExecution(kEclipse);
    const std::string findings = shown(forbidden.check());
    EXPECT_NE(findings.find("RI602"), std::string::npos) << findings;
}

// Names that are searched for lead to the bundle's own libraries in every way there is.
TEST(CheckBundle, FindsLibrariesWhereTheSystemWould) {
    const AppBundle bundle;
    MachO library = code(6);
    library.libraries = {"@loader_path/libbeside.dylib", "@executable_path/libbeside.dylib",
                         "@rpath/libbeside.dylib", "@rpath/libloaded.dylib"};
    library.weakLibraries = {"/opt/gone.dylib"};
    library.searchPaths = {"@loader_path/."};
    bundle.writeProgram(kLibrary, library.bytes());
    MachO loaded = code(6);
    loaded.ownName = "@rpath/libloaded.dylib";
    bundle.writeProgram(kJvm, loaded.bytes());
    for (const std::string& folder : {kBase + "/macosx/x86", kContents + "/MacOS"}) {
        bundle.writeProgram(folder + "/libbeside.dylib", code(6).bytes());
    }
    EXPECT_EQ(shown(bundle.check()), "");
}

TEST(CheckBundle, IsFoundByItsFolder) {
    const AppBundle bundle;
    EXPECT_EQ(launcherOfBundle(bundle.folder().narrow("Velmo.app")),
              bundle.folder().narrow(kProgram));
    EXPECT_EQ(launcherOfBundle(bundle.folder().narrow()), "");
    EXPECT_EQ(contentsAround(bundle.folder().narrow(kProgram)), bundle.folder().narrow(kContents));
    EXPECT_EQ(contentsAround("/a/rcp/rcplauncher"), "");
}

// The real program, given the folder of a bundle.
TEST(CheckBundle, IsCheckedByTheProgramEvenWithoutLauncher) {
    const AppBundle bundle;
    const auto statusOf = [&](const std::string& command) {
        const std::string line = "'" + test::seen(INSPECT_PROGRAM) + "' " + command +
                                 " --install '" + bundle.folder().narrow("Velmo.app") + "' >'" +
                                 bundle.folder().narrow("out") + "' 2>&1 </dev/null";
        const int status = std::system(line.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    EXPECT_EQ(statusOf("check"), 0) << bundle.folder().read("out");
    bundle.remove(kProgram);
    EXPECT_EQ(statusOf("check"), 2) << bundle.folder().read("out");
    EXPECT_NE(bundle.folder().read("out").find("RI701"), std::string::npos);
    EXPECT_EQ(statusOf("explain"), kWrongUse) << bundle.folder().read("out");
}

}  // namespace
}  // namespace rcp::inspect
