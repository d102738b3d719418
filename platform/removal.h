// Removal of directory trees. A removal never stops at the first failure: it goes on and returns
// the whole list of failures as text, one line each, for the caller to report.
//
// A symbolic link is removed like a file, and nobody looks at where it leads: its target belongs to
// somebody else. In the place of the directory itself it is a failure, whether or not slashes or
// "/." follow its name.
#pragma once

#include <string>

namespace rcp {

/// Deletes everything below `directory` and keeps the directory. The wide form sets `errors`, the
/// narrow ones append to it. `indentation` stands in front of each line and grows by two blanks a
/// level; `pattern` "*" is every file, any other a substring of the file's name.
bool removeDirectoryContents(const std::wstring& directory, std::wstring& errors);
bool removeDirectoryContents(const std::string& directory, std::string& errors,
                             const std::string& indentation);
bool removeDirectoryContents(const std::string& directory, const std::string& pattern,
                             std::string& errors, const std::string& indentation);

/// Deletes everything below `directory`, then `directory` itself.
bool removeDirectoryAndContents(const std::wstring& directory, std::wstring& errors);
/// The same for `directory`, elements joined by single slashes, below `folder`: links may lead to
/// `folder`, and none is followed from there on.
bool removeDirectoryBelow(const std::wstring& folder, const std::wstring& directory,
                          std::wstring& errors);

}  // namespace rcp
