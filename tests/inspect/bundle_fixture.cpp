#include "bundle_fixture.h"

#include "inspect/quiet_read.h"
#include "tests/support/sandbox.h"
#include "tests/unit/paths.h"

#include <filesystem>
#include <utility>

namespace rcp::inspect {
namespace {

namespace fs = std::filesystem;

std::string list(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
           "</dict></plist>\n";
}

std::string text(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
}

std::string sealed(const std::string& name) {
    return "<key>Eclipse/" + name + "</key><dict><key>hash2</key><data>AAAA</data></dict>";
}

}  // namespace

MachO code(std::uint32_t type, std::uint32_t processor) {
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

AppBundle::AppBundle() {
    debug = false;
    writeProgram(kProgram, forBoth(code(2)));
    writeProgram(kEclipse, code(2).bytes());
    writeProgram(kLibrary, code(6).bytes());
    writeProgram(kJvm, code(6).bytes());
    for (const char* name : {"/launcher.jar", "/plugins/org.eclipse.osgi_1.0.jar"}) {
        write(kBase + name, readQuietly(fs::path(rcp::test::seen(STANDIN_PLATFORM)).parent_path() /
                                        "standin.jar"));
    }
    for (const char* name : {"platform.xml", "rcpinstall.properties"}) {
        write(kBase + "/config/user/" + name, "");
    }
    write(kBase + "/config/user/config.ini", "osgi.bundles=org.eclipse.osgi\n");
    write(kContents + "/jre/Contents/Home/lib/modules", "classes");
    write(kInfo,
          list(text("CFBundleExecutable", "rcplauncher") +
               text("CFBundleIdentifier", "com.example.velmo") +
               text("CFBundlePackageType", "APPL") + text("LSMinimumSystemVersion", "10.13") +
               "<key>LSArchitecturePriority</key><array><string>x86_64</string>"
               "<string>arm64</string></array>"));
    write(kBase + "/macosx/x86/Info.plist", list(text("CFBundleIdentifier", "com.example.velmo")));
    write(kRestartFile,
          list(text("mlauncher.path", "/Applications/Velmo.app/Contents/MacOS/rcplauncher")));
    link("../Resources/rcplauncher.plist", kRestart);
    write(kSeal,
          list("<key>files2</key><dict>" + sealed("rcp/rcplauncher.properties") +
               sealed("rcp/eclipse/plugins/com.ovr.rcp.base/macosx/x86/Info.plist") + "</dict>"));
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

void AppBundle::write(const std::string& name, const std::string& content) const {
    folder_.write(name, content);
}

void AppBundle::writeProgram(const std::string& name, const std::string& content) const {
    write(name, content);
    fs::permissions(folder_.path() / name, fs::perms::owner_exec, fs::perm_options::add);
}

void AppBundle::link(const std::string& target, const std::string& name) const {
    fs::create_symlink(target, folder_.path() / name);
}

void AppBundle::replace(const std::string& name, const std::string& from,
                        const std::string& to) const {
    std::string content = folder_.read(name);
    const std::size_t at = content.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    write(name, content.replace(at, from.size(), to));
}

void AppBundle::remove(const std::string& name) const {
    fs::remove_all(folder_.path() / name);
}

void AppBundle::forbidExecution(const std::string& name) const {
    fs::permissions(folder_.path() / name, fs::perms::owner_exec, fs::perm_options::remove);
}

Options AppBundle::options() const {
    Options options;
    options.launcher = folder_.narrow(kProgram);
    options.installation = folder_.narrow(kContents);
    return options;
}

}  // namespace rcp::inspect
