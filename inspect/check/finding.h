// What check can find: the table of findings, and the findings of one installation.
#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace rcp::inspect {

enum class Level { kWarning, kError };

/// One kind of finding. Code and name never change their meaning: build steps depend on them.
struct FindingRule {
    const char* code;
    const char* name;
    Level level;
    const char* meaning;
    const char* remedy;
    const char* several = nullptr;  // "keys that nothing reads": what more of the kind are called
};

/// In the order of their codes. docs/findings.md lists the same.
std::span<const FindingRule> findingRules();
/// "error" or "warning".
const char* levelName(Level level);

/// In place of a file, of what a variable says.
inline constexpr char kEnvironmentPlace[] = "the environment";

/// For messages: the text in double quotes.
std::string inQuotes(std::wstring_view text);
std::string inQuotes(std::string_view text);

struct Finding {
    const FindingRule* rule;
    std::string file;  // relative to the installation when it lies in it; or kEnvironmentPlace
    std::size_t line;  // 0: the file as a whole
    std::string message;
};

class Findings {
  public:
    /// `code` must be one of the table's. What was added already is not added again.
    void add(std::string_view code, const std::string& file, std::size_t line,
             const std::string& message);
    /// In the order of file, line and code; the files in the order in which they were added.
    [[nodiscard]] std::vector<Finding> sorted() const;
    [[nodiscard]] std::size_t count(Level level) const;
    [[nodiscard]] bool has(std::string_view code) const;

  private:
    std::vector<Finding> findings_;
    std::set<std::tuple<std::string_view, std::string, std::size_t, std::string>> known_;
};

}  // namespace rcp::inspect
