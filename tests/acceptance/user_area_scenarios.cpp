#include "user_area_scenarios.h"

#include "checks.h"

#include <algorithm>

namespace acceptance {

namespace {

const std::string kRegistry = "the registry\n";
const std::string kBookmarks = "<bookmarks/>\n";

bool nothing(const std::string&) {
    return false;
}

bool isBelow(const std::string& path, const std::string& folder) {
    return path == folder || path.starts_with(folder + "/");
}

// --- The first launch on a fresh account ---

void prepareFirstLaunch(Installation& velmo) {
    velmo.write(velmo.base + "/config/user/config.ini", std::string(200'000, 'c') + "\n");
    velmo.write(velmo.base + "/config/user/platform.xml",
                "<config>\n<feature id=\"${jvm.feature.id}\"/>\n</config>\n");
    velmo.write("jre/jvm.properties", "jvm.feature.id=com.jvm\njvm.feature.version=8.0\n");
    velmo.write(velmo.home + "/shared/eclipse/.eclipseextension", "id=org.eclipse.platform\n");
    velmo.write(velmo.base + "/macosx/x86/Info.plist",
                "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>\n"
                "<key>CFBundleIdentifier</key><string>old</string></dict></plist>\n");
    velmo.addInstallLine("a.macosx=1").addInstallLine("b.win32=1");
}

Texts firstLaunchArguments() {
    return {"-bundleIdentifier",  "com.velmo.client", "-vm",
            "/opt/java/bin/java", "-product",         "x y"};
}

// --- The installation makes its own id ---

void prepareOwnId(Installation& velmo) {
    velmo.set("install.configuration", "userpb").unset("rcp.install.id");
    velmo.set("rcp.data", velmo.workspace);
}

// --- Reuse and reset of an area in use ---

void fillArea(Installation& velmo) {
    velmo.write(velmo.configuration() + "/org.eclipse.update/registry", kRegistry);
    velmo.write(velmo.configuration() + "/org.eclipse.update/bookmarks.xml", kBookmarks);
    velmo.write(velmo.configuration() + "/org.eclipse.osgi/state", "state\n");
    velmo.write(velmo.configuration() + "bak/org.eclipse.osgi/state", "former state\n");
    velmo.write(velmo.workspace + "/registry.old", "left by an earlier reset\n");
}

void prepareReuse(Installation& velmo) {
    velmo.set("rcp.data", velmo.workspace);
    velmo.start();
    fillArea(velmo);
    velmo.set("rcp.install.id", "new");
}

void prepareReset(Installation& velmo) {
    velmo.addInstallLine("resetDir.1=org.a").addInstallLine("resetDir.2=org.b");
    velmo.start();
    fillArea(velmo);
    for (const char* plugin : {"org.a", "org.b", "org.kept"}) {
        velmo.write(velmo.workspace + "/.metadata/.plugins/" + plugin + "/folder/file", "f\n");
    }
}

// Nothing is rolled back: the files that are kept may still be where they were saved, the former
// area may be in place of the "bak" one or still half removed.
bool mayDifferAfterRenewal(const std::string& path) {
    const auto at = path.find("/.config");
    const std::string below = at == std::string::npos ? "" : path.substr(at + 1);
    return path.ends_with("registry") || path.ends_with("registry.old") ||
           path.ends_with("bookmarks.xml") || path.ends_with("bookmarks.xml.old") ||
           isBelow(below, ".configbak") || below.starts_with(".configbakdeleteme000");
}

// A plain launch does not finish a reset: without one the former area is still in use.
bool mayDifferAfterReset(const std::string& path) {
    return mayDifferAfterRenewal(path) || path.find("/.plugins/org.a") != std::string::npos ||
           path.find("/.plugins/org.b") != std::string::npos ||
           path.find("/.config/org.eclipse.osgi") != std::string::npos;
}

}  // namespace

std::vector<Scenario> scenarios() {
    return {
        {"FirstLaunch", prepareFirstLaunch, firstLaunchArguments(), firstLaunchArguments(), nothing,
         false},
        {"OwnInstallId", prepareOwnId, {}, {}, nothing, false},
        {"Reuse", prepareReuse, {}, {}, mayDifferAfterRenewal, true},
        {"Reset", prepareReset, {"-resetconfig"}, {}, mayDifferAfterReset, true},
        {"ResetTwice",
         prepareReset,
         {"-resetconfig"},
         {"-resetconfig"},
         mayDifferAfterRenewal,
         true},
    };
}

namespace {

// Records of processes; every launch writes its own.
bool isRecord(const std::string& path) {
    return path.find("/logs/") != std::string::npos || path.ends_with(".rcp.lock") ||
           path.ends_with(".rcp.main");
}

Snapshot filesOf(const Installation& velmo) {
    Snapshot all = takeSnapshot(velmo.userHome);
    all.merge(takeSnapshot(velmo.home));
    return all;
}

void replaceEvery(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
}

// The id of the installation, which may be made from the time; there must be exactly one.
std::string installIdOf(const Installation& velmo) {
    const std::string key = "rcp.install.id=";
    const std::string lines = readFile(velmo.rcp + "/rcplauncher.properties");
    const std::size_t at = lines.find(key);
    EXPECT_NE(at, std::string::npos) << lines;
    EXPECT_EQ(at, lines.rfind(key)) << lines;
    const std::size_t begin = at + key.size();
    return lines.substr(begin, lines.find('\n', begin) - begin);
}

bool holdsContent(const Snapshot& files, const std::string& content) {
    return std::any_of(files.begin(), files.end(),
                       [&](const auto& item) { return item.second.content == content; });
}

}  // namespace

Outcome launchNext(const Installation& velmo, const Scenario& scenario) {
    Outcome result{velmo.start(scenario.next).arguments, portable(filesOf(velmo), velmo)};
    const std::string id = installIdOf(velmo);
    EXPECT_NE(id, "");
    for (std::string& argument : result.arguments) {
        replaceEvery(argument, velmo.root, "ROOT");
        replaceEvery(argument, "install.id=" + id, "install.id=THE ID");
    }
    for (auto& [path, entry] : result.files) {
        replaceEvery(entry.content, "install.id=" + id, "install.id=THE ID");
    }
    return result;
}

void expectSameOutcome(const Outcome& expected, const Outcome& actual, const Scenario& scenario) {
    const auto isLeftOut = [&](const std::string& path) {
        return isRecord(path) || scenario.mayDiffer(path);
    };
    expectList(expected.arguments, actual.arguments);
    EXPECT_EQ(differences(without(expected.files, isLeftOut), without(actual.files, isLeftOut)),
              "");
    expectList({}, temporaryNames(actual.files));
    if (scenario.hasKeptFiles) {
        EXPECT_TRUE(holdsContent(actual.files, kRegistry));
        EXPECT_TRUE(holdsContent(actual.files, kBookmarks));
    }
}

void expectNothingUnfinished(const Installation& velmo) {
    expectList({}, temporaryNames(filesOf(velmo)));
}

}  // namespace acceptance
