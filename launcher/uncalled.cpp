#include "launcher/uncalled.h"

#include "diagnostics/svc_debug.h"
#include "platform/files.h"

#include <errno.h>

namespace rcp {

bool isInitMUService(const Arguments& arguments) {
    return hasOption(L"-initMUService", arguments);
}

bool isDCommandOnly(const Arguments& arguments) {
    return hasOption(L"-dcommand_only", arguments);
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
    const Stream stream = exists(path) ? open_file(path, L"r") : nullptr;
    std::wstring name;
    const bool isRead = stream && readFile(*stream, kPropertyLineFormat, name);
    return isRead ? std::optional(name) : std::nullopt;
}

bool isDirtyShutdown() {
    return false;
}

bool isJavaw(const std::wstring& jvm, const std::wstring& name) {
    if (!exists(jvm)) {
        fatal(because(errno), "ZYPRA0003E: Specified vm (%ls) does not exist!", jvm);
    }
    return jvm.ends_with(name);
}

std::wstring replaceJavaExecutableName(const std::wstring& jvm, const std::wstring& name,
                                       const std::wstring& replacement) {
    return jvm.ends_with(name) ? jvm.substr(0, jvm.size() - name.size()) + replacement : jvm;
}

void getCmdString(const Arguments& /*arguments*/) {}

void setSemVersion(const wchar_t* /*version*/) {}

}  // namespace rcp
