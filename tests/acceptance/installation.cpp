#include "installation.h"

#include "tests/acceptance/paths.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace acceptance {

namespace files = std::filesystem;

namespace {

// Set-ups of the sanitizers and of coverage reach the launcher; nothing else of ours does.
void passOn(std::map<std::string, std::string>& environment, const char* name) {
    if (const char* value = std::getenv(name)) {
        environment[name] = value;
    }
}

bool hasKey(const std::string& line, const std::string& key) {
    return line.starts_with(key + "=");
}

#ifdef __APPLE__
constexpr const char* kUtf8Locale = "en_US.UTF-8";
#else
constexpr const char* kUtf8Locale = "C.UTF-8";
#endif

std::string joinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

}  // namespace

std::string readFile(const std::string& path) {
    std::error_code missing;
    if (!files::is_regular_file(path, missing)) {
        return "";  // a pipe would never end
    }
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool fileExists(const std::string& path) {
    return files::exists(files::symlink_status(path));
}

TemporaryFolder::TemporaryFolder() : path_(rcp::test::makeFolder("")) {
    (void)chmod(path_.c_str(), 0755);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    files::remove_all(path_, ignored);
}

Installation::Installation()
    : root(tree_.path()),
      home(root + "/Velmo"),
      rcp(home + "/rcp"),
      base(rcp + "/eclipse/plugins/com.ovr.rcp.base"),
      userHome(root + "/home"),
      tmp(root + "/tmp"),
      installId("abc123"),
      userName("ann"),
      workspace(userHome + "/OVR/RCP/" + installId + "/" + userName),
      program(rcp + "/rcplauncher"),
      folder(root + "/folder") {
    if (const char* everywhere = getenv("RCP_TEST_WRAPPER")) {
        std::istringstream words(everywhere);
        wrapper.assign(std::istream_iterator<std::string>(words), {});
    }
    for (const std::string& name : {rcp, base + "/macosx/x86", userHome, tmp, folder}) {
        files::create_directories(name);
    }
    (void)chmod(tmp.c_str(), 01777);
    place(ACCEPTANCE_LAUNCHER, program);
    place(ACCEPTANCE_STANDIN_PROGRAM, base + "/macosx/x86/eclipse");
    place(ACCEPTANCE_STANDIN_LIBRARY, base + "/macosx/x86/eclipse_1615.so");
    write(base + "/launcher.jar", "");
    write(base + "/plugin_customization.ini", "# preferences\n");
    for (const std::string& core : {base, base + "/config/user"}) {
        write(core + "/config.ini", "osgi.bundles=\n");
        write(core + "/platform.xml", "<config>\n</config>\n");
    }
    installLines_ = {"# values of this installation"};
    set("rcp.install.id", installId);
    set("rcp.base.location", "${rcp.home}/rcp/eclipse/plugins/com.ovr.rcp.base");
    set("plugincustomization", base + "/plugin_customization.ini");
    environment = {
        {"LANG", kUtf8Locale}, {"PATH", "/usr/bin:/bin"}, {"HOME", userHome}, {"USER", userName}};
    for (const char* name :
         {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "LLVM_PROFILE_FILE"}) {
        passOn(environment, name);
    }
}

void Installation::giveTo(uid_t user) {
    user_ = user;
    for (const auto& entry : files::recursive_directory_iterator(root)) {
        // The programs may be hard links of the built ones: those keep their owner.
        if (!entry.is_regular_file() || entry.hard_link_count() == 1) {
            (void)lchown(entry.path().c_str(), user, static_cast<gid_t>(user));
        }
    }
    (void)lchown(root.c_str(), user, static_cast<gid_t>(user));
}

Installation& Installation::set(const std::string& key, const std::string& value) {
    const auto found = std::find_if(lines_.begin(), lines_.end(),
                                    [&](const std::string& line) { return hasKey(line, key); });
    if (found == lines_.end()) {
        return addLine(key + "=" + value);
    }
    *found = key + "=" + value;
    return *this;
}

Installation& Installation::unset(const std::string& key) {
    std::erase_if(lines_, [&](const std::string& line) { return hasKey(line, key); });
    return *this;
}

Installation& Installation::addLine(const std::string& line) {
    lines_.push_back(line);
    return *this;
}

Installation& Installation::addInstallLine(const std::string& line) {
    installLines_.push_back(line);
    return *this;
}

std::string Installation::useOwnJvm() {
    set("jvm.location", home + "/jre");
    set("jvm.libpath", "/bin/java");
    return place(ACCEPTANCE_STANDIN_PROGRAM, home + "/jre/bin/java");
}

std::string Installation::useServiceConfiguration() {
    set("install.configuration", "service");
    workspace = home + "/eclipse/.workspace";
    return useOwnJvm();
}

std::string Installation::write(const std::string& path, const std::string& text, int mode) const {
    const files::path target = files::path(root) / path;
    files::create_directories(target.parent_path());
    files::remove(target);
    std::ofstream(target, std::ios::binary) << text;
    (void)chmod(target.c_str(), static_cast<mode_t>(mode));
    return target;
}

std::string Installation::place(const std::string& source, const std::string& path) const {
    const files::path target = files::path(root) / path;
    files::create_directories(target.parent_path());
    files::remove(target);
    std::error_code notLinked;
    files::create_hard_link(rcp::test::seen(source), target, notLinked);
    if (notLinked) {
        files::copy_file(rcp::test::seen(source), target);
    }
    return target;
}

// A file is written again only after an edit, so that what a launch appends to it stays.
void Installation::writePropertyFiles() const {
    const std::string properties = joinLines(lines_);
    if (properties != writtenProperties_) {
        write(rcp + "/rcplauncher.properties", properties);
        writtenProperties_ = properties;
    }
    const std::string install = joinLines(installLines_);
    if (install != writtenInstall_) {
        for (const std::string& core : {base, base + "/config/user"}) {
            write(core + "/rcpinstall.properties", install);
        }
        writtenInstall_ = install;
    }
}

Command Installation::command(const Texts& arguments, const std::string& report,
                              const std::string& output) const {
    Command result;
    result.program = program;
    result.arguments = {programName.value_or(program)};
    if (!wrapper.empty()) {
        result.program = wrapper.front();
        result.arguments = wrapper;
        result.arguments.push_back(program);
    }
    result.arguments.insert(result.arguments.end(), arguments.begin(), arguments.end());
    result.environment = environment;
    result.environment["RCP_STANDIN_REPORT"] = report;
    result.folder = folder;
    result.privateTmp = tmp;
    result.output = output;
    result.user = user_;
    return result;
}

Launch Installation::collect(Process& process, const std::string& report,
                             const std::string& output) const {
    const Ending ending = process.wait(kLimit);
    Launch result;
    result.status = ending.status;
    result.signal = ending.signal;
    result.pid = process.pid();
    result.log = readFile(workspace + "/logs/rcplauncher.log");
    result.temporaryLog = readFile(tmp + "/rcplauncher.log");
    result.output = readFile(output);
    EXPECT_FALSE(ending.timedOut) << "the launch did not end in time\n" << result.log;
    EXPECT_NE(ending.status, 126) << result.output;
    if (fileExists(report)) {
        result.platform = parseReport(readFile(report));
        files::remove(report);
    }
    files::remove(output);
    return result;
}

Launch Installation::launch(const Texts& arguments) const {
    writePropertyFiles();
    const std::string number = std::to_string(++launches_);
    const std::string report = root + "/report" + number;
    const std::string output = root + "/output" + number;
    Process process(command(arguments, report, output));
    return collect(process, report, output);
}

Report Installation::start(const Texts& arguments) const {
    const Launch result = launch(arguments);
    EXPECT_EQ(result.status, 0) << "signal " << result.signal;
    EXPECT_TRUE(result.platform.has_value()) << "no platform was started\n--- log\n"
                                             << result.log << "--- temporary log\n"
                                             << result.temporaryLog << "--- output\n"
                                             << result.output;
    return result.platform.value_or(Report());
}

StayingLaunch Installation::startStaying(const Texts& arguments) const {
    writePropertyFiles();
    const std::string number = std::to_string(++launches_);
    const std::string report = root + "/report" + number;
    const std::string output = root + "/output" + number;
    const std::string marker = write("stay" + number, "");
    Command wanted = command(arguments, report, output);
    wanted.environment["RCP_STANDIN_STAY"] = marker;
    return {*this, std::make_unique<Process>(wanted), report, marker, output};
}

std::string Installation::hold() {
#ifdef ACCEPTANCE_STANDIN_HOLD
    std::string marker = write("hold", "");
    environment["RCP_STANDIN_HOLD"] = marker;
    environment["LD_PRELOAD"] = rcp::test::seen(ACCEPTANCE_STANDIN_HOLD);
    std::string& options = environment["ASAN_OPTIONS"];
    options += options.empty() ? "" : ":";
    options += "verify_asan_link_order=0";
    return marker;
#else
    return "";
#endif
}

bool isReached(const std::string& marker) {
    const auto end = std::chrono::steady_clock::now() + Installation::kLimit;
    while (!fileExists(marker + ".reached")) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

Texts Installation::logNames() const {
    Texts names;
    std::error_code missing;
    for (const auto& entry : files::directory_iterator(workspace + "/logs", missing)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

StayingLaunch::~StayingLaunch() {
    if (process_) {
        std::error_code ignored;
        files::remove(marker_, ignored);
    }
}

Report StayingLaunch::platform() {
    const auto end = std::chrono::steady_clock::now() + Installation::kLimit;
    while (!fileExists(report_)) {
        if (!process_->running() || std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "no platform came up\n" << readFile(output_);
            return {};
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return parseReport(readFile(report_));
}

std::optional<Report> StayingLaunch::reported() const {
    return fileExists(report_) ? std::optional(parseReport(readFile(report_))) : std::nullopt;
}

void StayingLaunch::waitUntilRecorded() {
    const std::string id = std::to_string(platform().pid) + " ";
    const auto end = std::chrono::steady_clock::now() + Installation::kLimit;
    while (!readFile(installation_->workspace + "/.rcp.lock").starts_with(id)) {
        if (std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "the platform's process id is not recorded";
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

Launch StayingLaunch::finish() {
    files::remove(marker_);
    return installation_->collect(*process_, report_, output_);
}

void StayingLaunch::kill() {
    process_->killProgram();
}

}  // namespace acceptance
