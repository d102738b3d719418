// The facts that differ between macOS and Linux, and nothing else. Everything that POSIX gives both
// systems lives in the shared files of this folder; platform/macos/ and platform/linux/ each
// implement exactly the functions declared here.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace rcp::platform {

/// The running executable's path as it was started: links are not resolved, so the name and the
/// folder are those the user or the desktop asked for. Absolute. Empty, with errno set, when the
/// system cannot tell. macOS: _NSGetExecutablePath(3). Linux: getauxval(3) AT_EXECFN joined to the
/// working directory of the first call, else the target of /proc/self/exe.
std::string executablePathAsStarted();

/// Whether the system knows this process's executable under `path`, which then has no links. Told without
/// a look at each folder on the way; false also where the system does not tell. Linux: the target of
/// /proc/self/exe. macOS: never.
bool isOwnExecutable(const std::string& path);

/// The executable that a live process runs: absolute, without links, under the name that it was
/// started by even when that is gone or another file's by now. Empty optional when there is no such
/// process or the system does not tell. macOS: proc_pidpath. Linux: the target of /proc/PID/exe.
std::optional<std::string> executableOfProcess(pid_t process);

/// When a live process was started, as a text without blanks that no other process of that id ever
/// had or gets, after the next start of the system neither. A process keeps it when it replaces its
/// program. Empty optional when there is no such process, it has ended but was not yet waited for,
/// or the system does not tell. macOS: proc_pidinfo. Linux: /proc/PID/stat and the id of the
/// system's start.
std::optional<std::string> startOfProcess(pid_t process);

/// The system's product version such as "10.15.7"; empty where there is none (Linux).
/// macOS: sysctlbyname(3) "kern.osproductversion".
std::string productVersion();

/// The character-type locale that stands in when the environment asks for "C".
extern const char* const kUtf8LocaleName;

/// `path` made absolute against `base` (an absolute directory) without touching the file system:
/// "ws", "./ws" and "ws/" under "/Users/a b" all give "/Users/a b/ws", "a/../b" gives
/// "/Users/a b/b", "../x" gives "/Users/x", "a//b" keeps its empty element, "." gives the base.
/// Links are not resolved and no character of a name is special. An absolute `path` is returned
/// untouched. Empty optional when the system cannot form the path.
std::optional<std::string> absolutePath(const std::string& base, const std::string& path);

/// Whether two UTF-8 texts are equal when case is ignored, letters outside ASCII included.
bool equalIgnoringCase(const std::string& left, const std::string& right);

/// A parsed property list (the system's own format, XML or binary). Owns what it parsed.
class PropertyListDocument {
  public:
    struct Native;
    explicit PropertyListDocument(std::unique_ptr<Native> native);
    PropertyListDocument(PropertyListDocument&&) noexcept;
    PropertyListDocument& operator=(PropertyListDocument&&) noexcept;
    PropertyListDocument(const PropertyListDocument&) = delete;
    PropertyListDocument& operator=(const PropertyListDocument&) = delete;
    ~PropertyListDocument();

    /// Whether the top of the list is a dictionary; the three calls below need one.
    [[nodiscard]] bool isDictionary() const;
    /// The UTF-8 text stored under `key`; empty optional when it is missing or no string.
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
    /// Whether "true" is stored under `key`, no text or number.
    [[nodiscard]] bool isTrue(const std::string& key) const;
    /// Stores `value` under `key` in memory, replacing what stood there.
    void setString(const std::string& key, const std::string& value);
    /// The whole list in XML form; empty when the system cannot write it.
    [[nodiscard]] std::string toXml() const;

  private:
    std::unique_ptr<Native> native_;
};

/// What the lists that a launch reads may have; they are a few kilobytes.
inline constexpr std::size_t kMaxPropertyListBytes = std::size_t{1} << 20;

/// Parses `data` (the bytes of a property-list file). Empty optional when they are not a property
/// list, more than `mostBytes`, or one nested so deeply that reading it would not be safe.
std::optional<PropertyListDocument> parsePropertyList(
    const std::string& data, std::size_t mostBytes = kMaxPropertyListBytes);

}  // namespace rcp::platform
