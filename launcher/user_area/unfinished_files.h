// What a launch that was killed may have left on the way to its place.
#pragma once

#include <string>

namespace rcp {

/// The file that tells of such names.
std::wstring unfinishedNoteOf(const std::wstring& workspace);

/// Removes the temporary names of every file that a launch writes into the user's area. Only the
/// main launcher may do so: no other launch of the same workspace is at work meanwhile. Whether all are
/// gone.
bool removeUnfinishedFiles(const std::wstring& workspace, const std::wstring& configuration);

}  // namespace rcp
