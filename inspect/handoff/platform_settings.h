// The platform's settings as its main class puts them together: system properties, the user's config.ini or
// its master, and the one that it inherits from.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/handoff/platform_properties.h"
#include "launcher/command_line/plan.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace rcp::inspect {

struct SettingsFile {
    std::shared_ptr<const std::wstring> path;
    PlatformProperties entries = {};
    std::optional<std::size_t> malformed =
        {};              // the line for which the platform takes nothing of it
    bool isCut = false;  // it goes on behind what was read

    [[nodiscard]] Origin at(std::size_t line) const { return {path, line}; }
};

class PlatformSettings {
  public:
    PlatformSettings(const Examination& examination, const Plan& plan);

    struct Value {
        std::string text;
        Origin origin;  // of what is set nowhere the file in which it belongs
    };
    /// What counts for a key; empty when it is set nowhere.
    [[nodiscard]] Value valueOf(const std::string& key) const;
    /// The folder, as it is given or as it is taken when it is not.
    [[nodiscard]] Value installArea() const;
    /// The folder that the user's configuration inherits from; unknown where the platform chooses it itself.
    [[nodiscard]] std::string inheritedConfiguration() const;
    /// The user's, or its master while there is none, and the inherited one; empty without any.
    [[nodiscard]] const std::vector<SettingsFile>& files() const { return files_; }
    /// The installation's config.ini, which a launch copies where the user has none.
    [[nodiscard]] const std::wstring& master() const { return master_; }
    [[nodiscard]] const std::wstring& usersCopy() const { return usersCopy_; }
    /// Whether the framework's classes are taken from where they are compiled to, or named one by one.
    [[nodiscard]] bool hasOwnClassPath() const;

  private:
    void read(const std::wstring& path);
    [[nodiscard]] bool isHeardOfFiles(const std::string& key) const;

    const Examination& examination_;
    const Plan& plan_;
    std::wstring usersCopy_;
    std::wstring master_;
    std::vector<SettingsFile> files_;
};

}  // namespace rcp::inspect
