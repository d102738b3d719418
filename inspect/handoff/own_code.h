// Programs and libraries as this system and machine would take them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct OwnCode {
    std::string machine;  // for which it is; several have blanks between them
    bool isForThisMachine = false;
    bool isEmulated = false;  // a program for another machine that runs here all the same
    bool isLibrary = false;
    std::string interpreter = {};
    std::vector<std::string> libraries = {};  // that it needs
    std::vector<std::string> searchPaths = {};
    // In the file that was read; none: it does not tell them.
    std::optional<std::vector<std::string_view>> symbols = {};
};

/// ".so"
extern const char* const kLibraryEnding;

/// By its first bytes.
bool looksLikeOwnCode(std::string_view start);

/// None for what is no code of this system, or damaged.
std::optional<OwnCode> readOwnCode(std::string_view file);

/// Where the loader finds a library that `loader` needs: along its search paths, along `variable`, the
/// value of LD_LIBRARY_PATH, and among the system's. Empty when it is nowhere.
std::string findLibrary(const std::string& name, const OwnCode& loader, const std::string& path,
                        const std::string& variable);

}  // namespace rcp::inspect
