// What a rehearsed launch looked at.
#pragma once

#include "diagnostics/observer.h"
#include "launcher/properties/property_list.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace rcp::inspect {

struct Replacement {
    std::wstring before;
    std::wstring placeholder;  // a standard one whole, of a user's only the name
    std::wstring value;
    std::wstring after;
};

class Witness : public Observer {
  public:
    void propertyFileRead(const std::wstring& path) override;
    void propertyFound(const Property& entry) override;
    void placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                             const std::wstring& value, const std::wstring& after) override;

    /// The property files in the order in which they were first read.
    [[nodiscard]] const std::vector<std::wstring>& files() const { return files_; }
    /// Whether a look-up found the entry of this place.
    [[nodiscard]] bool wasFound(const std::wstring& file, std::size_t line) const;
    /// What was replaced on the way from `text` to what became of it.
    [[nodiscard]] std::vector<Replacement> replacementsFrom(const std::wstring& text) const;

  private:
    std::vector<std::wstring> files_;
    std::set<std::pair<std::wstring, std::size_t>> found_;
    std::vector<Replacement> replacements_;
};

}  // namespace rcp::inspect
