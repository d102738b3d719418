// What a launch looks at, told to a program that explains launches. A launch itself has no observer.
#pragma once

#include "diagnostics/argument.h"

#include <string>
#include <string_view>

namespace rcp {

struct Property;
class PropertyList;

class Observer {
  public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    Observer(Observer&&) = delete;
    Observer& operator=(Observer&&) = delete;
    virtual ~Observer() = default;

    virtual void propertyFileRead(const std::wstring& path, const PropertyList& entries) = 0;
    /// A look-up, by key or by prefix, has found the entry.
    virtual void propertyFound(const Property& entry) = 0;
    /// A text that could have counted does not, by this rule. `winner` is where that comes from which counts
    /// instead; null when nothing does.
    virtual void lost(const std::wstring& text, const Origin& origin, const Why& why,
                      const Origin* winner) = 0;
    virtual void placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                                     const std::wstring& value, const std::wstring& after) = 0;
};

/// Null in a launch.
extern Observer* observer;

/// For the place that decides it: who loses, by which rule, and to whom.
inline void tellLoser(const std::wstring& text, const Origin& origin, const Why& why,
                      const Origin* winner = nullptr) {
    if (observer != nullptr) {
        observer->lost(text, origin, why, winner);
    }
}
inline void tellLoser(const Argument& loser, const Why& why, const Origin* winner = nullptr) {
    tellLoser(loser.text, loser.origin, why, winner);
}

}  // namespace rcp
