// The text rules of property files: what of a line belongs to a key or value, and what kind of line
// it is.
#pragma once

#include <string>

namespace rcp {

/// Removes leading and trailing blanks (U+0020; tabs stay). A text of blanks alone stays as it is.
void trimString(std::wstring& text);
/// Trims a key.
void FilterProp(std::wstring& key);
/// Takes the escapes out of a value and trims it. "\\" is one backslash, "\uXXXX" the character of
/// that code; before anything else the backslash just goes away, so "\t" is the letter t. A NUL
/// escape ends the value.
void FilterValue(std::wstring& value);

/// Whether the line begins with "#" or "!".
bool isComment(const std::wstring& line);
/// Whether an odd number of backslashes ends the line. The first character is never counted, and an
/// empty line counts as one backslash: an empty line continues, a lone backslash does not.
bool isContinuationLine(const std::wstring& line);
/// Whether the line is to be dropped because its key is qualified for another operating system
/// ("key.win32=..."). A key qualified for this one loses the qualifier; the line stays.
bool processFilterKey(std::wstring& line);

}  // namespace rcp
