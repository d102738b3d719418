// Who the user is: home folders, names and the host, wherever they stand in a text.
#pragma once

#include "inspect/redaction/salted_digest.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// Whose report it is. What is empty is not looked for.
struct Identity {
    std::vector<std::string> homes;
    std::vector<std::string> users;
    std::vector<std::string> hosts;
};
/// Of the user of this process, and of who has become him by sudo(8). A superuser's name is that of many.
Identity identityOfThisProcess();

/// Whether a name stands there as a word.
bool isWord(std::string_view text, std::size_t begin, std::size_t end);

/// "/home/<user>", "<user>" and "<host>" in their places, and digests in place of other users' homes. What was
/// replaced is told to `count`.
std::string withoutIdentity(std::string text, const Identity& identity, const Salt& salt,
                            const std::function<void(const char* what)>& count);

}  // namespace rcp::inspect
