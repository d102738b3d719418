// The debug marker file: while it exists every launch of the installation is a debugging one, and waits.
#pragma once

#include <optional>
#include <string>

namespace rcp {

/// Its path, if it is there now.
std::optional<std::wstring> debugFile(const std::wstring& installDir);

/// Waits in steps of one second while a marker that was there still is. There is no limit: a debugger may
/// be being attached.
void waitForDeletionOfDebugFile(const std::optional<std::wstring>& debugFile);

}  // namespace rcp
