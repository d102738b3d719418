// Where the installation is: everything is found relative to the launcher's own executable.
#pragma once

#include "diagnostics/argument.h"

#include <optional>
#include <string>

namespace rcp {

/// The launcher's executable as it was started: this process's own, unless a program that explains
/// another's launch has named one.
std::string launcherExecutable();
void setLauncherExecutable(std::string path);

/// The launcher's absolute path without links. Ends the launch when the system cannot
/// tell.
std::string read_executable_path();
/// The launcher path configured as "mlauncher.path" in "rcplauncher.plist" beside the executable
/// (as it was started), provided it is executable; otherwise the executable's own path.
std::string read_mlauncher_path();
/// read_mlauncher_path, widened.
std::wstring getLauncherPath();

/// The folder of the executable.
std::wstring findCommand();
/// That folder; none where it is the root or its name is no text of the locale.
std::optional<std::wstring> getRCPDirectory();
/// The installation directory:
///
///   folder of the executable --named "rcp"--> its parent --sibling "Eclipse"--> + "/../Eclipse"
///
/// The last form stays unnormalised; it is the bundle layout with the executable in one folder and
/// the platform in the sibling folder Eclipse. Ends the launch when there is none.
std::wstring getInstallDir();

/// `path` made absolute against the working directory. Already absolute paths are returned
/// untouched; so are the two other forms that count as absolute, "\\?\..." and "\\...". Ends the
/// launch for a path that still begins with a placeholder and when the system cannot form the
/// path.
std::wstring convert_from_relative_location(const std::wstring& path, const Origin& origin = {});

}  // namespace rcp
