#include "check_fixture.h"

#include "inspect/check/examination.h"
#include "inspect/check/groups.h"
#include "tests/support/sandbox.h"
#include "tests/unit/paths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace rcp::inspect {
namespace {

namespace fs = std::filesystem;

constexpr char kPlatform[] = "rcp/eclipse/plugins/com.ovr.rcp.base/macosx/x86/eclipse";

}  // namespace

Maker::Maker() {
    debug = false;
    const std::string base = kBaseFolder;
    place("rcp/rcplauncher", "standin_platform");
    folder_.write("rcp/plugins.ini", "");
    place(kPlatform, "standin_platform");
    place(base + "/macosx/x86/eclipse_1615.so", "standin_eclipse.so");
    place(base + "/launcher.jar", "standin.jar");
    place(base + "/plugins/org.eclipse.osgi_1.0.jar", "standin.jar");
    folder_.write(base + "/config/user/config.ini", "");
    folder_.write(kInheritedConfiguration, "osgi.bundles=org.eclipse.osgi\n");
    folder_.write(base + "/config/user/platform.xml", "");
    folder_.write(kMaster, "product=mine\n");
    place(kJvmLibrary, "standin_jvm.so");
    setExecutable(kJvmLibrary, false);
    folder_.write(kClasses, "classes");
    folder_.write(kJvmProperties, "jvm.feature.id=feature\n");
    folder_.write(kLauncherProperties,
                  "rcp.install.id=test\n"
                  "rcp.base.location=${rcp.home}/" +
                      base +
                      "\n"
                      "rcp.data=${rcp.home}/workspace\n"
                      "invoke.eclipse.dylib=0\n"
                      "jvm.location=${rcp.home}/jre\n"
                      "jvm.libpath=/lib/server/libjvm.so\n"
                      "plugincustomization=" +
                      folder_.narrow("rcp/plugins.ini") + "\n");
}

void Maker::place(const std::string& file, const std::string& standIn) const {
    const fs::path target = folder_.path() / file;
    fs::create_directories(target.parent_path());
    fs::copy_file(fs::path(rcp::test::seen(STANDIN_PLATFORM)).parent_path() / standIn, target,
                  fs::copy_options::overwrite_existing);
}

void Maker::append(const std::string& file, const std::string& text) const {
    folder_.write(file, (folder_.has(file) ? folder_.read(file) : std::string()) + text);
}

void Maker::replace(const std::string& file, const std::string& from, const std::string& to) const {
    std::string text = folder_.read(file);
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    folder_.write(file, text.replace(at, from.size(), to));
}

void Maker::remove(const std::string& file) const {
    fs::remove_all(folder_.path() / file);
}

void Maker::setExecutable(const std::string& file, bool isExecutable) const {
    fs::permissions(folder_.path() / file, fs::perms::owner_exec,
                    isExecutable ? fs::perm_options::add : fs::perm_options::remove);
}

std::vector<Finding> Maker::check() const {
    return findEverything(examine(options())).sorted();
}

Options Maker::options() const {
    Options options;
    options.launcher = folder_.narrow("rcp/rcplauncher");
    options.installation = folder_.narrow();
    return options;
}

std::size_t Maker::lineCount(const std::string& file) const {
    const std::string text = folder_.read(file);
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

Change has(const std::string& file, const std::string& text) {
    return [=](const Maker& maker) { maker.append(file, text); };
}

Change launcherHas(const std::string& text) {
    return has(kLauncherProperties, text);
}

Change jvmHas(const std::string& text) {
    return has(kJvmProperties, text);
}

Change masterHas(const std::string& text) {
    return has(kMaster, text);
}

Change lacks(const std::string& file) {
    return [=](const Maker& maker) { maker.remove(file); };
}

Change differs(const std::string& file, const std::string& from, const std::string& to) {
    return [=](const Maker& maker) { maker.replace(file, from, to); };
}

Change isLinkToItself(const std::string& file) {
    return [=](const Maker& maker) {
        maker.remove(file);
        const auto path = maker.folder().path() / file;
        std::filesystem::create_symlink(path.filename(), path);
    };
}

Change isNotExecutable(const std::string& file) {
    return [=](const Maker& maker) { maker.setExecutable(file, false); };
}

Change configHas(const std::string& text) {
    return has(kConfigIni, text);
}

Change isFolderWith(const std::string& folder, const std::string& file) {
    return [=](const Maker& maker) {
        maker.remove(folder);
        maker.folder().write(folder + "/" + file, "");
    };
}

Change isStandIn(const std::string& file, const std::string& standIn) {
    return [=](const Maker& maker) { maker.place(file, standIn); };
}

Change both(const Change& first, const Change& second) {
    return [=](const Maker& maker) {
        first(maker);
        second(maker);
    };
}

void nothingChanges(const Maker& /*maker*/) {}

}  // namespace rcp::inspect
