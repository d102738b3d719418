// The complete command line for the hand-off, in final order.
#pragma once

#include "launcher/core/arguments.h"

#include <string>

namespace rcp {

/// File name of the Eclipse launcher library.
inline constexpr wchar_t ECLIPSE_SO_NAME_DEFAULT[] = L"eclipse_1615.so";

inline constexpr wchar_t CONSOLEARG[] = L"-console";
inline constexpr wchar_t DEBUGARG[] = L"-debug";
inline constexpr wchar_t PB4LARG[] = L"-pb4l";

/// What kind of start a launch is: the user's, or that of a platform that restarts itself.
enum class Start { kOrdinary, kRestart };

class CommandLine {
  public:
    explicit CommandLine(Start start = Start::kOrdinary) : start_(start) {}

    /// The program's path becomes the only element.
    void setProgram(const Argument& path) { arguments_.assign(1, path); }
    /// Appends an argument. On a restart "-debug" and "-console" are dropped: a restarted platform never
    /// gets a debug console.
    void add(const Argument& argument);
    /// Appends an option and its value.
    void add(const Argument& option, const Argument& value);
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

}  // namespace rcp
