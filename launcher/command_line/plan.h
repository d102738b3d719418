// What a launch comes to: the complete command line for the hand-off, in final order, and the environment.
#pragma once

#include "launcher/inputs/traits.h"
#include "launcher/vocabulary/options.h"

#include <string>
#include <vector>

namespace rcp {

/// File name of the Eclipse launcher library.
inline constexpr wchar_t ECLIPSE_SO_NAME_DEFAULT[] = L"eclipse_1615.so";

// What the rest of the system knows these options by.
inline constexpr OptionName CONSOLEARG = options::kConsole;
inline constexpr OptionName DEBUGARG = options::kDebug;
inline constexpr OptionName PB4LARG = options::kPb4l;

class CommandLine {
  public:
    explicit CommandLine(Start start = Start::kOrdinary) : start_(start) {}

    /// The program's path becomes the only element.
    void setProgram(Argument path, const Why& why);
    /// Appends an argument as it is. On a restart "-debug" and "-console" are dropped: a restarted platform
    /// never gets a debug console.
    void add(Argument argument);
    /// Appends an argument that is there by this rule, unless it brings its own.
    void add(Argument argument, const Why& why);
    /// Appends an option and its value, both by this rule.
    void add(Argument option, Argument value, const Why& why);
    void setLibrary(const std::wstring& path) { library_ = path; }

    /// Element 0 is the program path.
    [[nodiscard]] const Arguments& arguments() const { return arguments_; }
    /// Full path of the launcher library; empty when the hand-off needs none.
    [[nodiscard]] const std::wstring& library() const { return library_; }

  private:
    Start start_;
    Arguments arguments_;
    std::wstring library_;
};

/// One step from the launcher's environment to that of what it starts.
struct EnvironmentChange {
    enum Kind { kSet, kUnset, kPreload };
    Kind kind = kSet;
    std::wstring name;  // of a preloaded library: the install id, which tells its link from others
    std::wstring value;
    Origin origin;
    Arguments parts = {};  // of a value that is put together

    bool operator==(const EnvironmentChange&) const = default;
};
/// In the order in which they are made.
using EnvironmentChanges = std::vector<EnvironmentChange>;

enum class LaunchKind {
    kPlatform,
    kUserProvisioning,       // a first launch or a new provisioning level
    kInstallerProvisioning,  // asked for by an installer
};

/// What a launch is going to do.
struct Plan {
    LaunchKind kind = LaunchKind::kPlatform;
    CommandLine line;
    EnvironmentChanges environment;
};

}  // namespace rcp
