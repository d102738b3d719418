// Where each text of a launch comes from, with the entries of every property file that was read.
#pragma once

#include "inspect/explain/witness.h"
#include "launcher/inputs/arguments.h"

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rcp::inspect {

/// Text of the launcher's as UTF-8 for JSON.
nlohmann::json jsonText(std::wstring_view text);

class Sources {
  public:
    explicit Sources(const Witness& witness);

    [[nodiscard]] const std::vector<ReadFile>& files() const { return files_; }
    /// The file of that path; null when it was not read.
    [[nodiscard]] const ReadFile* file(const std::wstring& path) const;
    /// The entry at a place; null when there is none.
    [[nodiscard]] const Property* entryAt(const Origin& origin) const;
    /// Whether the launcher looks for the entry's key in its file.
    [[nodiscard]] bool counts(const Property& entry) const;

    /// SOURCE of the layout.
    [[nodiscard]] nlohmann::json describe(const Origin& origin) const;

  private:
    const std::vector<ReadFile>& files_;
    std::map<Place, const Property*> byPlace_;
};

}  // namespace rcp::inspect
