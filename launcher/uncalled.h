// What belongs to the launcher's interface though no launch calls it.
#pragma once

#include "diagnostics/format.h"
#include "launcher/inputs/arguments.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/properties/property_list.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "platform/removal.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

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

/// Escaped key, "=", escaped value; propertyLines, which launches call, keeps the line's length too.
std::wstring convWcharTo8859_1(std::wstring_view key, std::wstring_view value);

/// Appends `source` to `destination`, which has room for it, and returns it.
wchar_t* initMemString(wchar_t* destination, const wchar_t* source);
/// Every "/" becomes a backslash, in place.
void convertS2BS(std::wstring& text);

/// The same as open_file.
Stream open_wfile(const std::wstring& path, const std::wstring& mode);
/// The same as removeDirectoryContents.
Removed removeFileWithPatternFromDirectory(const std::wstring& directory,
                                           const std::wstring& pattern);
/// Writes `list` as XML in place of the file at `path`, as a whole and with the old file's
/// permissions. False, with errno set, when it cannot be written; the old file is then untouched.
bool writePropertyListToFile(const platform::PropertyListDocument& list, const std::wstring& path);

/// Whether the real user is root, whatever the argument.
bool userIsAdmin(const std::wstring& user);

/// The same as SvcDebugOutW; no system error text is added.
void SvcDebugLastError(std::wstring_view message);
void SvcDebugLastError(std::wstring_view format, std::wstring_view argument);
/// The same as SvcDebugOutA.
void Output(std::string_view format, std::span<const FormatArgument> arguments);

/// The result of the entry point "logoff" of a locked-down deployment's library "./lockdown.so". Without
/// library or entry point the desktop session is ended and the process exits with status 1.
bool logoff();
/// Writes the shutdown request file, then logoff(). False when the file cannot be written.
bool shutdown();

/// Both do nothing.
void getCmdString(const Arguments& arguments);
void setSemVersion(const wchar_t* version);

}  // namespace rcp
