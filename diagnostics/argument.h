// Texts that remember where they came from. A launch carries the origin along and decides nothing by
// it; it is there for whoever explains a launch.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace rcp {

/// A place: line `line` of `file`, or all of it (line 0); without a file the argument number `line`
/// of the command line; without either the launcher's own making.
struct Origin {
    std::shared_ptr<const std::wstring> file;
    std::size_t line = 0;
};

/// An argument of the launcher's or of what it launches.
struct Argument : std::wstring {
    using std::wstring::wstring;
    Argument() = default;
    Argument(std::wstring text, Origin from = {})
        : std::wstring(std::move(text)), origin(std::move(from)) {}

    Origin origin;
};

}  // namespace rcp
