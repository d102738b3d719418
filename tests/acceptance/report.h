// What the stand-in platform recorded about its own start.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace acceptance {

using Texts = std::vector<std::string>;

struct Report {
    std::string kind;  ///< "exec": started as a program; "library": called inside the launcher
    pid_t pid = 0;
    std::string folder;  ///< working directory
    long argc = -1;
    Texts arguments;                   ///< the whole command line, program included
    std::string library;               ///< the library path that was handed over
    long runArgc = -1;                 ///< the second entry point's count ...
    Texts runArguments;                ///< ... and arguments
    std::optional<Texts> vmArguments;  ///< its third argument; none for a null pointer
    std::map<std::string, std::string> environment;  ///< without what the tests add
    std::map<int, std::string> descriptors;          ///< open ones, with what they refer to

    /// Position of the first argument equal to `argument`, or -1.
    [[nodiscard]] int indexOf(const std::string& argument) const;
    [[nodiscard]] bool has(const std::string& argument) const { return indexOf(argument) != -1; }
    [[nodiscard]] int count(const std::string& argument) const;
    /// The argument behind the first `option`; "(none)" when there is none.
    [[nodiscard]] std::string after(const std::string& option) const;
    /// The arguments from position `from` up to, not including, the first `end` behind it.
    [[nodiscard]] Texts between(const std::string& begin, const std::string& end) const;
    /// The arguments behind the last `option`.
    [[nodiscard]] Texts behind(const std::string& option) const;
    /// The variable's value; "(unset)" when there is none.
    [[nodiscard]] std::string variable(const std::string& name) const;
};

/// Reads one report; throws std::runtime_error when the text is none.
Report parseReport(const std::string& text);

}  // namespace acceptance
