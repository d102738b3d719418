// Launches of somebody else: with his variables, his home, his name and his locale.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace rcp::inspect {

/// What is empty stays as it is for the user of this process. Permissions are his in any case.
struct OtherUser {
    std::string environmentFile;  // as env(1) prints: the only variables there are
    std::map<std::string, std::size_t> lines = {};  // of the variables in it, once they are his
    std::string home;
    std::string name;
    std::string locale;
};

/// From here on the environment of this process is that of the user. What is wrong when it cannot be; else empty.
std::string become(OtherUser& user);

}  // namespace rcp::inspect
