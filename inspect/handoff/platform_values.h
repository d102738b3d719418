// How the platform's configuration writes what it names: lists, URLs, start levels, bundles without version.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace rcp::inspect {

std::string trimmed(const std::string& text);
/// The trimmed parts between the separators.
std::vector<std::string> splitAt(char separator, const std::string& text);
/// Takes `start` off `text`; whether it was there.
bool take(const std::string& start, std::string& text);
/// The path of a "file:" URL; another text as it stands.
std::string withoutScheme(std::string text);
/// Whether a value is one that the platform replaces itself, or stands for a folder of its own choice.
bool isUnknown(const std::string& text);
/// A start level of at least 1; nothing for another text.
std::optional<int> startLevel(const std::string& text);
std::string joined(const std::string& folder, const std::string& path);

/// Folders whose entries' names are asked for as often as there are bundles; each is read once.
class Folders {
  public:
    /// A bundle by the beginning of its file's path: alone, with ".jar", or with a version; empty when there is none.
    std::string find(const std::string& path);
    /// The same for the framework, which may have a version behind "_" and no other ending.
    std::string findFramework(const std::string& path);

  private:
    std::string find(const std::string& path, const std::vector<std::string>& endings,
                     const std::vector<std::string>& separators);
    const std::set<std::string>& namesIn(const std::string& folder);

    std::map<std::string, std::set<std::string>> names_;
};

}  // namespace rcp::inspect
