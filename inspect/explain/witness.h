// What a rehearsed launch looked at.
#pragma once

#include "diagnostics/observer.h"
#include "launcher/properties/property_list.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace rcp::inspect {

/// A place to look up by.
using Place = std::pair<std::wstring, std::size_t>;
inline Place placeOf(const Origin& origin) {
    return {origin.file ? *origin.file : std::wstring(), origin.line};
}

struct ReadFile {
    std::wstring path;
    PropertyList entries;  // as written, placeholders and all
};

struct Replacement {
    std::wstring before;
    std::wstring placeholder;  // a standard one whole, of a user's only the name
    std::wstring value;
    std::wstring after;
};

/// What does not count, by which rule, and where that comes from which counts instead.
struct Loser {
    std::wstring text;
    Origin origin;
    const Why* why;
    std::optional<Origin> winner;
};

class Witness : public Observer {
  public:
    void propertyFileRead(const std::wstring& path, const PropertyList& entries) override;
    void propertyFound(const Property& entry) override;
    void lost(const std::wstring& text, const Origin& origin, const Why& why,
              const Origin* winner) override;
    void placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                             const std::wstring& value, const std::wstring& after) override;
    void waits(Wait wait, const std::wstring& file) override { waits_[wait] = file; }

    /// The property files in the order in which they were first read, as they were read last.
    [[nodiscard]] const std::vector<ReadFile>& files() const { return files_; }
    /// Whether a look-up found the entry of this place.
    [[nodiscard]] bool wasFound(const Origin& place) const;
    /// What was told to have lost, but for the launcher's own making.
    [[nodiscard]] const std::vector<Loser>& losers() const { return losers_; }
    /// The file that tells when that wait is over; null when the launch did not wait.
    [[nodiscard]] const std::wstring* awaited(Wait wait) const;
    /// What was replaced on the way from `text` to what became of it.
    [[nodiscard]] std::vector<Replacement> replacementsFrom(const std::wstring& text) const;

  private:
    std::vector<ReadFile> files_;
    std::set<Place> found_;
    std::vector<Loser> losers_;
    std::vector<Replacement> replacements_;
    std::map<std::wstring, std::vector<std::size_t>> byText_;  // what was replaced in each
    std::map<Wait, std::wstring> waits_;
};

}  // namespace rcp::inspect
