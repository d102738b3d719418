// Launches of somebody else: with his variables, his home, his name and his locale.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace rcp::inspect {

/// What is empty stays as it is for the user of this process. Permissions are his in any case.
struct OtherUser {
    std::string environmentFile;  // as env(1) prints: the only variables there are
    std::string home;
    std::string name;
    std::string locale;
};

struct Became {
    std::map<std::string, std::size_t> lines = {};  // of the variables in the environment file
    std::string problem = {};                       // why he could not be become; else empty
};

/// From here on the environment of this process is that of the user.
Became become(const OtherUser& user);

}  // namespace rcp::inspect
