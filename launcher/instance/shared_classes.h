// Which directory may be emptied as a JVM's shared classes. The path comes from a file that the user
// can write, so whatever it names must be nobody's but the JVM's.
#pragma once

#include "launcher/inputs/launch_inputs.h"

#include <sys/types.h>

#include <optional>
#include <string>

namespace rcp {

/// What the decision is made from. All paths but the first are absolute and without links and dots;
/// an empty one is not known.
struct SharedClassesFacts {
    std::string named;  // as it is configured, without slashes at its end
    bool isLink = false;
    std::string resolved;  // what would be emptied
    uid_t owner = 0;
    uid_t user = 0;
    std::string home;
    std::string currentDirectory;
    std::string temporary;
    std::string usersTemporary;  // TMPDIR
    std::string installation;
    std::string workspace;
    std::string configuration;
};

/// The facts about `directory` in this process.
SharedClassesFacts sharedClassesFacts(const std::string& directory, const LaunchInputs& inputs);

/// Why the directory may not be emptied, to be read behind its path ("is the home directory");
/// nothing when it may. Looks at nothing but its argument.
std::optional<std::wstring> reasonNotToEmpty(const SharedClassesFacts& facts);

}  // namespace rcp
