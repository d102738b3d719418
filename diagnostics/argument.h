// Texts that remember where they came from: for whoever explains a launch, and because the launcher
// trusts what a file of the installation says and not what the command line says.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rcp {

/// A place: line `line` of `file`, or all of it (line 0); without a file the argument number `line`
/// of the command line; without either the launcher's own making.
struct Origin {
    /// Instead of a line: the variable HOME.
    static constexpr std::size_t kHome = static_cast<std::size_t>(-1);

    std::shared_ptr<const std::wstring> file;
    std::size_t line = 0;

    [[nodiscard]] bool isCommandLine() const { return !file && line > 0 && line != kHome; }
    [[nodiscard]] bool isComputed() const { return !file && line == 0; }
    bool operator==(const Origin& other) const {
        return line == other.line &&
               (file == other.file || (file && other.file && *file == *other.file));
    }
};

inline Origin wholeFile(std::wstring_view path) {
    return {std::make_shared<const std::wstring>(path), 0};
}

/// A reason in words, for whoever explains a launch. There is one table of them
/// (diagnostics/whys.h), and arguments point into it.
struct Why {
    const char* text;
};

/// An argument of the launcher's or of what it launches: a text, and what is known of it.
struct Argument {
    Argument() = default;
    Argument(std::wstring words, Origin from = {})
        : text(std::move(words)), origin(std::move(from)) {}
    Argument(const wchar_t* words) : text(words) {}
    Argument(std::wstring_view words) : text(words) {}

    /// Of the texts alone.
    bool operator==(const Argument& other) const { return text == other.text; }
    template <std::convertible_to<std::wstring_view> Text>
    bool operator==(const Text& other) const {
        return text == std::wstring_view(other);
    }

    std::wstring text;
    Origin origin;
    /// Why it is an element, where the launcher has put it in by a rule of its own, or why it was dropped.
    const Why* why = nullptr;
};

/// The launcher's arguments or those of what it starts, the program path first.
using Arguments = std::vector<Argument>;

}  // namespace rcp
