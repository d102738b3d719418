// check over application bundles: a good one, and one for everything that can be wrong with one.
#include "bundle_fixture.h"
#include "inspect/bundle/bundle.h"
#include "inspect/check/examination.h"
#include "inspect/check/groups.h"
#include "inspect/commands.h"
#include "inspect/explain/rehearse_launch.h"
#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>

namespace rcp::inspect {
namespace {

std::vector<Finding> findingsIn(const AppBundle& bundle) {
    return findEverything(examine(bundle.options())).sorted();
}

std::string shown(const std::vector<Finding>& findings) {
    std::string result;
    for (const Finding& finding : findings) {
        result +=
            std::string(finding.rule->code) + " " + finding.file + " " + finding.message + "\n";
    }
    return result;
}

TEST(CheckBundle, FindsNothingInAGoodOne) {
    EXPECT_EQ(shown(findingsIn(AppBundle())), "");
}

struct BadBundle {
    const char* name;
    const char* code;
    std::string file;  // where the finding is
    std::string message;
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
    const std::vector<Finding> findings = findingsIn(bundle);
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
         [](const AppBundle& bundle) { bundle.replace(kRestartFile, "Velmo.app", "Old.app"); }},
        {"RestartPathOfThisMachine", "RI707", kRestart, "no executable of this bundle",
         [](const AppBundle& bundle) {
             bundle.replace(kRestartFile, "/Applications/Velmo.app/Contents/MacOS/rcplauncher",
                            "/bin/sh");
         }},
        {"RestartPathThatIsALinkToThisMachine", "RI707", kRestart, "no executable of this bundle",
         [](const AppBundle& bundle) {
             bundle.link("/bin/sh", kContents + "/Resources/start");
             bundle.replace(kRestartFile, "MacOS/rcplauncher", "Resources/start");
         }},
        {"RestartPathWithoutKey", "RI707", kRestart, "no mlauncher.path",
         [](const AppBundle& bundle) { bundle.replace(kRestartFile, "mlauncher.path", "path"); }},
        {"RestartPathAmongTheCode", "RI712", kRestart, "no code",
         [](const AppBundle& bundle) {
             bundle.remove(kRestart);
             bundle.write(kRestart, bundle.folder().read(kRestartFile));
         }},
        {"EmptyFileAmongTheCode", "RI712", kContents + "/MacOS/deep/notes", "no code",
         holds(kContents + "/MacOS/deep/notes", "")},
        {"ScriptAmongTheCode", "RI712", kContents + "/MacOS/helper", "no code",
         holds(kContents + "/MacOS/helper", "#!/usr/local/bin/python3\n")},
        {"ScriptForAProgram", "RI710", kEclipse, "/bin/sh", holds(kEclipse, "#!/bin/sh\nexec x\n")},
    };
}

std::vector<BadBundle> codeCases() {
    MachO newer = code(6);
    newer.oldestSystem = kSystem11;
    MachO lost = code(6);
    lost.libraries = {"@rpath/libgone.dylib"};
    MachO above = code(6);
    above.libraries.clear();
    above.upwardLibraries = {"@loader_path/libabove.dylib"};
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
        {"LibraryAboveThatIsNotThere", "RI706", kLibrary, "libabove.dylib",
         holds(kLibrary, above.bytes())},
        {"SearchPathToNowhere", "RI706", kLibrary, "search path",
         holds(kLibrary, pathless.bytes())},
    };
}

// The platform's library wants that library, or looks for libraries there. The file "beside/libbeside.dylib"
// lies beside the bundle, where another machine need not have it.
BadBundle outsideCase(const char* name, const std::string& library, const std::string& searchPath) {
    return {name, "RI706", kLibrary,
            library.empty() ? "the search path" : library.substr(library.rfind('/') + 1),
            [=](const AppBundle& bundle) {
                const auto placed = [&](std::string text) {
                    return text.starts_with("BESIDE")
                               ? text.replace(0, 6, bundle.folder().narrow("beside"))
                               : text;
                };
                bundle.writeProgram("beside/libbeside.dylib", code(6).bytes());
                bundle.link(bundle.folder().narrow("beside/libbeside.dylib"),
                            kBase + "/macosx/x86/liblink.dylib");
                MachO wanting = code(6);
                if (!library.empty()) {
                    wanting.libraries = {placed(library)};
                }
                if (!searchPath.empty()) {
                    wanting.searchPaths = {placed(searchPath)};
                }
                bundle.writeProgram(kLibrary, wanting.bytes());
            }};
}

std::vector<BadBundle> outsideCases() {
    return {
        outsideCase("LibraryOfThisMachine", "BESIDE/libbeside.dylib", ""),
        outsideCase("LibraryOfNoMachine", "/usr/local/lib/libfoo.dylib", ""),
        outsideCase("LibraryThatOnlySeemsTheSystems", "/usr/lib/../local/lib/libfoo.dylib", ""),
        outsideCase("LibraryWithoutFolder", "eclipse_1615.so", ""),
        outsideCase("LibraryBesideTheBundle", "@executable_path/../../../beside/libbeside.dylib",
                    ""),
        outsideCase("LinkOutOfTheBundle", "@loader_path/liblink.dylib", ""),
        outsideCase("SearchPathOfThisMachine", "", "BESIDE"),
        outsideCase("SearchPathBesideTheBundle", "", "@executable_path/../../../beside"),
        outsideCase("SearchPathThatIsAFile", "", "@executable_path/rcplauncher"),
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
        {"SealThatIsNoList", "RI708", kSeal, "cannot be read", holds(kSeal, "<plist>")},
        {"SealThatIsALinkToNowhere", "RI708", kSeal, "cannot be read",
         [](const AppBundle& bundle) {
             bundle.remove(kSeal);
             bundle.link("CodeResources", kSeal);
         }},
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

constexpr const char* kEntitlements[] = {
    "com.apple.security.cs.allow-jit",
    "com.apple.security.cs.allow-unsigned-executable-memory",
    "com.apple.security.cs.disable-library-validation",
    "com.apple.security.cs.allow-dyld-environment-variables",
};

std::string granted(const std::string& name, const std::string& value) {
    return "<key>" + name + "</key>" + value;
}

// What is missing to a launcher with the hardened runtime and these entitlements, the keys of a list.
std::vector<std::string> missingWith(const std::string& entitlements) {
    MachO hardened = code(2);
    hardened.signatureFlags = 0x10000;
    hardened.entitlements = "<plist version=\"1.0\"><dict>" + entitlements + "</dict></plist>";
    const AppBundle bundle;
    bundle.writeProgram(kProgram, forBoth(hardened));
    std::vector<std::string> missing;
    for (const Finding& finding : findingsIn(bundle)) {
        EXPECT_EQ(finding.rule->code, std::string_view("RI711")) << finding.message;
        missing.push_back(finding.message.substr(0, finding.message.find(" is missing")));
    }
    return missing;
}

TEST(CheckBundle, EntitlementCountsOnlyWhenItIsTrue) {
    for (const char* value : {"<false/>", "<string>true</string>", "<integer>1</integer>"}) {
        std::string all;
        for (const char* name : kEntitlements) {
            all += granted(name, value);
        }
        EXPECT_THAT(missingWith(all), ::testing::ElementsAreArray(kEntitlements)) << value;
        EXPECT_THAT(missingWith("<!--" + all + "-->"), ::testing::ElementsAreArray(kEntitlements));
    }
}

TEST(CheckBundle, EveryEntitlementIsWanted) {
    std::string all;
    for (const std::string missing : kEntitlements) {
        std::string others;
        for (const std::string name : kEntitlements) {
            others += name == missing ? "" : granted(name, "<true/>");
        }
        EXPECT_THAT(missingWith(others), ::testing::ElementsAre(missing));
        all += granted(missing, "<true/>");
    }
    EXPECT_THAT(missingWith(all), ::testing::IsEmpty());
}

const auto nameOfCase = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Structure, CheckBadBundle, ::testing::ValuesIn(structureCases()),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(Code, CheckBadBundle, ::testing::ValuesIn(codeCases()), nameOfCase);
INSTANTIATE_TEST_SUITE_P(Outside, CheckBadBundle, ::testing::ValuesIn(outsideCases()), nameOfCase);
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

// What a launch writes into the bundle in its rehearsal is what check says of it.
TEST(CheckBundle, SaysWhatLaunchesWriteIntoTheBundle) {
    const auto launchWrites = [](const AppBundle& bundle) {
        Options options = bundle.options();
        options.arguments = {"-bundleIdentifier", "com.example.velmo"};
        std::set<std::string> written;
        const auto told = explainLaunch(options);
        for (const auto& change : told["changes"]) {
            const std::filesystem::path path = change["path"].get<std::string>();
            if (path.lexically_normal().string().starts_with(bundle.folder().narrow(kContents) +
                                                             "/")) {
                written.insert(path);
            }
        }
        return written;
    };
    EXPECT_THAT(launchWrites(AppBundle()), ::testing::IsEmpty());
    for (const BadBundle& one : sealCases()) {
        const AppBundle bundle;
        one.change(bundle);
        EXPECT_EQ(!launchWrites(bundle).empty(), one.code == std::string_view("RI709")) << one.name;
    }
}

// A bundle with a JVM has thousands of files, and its seal names each of them.
TEST(CheckBundle, ReadsALargeSeal) {
    constexpr std::size_t kLarge = std::size_t{5} << 20;
    const AppBundle bundle;
    const std::string start = "<key>files2</key><dict>";
    std::string entries = start;
    for (int i = 0; entries.size() < kLarge; ++i) {
        entries += "<key>jre/Contents/Home/legal/" + std::string(200, 'a') + std::to_string(i) +
                   "</key><dict><key>hash2</key><data>AAAA</data></dict>";
    }
    bundle.replace(kSeal, start, entries);
    EXPECT_EQ(shown(findingsIn(bundle)), "");
    bundle.replace(kBase + "/macosx/x86/Info.plist", "com.example.velmo", "com.example.other");
    EXPECT_NE(shown(findingsIn(bundle)).find("RI709"), std::string::npos)
        << shown(findingsIn(bundle));
}

// The launcher's own folder is known without links, whatever way led to the bundle.
TEST(CheckBundle, SaysWhatLaunchesWriteWhenALinkLeadsToTheBundle) {
    for (const BadBundle& one : sealCases()) {
        const AppBundle bundle;
        one.change(bundle);
        bundle.link(".", "way");
        Options options = bundle.options();
        options.launcher = bundle.folder().narrow("way/" + kProgram);
        options.installation = bundle.folder().narrow("way/" + kContents);
        const std::string findings = shown(findEverything(examine(options)).sorted());
        EXPECT_NE(findings.find(one.code), std::string::npos) << one.name << "\n" << findings;
    }
}

TEST(CheckBundle, TellsOfAMissingLauncherAndPermission) {
    const AppBundle without;
    without.remove(kProgram);
    EXPECT_NE(shown(findingsIn(without)).find("RI701"), std::string::npos)
        << shown(findingsIn(without));
    const AppBundle forbidden;
    forbidden.forbidExecution(kProgram);
    forbidden.forbidExecution(kEclipse);
    const std::string findings = shown(findingsIn(forbidden));
    EXPECT_NE(findings.find("RI602"), std::string::npos) << findings;
}

// Root reads everything, so somebody else tries.
TEST(CheckBundle, TellsASealThatNobodyMayReadFromNone) {
    for (const std::string& closed : {kSeal, kContents + "/_CodeSignature"}) {
        const AppBundle bundle;
        std::filesystem::permissions(bundle.folder().path() / closed, std::filesystem::perms::none);
        std::filesystem::permissions(bundle.folder().path(), std::filesystem::perms(0755));
        EXPECT_EXIT(
            {
                const bool isOther = geteuid() != 0 || seteuid(12345) == 0;
                const std::string findings = shown(findingsIn(bundle));
                fputs(findings.c_str(), stderr);
                _exit(isOther ? 3 : 4);
            },
            ::testing::ExitedWithCode(3), "RI708 .*/CodeResources the seal cannot be read\n");
        std::filesystem::permissions(bundle.folder().path() / closed, std::filesystem::perms(0700));
    }
}

// Names that are searched for lead to the bundle's own libraries in every way there is.
TEST(CheckBundle, FindsLibrariesWhereTheSystemWould) {
    const AppBundle bundle;
    MachO library = code(6);
    library.libraries = {"@loader_path/libbeside.dylib", "@executable_path/libbeside.dylib",
                         "@rpath/libbeside.dylib", "@rpath/libloaded.dylib"};
    library.libraries.push_back("/Applications/Velmo.app/Contents/MacOS/libbeside.dylib");
    library.libraries.push_back("@loader_path/Current/libbeside.dylib");
    library.weakLibraries = {"/opt/gone.dylib"};
    library.searchPaths = {"@loader_path/.", "/usr/lib", "/Applications/Velmo.app/Contents/MacOS"};
    bundle.link(".", kBase + "/macosx/x86/Current");
    bundle.writeProgram(kLibrary, library.bytes());
    MachO loaded = code(6);
    loaded.ownName = "@rpath/libloaded.dylib";
    bundle.writeProgram(kJvm, loaded.bytes());
    for (const std::string& folder : {kBase + "/macosx/x86", kContents + "/MacOS"}) {
        bundle.writeProgram(folder + "/libbeside.dylib", code(6).bytes());
    }
    EXPECT_EQ(shown(findingsIn(bundle)), "");
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
        const std::string line = "'" + rcp::test::seen(INSPECT_PROGRAM) + "' " + command +
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
