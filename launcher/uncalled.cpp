#include "launcher/uncalled.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "base/unique_fd.h"
#include "diagnostics/svc_debug.h"
#include "launcher/properties/java_properties.h"
#include "launcher/vocabulary/options.h"
#include "platform/process.h"
#include "platform/whole_file.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>

namespace rcp {
namespace {

constexpr char kDeploymentLibrary[] = "./lockdown.so";
constexpr char kRequestFile[] = "/tmp/obx_shutdown";

// The request is one record of two fixed fields, the rest of each filled with zeros.
struct ShutdownRequest {
    char command[256];
    char argument[256];
};

[[noreturn]] void endDesktopSession() {
    runProgram({"killall", "gnome-session"});
    exit(1);
}

// Everybody can write in /tmp, so a link planted under the name is never followed.
bool writeShutdownRequest() {
    const ShutdownRequest request{"shutdown", "1"};
    const UniqueFd file(calls::open(
        kRequestFile, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
    return file &&
           writeFully(file.get(), {reinterpret_cast<const char*>(&request), sizeof request});
}

}  // namespace

bool isInitMUService(const Arguments& arguments) {
    return hasOption(options::kInitMuService, arguments);
}

bool isDCommandOnly(const Arguments& arguments) {
    return hasOption(options::kCommandOnly, arguments);
}

bool isPipeDaemonCommand() {
    return false;
}

InstallKind SetInstallConfiguration(const PropertyList& properties, ServiceInit serviceInit) {
    const InstallConfiguration named = installConfigurationOf(properties);
    return {.eConfig = serviceInit == ServiceInit::kYes
                           ? InstallConfiguration::kMultiuserServiceInit
                           : named,
            .isLockdown = named == InstallConfiguration::kLockdown};
}

bool isLockdownConfig(const InstallKind& kind) {
    return kind.isLockdown;
}

std::wstring getPipeFilePath(const std::wstring& workspace) {
    return workspace + L"/.pipe";
}

std::optional<std::wstring> getPipeName(const std::wstring& workspace) {
    const std::wstring path = getPipeFilePath(workspace);
    const std::optional<FileText> file = readText(path);
    TextLines lines{file ? file->bytes : std::string_view()};
    std::wstring name;
    return readFile(lines, kPropertyLineFormat, name) ? std::optional(name) : std::nullopt;
}

bool isDirtyShutdown() {
    return false;
}

bool isJavaw(const std::wstring& jvm, const std::wstring& name) {
    if (!exists(jvm)) {
        fatal(because(errno), messages.vmMissing, jvm);
    }
    return jvm.ends_with(name);
}

std::wstring replaceJavaExecutableName(const std::wstring& jvm, const std::wstring& name,
                                       const std::wstring& replacement) {
    return jvm.ends_with(name) ? jvm.substr(0, jvm.size() - name.size()) + replacement : jvm;
}

std::wstring convWcharTo8859_1(std::wstring_view key, std::wstring_view value) {
    return convWcharTo8859_1_Key(key) + L'=' + convWcharTo8859_1_Value(value);
}

wchar_t* initMemString(wchar_t* destination, const wchar_t* source) {
    return wcscat(destination, source);
}

void convertS2BS(std::wstring& text) {
    std::replace(text.begin(), text.end(), L'/', L'\\');
}

Stream open_wfile(const std::wstring& path, const std::wstring& mode) {
    return open_file(path, mode);
}

Removed removeFileWithPatternFromDirectory(const std::wstring& directory,
                                           const std::wstring& pattern) {
    return removeDirectoryContents(directory, pattern);
}

bool writePropertyListToFile(const platform::PropertyListDocument& list, const std::wstring& path) {
    const std::string xml = list.toXml();
    WholeFile file(path);
    return !xml.empty() && file.open() && file.write(xml) && file.commit();
}

bool userIsAdmin(const std::wstring& /*user*/) {
    return getuid() == 0;
}

void SvcDebugLastError(std::wstring_view message) {
    SvcDebugOutW(message, std::wstring_view());
}

void SvcDebugLastError(std::wstring_view format, std::wstring_view argument) {
    SvcDebugOutW(format, argument);
}

void Output(std::string_view format, std::span<const FormatArgument> arguments) {
    SvcDebugOutA(format, arguments);
}

bool logoff() {
    void* library = dlopen(kDeploymentLibrary, RTLD_LAZY);
    if (library == nullptr) {
        endDesktopSession();
    }
    const auto entryPoint = reinterpret_cast<bool (*)()>(dlsym(library, "logoff"));
    if (entryPoint == nullptr) {
        endDesktopSession();
    }
    const bool result = entryPoint();
    dlclose(library);
    return result;
}

bool shutdown() {
    return writeShutdownRequest() && logoff();
}

void getCmdString(const Arguments& /*arguments*/) {}

void setSemVersion(const wchar_t* /*version*/) {}

}  // namespace rcp
