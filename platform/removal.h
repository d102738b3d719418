// Removal of directory trees. A removal never stops at the first failure: it goes on and returns
// the whole list of failures as text, one line each, for the caller to report.
//
// A symbolic link is removed like a file, and nobody looks at where it leads: its target belongs to
// somebody else. In the place of the directory itself it is a failure, whether or not slashes or
// "/." follow its name.
#pragma once

#include <string>

namespace rcp {

inline constexpr wchar_t kEveryFile[] = L"*";

/// What became of a removal.
struct Removed {
    bool isComplete = false;  // nothing failed at the top level
    std::wstring failures;    // one line each
};

/// Deletes everything below `directory` and keeps the directory. With a `pattern` only the files whose names
/// contain it; directories on the way go too when nothing is left in them and are reported when something is.
Removed removeDirectoryContents(const std::wstring& directory,
                                const std::wstring& pattern = kEveryFile);

/// Deletes everything below `directory`, then `directory` itself.
Removed removeDirectoryAndContents(const std::wstring& directory);
/// The same for `directory`, elements joined by single slashes, below `folder`: links may lead to
/// `folder`, and none is followed from there on.
Removed removeDirectoryBelow(const std::wstring& folder, const std::wstring& directory);

}  // namespace rcp
