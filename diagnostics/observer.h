// What a launch looks at, told to a program that explains launches. A launch itself has no observer.
#pragma once

#include "diagnostics/argument.h"

#include <string>
#include <string_view>

namespace rcp {

struct Property;
class PropertyList;

/// What a launch waits for before it goes on.
enum class Wait {
    kOldPlatform,   // of a restart
    kProvisioning,  // of the workspace, by somebody else
    kDebugMarker,   // that it is removed
};

class Observer {
  public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    Observer(Observer&&) = delete;
    Observer& operator=(Observer&&) = delete;
    virtual ~Observer() = default;

    virtual void propertyFileRead(const std::wstring& /*path*/, const PropertyList& /*entries*/) {}
    /// A look-up, by key or by prefix, has found the entry.
    virtual void propertyFound(const Property& /*entry*/) {}
    /// A text that could have counted does not, by this rule. `winner` is where that comes from which counts
    /// instead; null when nothing does.
    virtual void lost(const std::wstring& /*text*/, const Origin& /*origin*/, const Why& /*why*/,
                      const Origin* /*winner*/) {}
    virtual void placeholderReplaced(const std::wstring& /*before*/,
                                     std::wstring_view /*placeholder*/,
                                     const std::wstring& /*value*/, const std::wstring& /*after*/) {
    }
    /// Told each time before the launch sleeps. `file` tells when the wait is over: it is gone then, or holds
    /// something else.
    virtual void waits(Wait /*wait*/, const std::wstring& /*file*/) {}
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

inline void tellWait(Wait wait, const std::wstring& file) {
    if (observer != nullptr) {
        observer->waits(wait, file);
    }
}

}  // namespace rcp
