// What keeps the system from starting a program or loading a library, told without doing either.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct StartFault {
    int error = 0;       // that execv(2) fails with
    std::string reason;  // in words
};
std::optional<StartFault> startFault(const std::string& path);

/// Why dlopen(3) of a library, or finding one of the entry points in it, fails; `variable` is the value of
/// LD_LIBRARY_PATH for it.
std::optional<std::string> loadFault(const std::string& path,
                                     std::span<const char* const> entryPoints,
                                     const std::string& variable);

/// Whether a program needs a library whose name begins so.
bool needsLibrary(const std::string& program, std::string_view start);

/// The libraries that a program needs and that are nowhere.
std::vector<std::string> missingLibraries(const std::string& path, const std::string& variable);

}  // namespace rcp::inspect
