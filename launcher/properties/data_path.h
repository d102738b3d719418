// The repair of "rcp.data" values for users whose data folder was made by an earlier product
// generation under another name.
#pragma once

#include <string>

namespace rcp {

/// The value to store for a property whose key begins with "rcp.data": `value`, or the same with
/// the earlier folder name where only the folder of that name exists. The key is not used.
std::wstring getDataPath(const std::wstring& key, const std::wstring& value);

}  // namespace rcp
