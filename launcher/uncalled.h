// What belongs to the launcher's interface though no launch calls it.
#pragma once

#include "launcher/inputs/arguments.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/properties/property_list.h"

#include <optional>
#include <string>

namespace rcp {

bool isInitMUService(const Arguments& arguments);  // "-initMUService"
bool isDCommandOnly(const Arguments& arguments);   // "-dcommand_only"
/// No launch is one.
bool isPipeDaemonCommand();
/// The install configuration of a launch that may be the multi-user service's initialisation: that counts
/// whatever the property says, and the lockdown flag tells the property all the same.
enum class ServiceInit { kNo, kYes };
struct InstallKind {
    InstallConfiguration eConfig = InstallConfiguration::kUnknown;
    bool isLockdown = false;
};
InstallKind SetInstallConfiguration(const PropertyList& properties, ServiceInit serviceInit);
bool isLockdownConfig(const InstallKind& kind);

/// The file that names the platform's pipe, and the name in it; none without one.
std::wstring getPipeFilePath(const std::wstring& workspace);
std::optional<std::wstring> getPipeName(const std::wstring& workspace);
/// Nothing marks a shutdown as dirty: always false.
bool isDirtyShutdown();

/// Whether the JVM path ends in `name`. Ends the launch when no such executable exists.
bool isJavaw(const std::wstring& jvm, const std::wstring& name);
/// The JVM path with its ending `name` replaced by `replacement`; any other path as it is.
std::wstring replaceJavaExecutableName(const std::wstring& jvm, const std::wstring& name,
                                       const std::wstring& replacement);

/// Both do nothing.
void getCmdString(const Arguments& arguments);
void setSemVersion(const wchar_t* version);

}  // namespace rcp
