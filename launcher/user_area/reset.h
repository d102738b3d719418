// A fresh configuration area for an existing user, keeping what must survive: the update registry
// and bookmarks, and for reuse the previous platform.xml.
//
//   1. copy the saved files into the workspace as NAME.old
//   2. move the configuration directory to its name + "bak"
//   3. make the update directory anew
//   4. move the saved files back
//
// Nothing is rolled back: after a failure behind step 2 the configuration is in the "bak" directory
// and the saved files are in the workspace.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <optional>
#include <string>

namespace rcp {

/// For an installation that has been replaced by another. Failures end the launch.
void createReusableWorkspace(const std::wstring& workspace, const std::wstring& configuration);

/// For "-resetconfig"; also clears the plug-in directories named by "resetDir." properties.
void resetWorkspace(const LaunchInputs& inputs, const std::wstring& base);
void resetMetaDataDirs(const LaunchInputs& inputs, const std::wstring& base);

/// A file of a directory; an empty name stands for the directory itself.
struct CopyPlace {
    std::wstring directory;
    std::wstring name;
};

/// Whether the launch goes on without the source.
enum class Need { kOptional, kRequired };
/// Whether the source stays.
enum class Transfer { kCopy, kMove };

/// Brings `source` to `target`, replacing what is there. A missing source ends the launch only when
/// it is required; every other failure always does.
void handleCopy(const CopyPlace& target, const CopyPlace& source, Need need, Transfer transfer);
void handleFileMove(const CopyPlace& target, const CopyPlace& source, Need need);
void handleDirMove(const std::wstring& target, const std::wstring& source, Need need);

/// For "-config NAME": the value of "config.NAME.restartExe.macosx", if there is one, with its first
/// "${rcp.home}" replaced. None otherwise.
std::optional<std::wstring> getRestartExe(const Arguments& arguments,
                                          const PropertyList& properties,
                                          const std::wstring& rcpHome);

}  // namespace rcp
