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
    /// Reads the files that `witness` has seen once more, as they are now.
    explicit Sources(const Witness& witness);

    struct File {
        std::wstring path;
        PropertyList entries;  // as written, placeholders and all
    };
    [[nodiscard]] const std::vector<File>& files() const { return files_; }
    /// The file of that path; null when it was not read.
    [[nodiscard]] const File* file(const std::wstring& path) const;
    /// The entry at a place; null when there is none.
    [[nodiscard]] const Property* entryAt(const Origin& origin) const;
    /// The entries of a key in the order in which the files were read, less those of files in which
    /// the launcher does not look for it.
    [[nodiscard]] std::vector<const Property*> entriesOf(const std::wstring& key) const;
    /// Whether the launcher looks for the entry's key in its file.
    [[nodiscard]] bool counts(const Property& entry) const;

    /// SOURCE of the layout.
    [[nodiscard]] nlohmann::json describe(const Origin& origin) const;

  private:
    std::vector<File> files_;
    std::map<std::pair<std::wstring, std::size_t>, const Property*> byPlace_;
    std::map<std::wstring, std::vector<const Property*>> byKey_;
};

}  // namespace rcp::inspect
